  $ . "$TESTDIR/../rules.sh"
  $ told() {
  >   vig run "$@" --verbose --format html 2>&1 >page.html | grep -v picture
  >   vig run "$@" --explain=all --why-not --format jsonl >lines && python3 "$TESTDIR/told.py" page.html lines
  > }

Nothing here needs Graphviz: a page without a picture says so, and is one.

  $ mkdir empty
  $ vig=$(command -v vig)
  $ vig() { PATH=$PWD/empty "$vig" "$@"; }
  $ vig run "$VIG_SOURCE/examples/escalation.json" "$VIG_SOURCE/examples/trace.jsonl" --format html >page.html
  vig: note: the page has no picture of the machines: the program dot of Graphviz is not installed

A page tells each step as --explain=all does: of one machine, and of some events.

  $ told "$VIG_SOURCE/examples/escalation.json" "$VIG_SOURCE/examples/trace.jsonl"
  101 steps told alike
  $ told "$VIG_SOURCE/examples/escalation.json" "$VIG_SOURCE/examples/trace.jsonl" --where processName=camera --from 20 --to 8s
  10 steps told alike

So it does of every kind of operand, of what is missing, in the context, drawn, or no number, and of moves that go on and on.

  $ document "$(config 7 "$(transition start a Test "$(filters 'integer i > =5' 'string s == =x' 'double d >= =0.1')")" \
  >   "$(transition start b Test "$(filters 'integer =3 < limit' 'double PseudoRandomDouble() < =0.5')" "$(actions Test)")" \
  >   "$(transition a b EnteringState)" "$(transition b a EnteringState "$(filters 'double PseudoRandomDouble() < =0.75')")" \
  >   "$(transition b start Test "$(filters 'double d < e' 'integer i != j' 'string s == t')" "$(actions Test TriggerVelora)")" \
  >   "$(transition a start Timeout)")" "$(config 8 "$(transition start start Test)")" >rules.json
  $ event() { echo "{\"event\":\"Test\",\"int64\":{$1},\"double\":{$2},\"string\":{$3}}"; }
  $ { event '"i":9223372036854775807' '"d":0.1,"e":1e16' '"s":"x"'; event '"i":-9223372036854775808,"j":0' '"d":5e-324' '"s":""'
  >   event '' '"d":-0.0,"e":1e-7' '"s":"<b>\u202e\\\" ","t":"x"'; event '"i":6' '"d":1e300' '"s":"x"'
  >   event '"i":6,"j":7' '"d":123456789012345680,"e":1e22' '"s":"y","t":"y"'
  >   echo '{"event":"Timeout","timeout_id":5}'; echo '{"event":"Test","uint64":{"i":7},"bool":{"s":true}}'; } >few
  $ for i in {1..30}; do cat few; done >events
  $ echo '{"int64":{"limit":4},"event":"Test","string":{"t":"c"}}' >context
  $ for seed in 1 2 3; do told rules.json events --context context --seed $seed; done
  635 steps told alike
  612 steps told alike
  611 steps told alike

So it does where a machine does something else with each event.

  $ for i in {1..300}; do echo "start start Test | integer i == =$i"; done | paste -sd ';' | machines >each.json
  $ for i in {1..300}; do echo "{\"event\":\"Test\",\"int64\":{\"i\":$i}}"; done >one-by-one
  $ told each.json one-by-one
  300 steps told alike

Of what the arguments or an input make impossible there is no page; what comes before a record that is bad is on one.

  $ for options in '--explain' '--why-not' '--by-device' '--summary-only' 'few'; do
  >   vig run rules.json few $options --format html
  > done
  vig: error: --format html tells all of one device: give one file, and neither --explain, --why-not, --by-device nor --summary-only
  Try: vig run --help
  vig: error: --format html tells all of one device: give one file, and neither --explain, --why-not, --by-device nor --summary-only
  Try: vig run --help
  vig: error: --format html tells all of one device: give one file, and neither --explain, --why-not, --by-device nor --summary-only
  Try: vig run --help
  vig: error: --format html tells all of one device: give one file, and neither --explain, --why-not, --by-device nor --summary-only
  Try: vig run --help
  vig: error: --format html tells all of one device: give one file, and neither --explain, --why-not, --by-device nor --summary-only
  Try: vig run --help
  [2]
  $ vig run rules.json few --machine 5 --format html
  rules.json: error: there is no machine 5; there are:
    0 (id 7)
    1 (id 8)
  [2]
  $ vig run rules.json none --format html
  vig: error: none: No such file or directory
  [2]
  $ { cat few; echo '{"event":"Test"'; } | vig run rules.json --format html 2>&1 >page.html | grep -v picture
  <stdin>:8: error: invalid JSON: a brace, comma, colon, key or value is missing or too many
  $ grep -o '"note":"[^"]*"' page.html
  "note":"\u003cstdin>:8: error: invalid JSON: a brace, comma, colon, key or value is missing or too many"
  $ for i in {1..6000}; do echo "{\"event\":\"Test\",\"int64\":{\"attribute $i\":1}}"; done >many
  $ vig run rules.json many --format html
  vig: error: many: a page cannot hold all that happens: choose some of it by --from, --to, --where or --machine
  [2]
  $ while cat many 2>&-; do :; done | vig run rules.json --format html
  vig: error: <stdin>: a page cannot hold all that happens: choose some of it by --from, --to, --where or --machine
  [2]
  $ vig run rules.json many --to 10 --format html 2>&- | grep -c 'class="recording"'
  1
  $ vig run none few --format html
  vig: error: none: No such file or directory
  [2]
  $ vig run rules.json few --where nobody=1 --format html 2>&1 >/dev/null | grep -v picture
  vig: note: no event has an attribute "nobody"

A test that fails is told with what came of it, and so are properties, and what tells two documents apart.

  $ cat >x.test.json <<TESTS
  > { "rules": "rules.json",
  >   "tests": [ { "name": "it </script> stays", "events": "few", "expect": { "states": { "7": "start" }, "triggers": [], "log": [] } },
  >              { "name": "it starts", "events": [], "expect": { "triggers": [], "log": [] } } ],
  >   "properties": [ { "name": "it stays", "cannot_reach": { "7": "a" } }, { "name": "it is", "can_reach": { "7": "none" } } ] }
  > TESTS
  $ vig test x.test.json --format html >tests.html
  vig: note: the page has no picture of the machines: the program dot of Graphviz is not installed
  [1]
  $ parts() { grep -oE '"(name|event|machine|compared|title|summary)":("[^"]*"|[0-9a-z]*)' <<<"$(grep -o 'id="page">.*' "$1")"; }
  $ parts tests.html
  "title":"x.test.json"
  "summary":"4 tests: 1 passed, 3 failed"
  "name":"x.test.json:2: it \u003c/script> stays"
  "event":5
  "machine":0
  "compared":false
  "name":"x.test.json:4: it stays"
  "event":1
  "machine":0
  "compared":false
  $ grep -c 'class="recording"' tests.html
  2

It is opened at the machine that went another way, whether by what it did, what it did not, or where it came to.

  $ printf '%s\n' 'start b Timeout' 'start a ZramHeartBeat | | LogZramHeartBeat ; start b Test ; b a Test | | TriggerVelora' |
  >   machines >y.json
  $ cat >y.test.json <<TESTS
  > { "rules": "y.json", "tests": [
  >     { "name": "log", "events": [ { "event": "ProcessCpuHeartBeat" }, { "event": "ZramHeartBeat" } ], "expect": {} },
  >     { "name": "trigger", "events": [ { "event": "Test" } ], "expect": { "triggers": [ { "config": 1 } ] } },
  >     { "name": "state", "events": [ { "event": "Test" }, { "event": "ProcessCpuHeartBeat" } ], "expect": { "states": { "1": "start" } } },
  >     { "name": "no move", "events": [ { "event": "ProcessCpuHeartBeat" } ], "expect": { "states": { "1": "a" } } } ] }
  > TESTS
  $ vig test y.test.json --format html 2>&1 >tests.html | grep -v picture
  [1]
  $ parts tests.html | grep -v compared
  "title":"y.test.json"
  "summary":"4 tests: 0 passed, 4 failed"
  "name":"y.test.json:2: log"
  "event":2
  "machine":1
  "name":"y.test.json:3: trigger"
  "event":null
  "machine":1
  "name":"y.test.json:4: state"
  "event":1
  "machine":1
  "name":"y.test.json:5: no move"
  "event":null
  "machine":1

What came of the tests is on the page, also if something else fails; if nothing came of any, there is no page.

  $ vig test x.test.json --format html --junit nowhere/results.xml >tests.html
  vig: note: the page has no picture of the machines: the program dot of Graphviz is not installed
  vig: error: nowhere/results.xml: No such file or directory
  [2]
  $ grep -c 'class="recording"' tests.html
  2
  $ vig test none --format html
  vig: error: none: No such file or directory
  [2]
  $ sed 's/"value":"5"/"value":"6"/' rules.json >new.json
  $ vig diff rules.json new.json --format html >diff.html
  vig: note: the page has no picture of the machines: the program dot of Graphviz is not installed
  [1]
  $ parts diff.html
  "title":"rules.json -> new.json"
  "summary":"rules.json -> new.json: 1 changed, 1 unchanged"
  "name":"7"
  "event":2
  "machine":0
  "compared":true
  $ vig diff rules.json rules.json --format html >same.html
  $ parts same.html
  "title":"rules.json -> rules.json"
  "summary":"rules.json -> rules.json: 2 unchanged"
  $ grep -c 'class="recording"' same.html
  0
  [1]
  $ vig diff rules.json new.json few --format html
  vig: error: markdown, html, --states and --catalogue are for documents without event records
  Try: vig diff --help
  [2]
