  $ . "$TESTDIR/../rules.sh"
  $ set -o pipefail
  $ hot=$(transition start hot ProcessMemoryHeartBeat "$(filters 'integer vmRssKB > =9')" "$(actions TriggerVelora)")
  $ zram=$(transition start start ZramHeartBeat '[]' "$(actions LogZramHeartBeat)")
  $ document_of "$hot" "$(transition hot start Test)" "$zram" >rules.json
  $ camera() { printf '{"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},"int64":{"vmRssKB":%s,"vmSwapKB":1}}' "$1"; }
  $ case_of() { printf '\n{"name":"%s","events":[%s],"expect":{%s}}' "$@"; }
  $ tests() { printf '{"rules":"%s","tests":%s}' "$1" "$(joined "${@:2}")"; }

A failure shows what was expected (-) against what happened (+), and why.

  $ good=$(case_of good "$(camera 8)" '')
  $ tests rules.json "$(case_of missing "$(camera 8),$(camera 8)" '"triggers":[{"config":7}]')" \
  >   "$(case_of other "$(camera 10)" '"triggers":[{"config":7,"process":"x"}],"moves":2')" "$good" >a.test.json
  $ vig test a.test.json
  FAIL  a.test.json:2: missing
        triggers: expected 1 (-), got 0 (+)
          -  config 7
        why not configs[0].payload.data.transitions[0]
          start -> hot on ProcessMemoryHeartBeat
                2 events
                2   for which it was tried
                2     stopped by vmRssKB > 9
                        nearest 8 > 9 (off by 2) in event 1
                0     fired
  FAIL  a.test.json:3: other
        triggers: expected 1 (-), got 1 (+)
          -  process "x"
          +  process "camera"  (event 1)
        moves: expected 2, got 1
          +  config 7  start -> hot  (event 1)
        event 1: ProcessMemoryHeartBeat in state start
          configs[0].payload.data.transitions[0] -> hot: fires
            yes   vmRssKB > 9  10 > 9
            runs  TriggerVelora
  FAIL  a.test.json: 1 of 3 passed
  3 tests: 1 passed, 2 failed
  [1]

It is explained by the machine, of several, that did what was not expected or did not do what was.

  $ document "$(config 7 "$hot" "$zram" "$(transition hot hot Test)")" "$(config 8 "$hot" "$(transition hot start Test)")" >two.json
  $ z='{"event":"ZramHeartBeat"}'
  $ tests two.json "$(case_of 'trigger of 8' "$(camera 8)" '"triggers":[{"config":8}]')" \
  >   "$(case_of 'trigger of any' "$(camera 8)" '"triggers":[{}]')" "$(case_of log "$(camera 8)" '"log":["x"]')" \
  >   "$(case_of 'state of 8' "$(camera 8)" '"states":{"8":"hot"}')" "$(case_of 'state of 7' "$(camera 8)" '"states":{"7":"hot"}')" \
  >   "$(case_of 'another process' "$(camera 10)" '"triggers":[{"config":7},{"config":8,"process":"x"}]')" \
  >   "$(case_of 'twice of 7' "$(camera 10)" '"triggers":[{"config":7},{"config":7}]')" \
  >   "$(case_of 'trigger at zram' "$z" '"triggers":[{"config":8}]')" "$(case_of 'no log' "$z" '')" \
  >   "$(case_of context '{"event":"ProcessMemoryHeartBeat"}' '},"context":{"int64":{"vmRssKB":10}')" >two.test.json
  $ vig test two.test.json | grep -E '^FAIL|configs\['
  FAIL  two.test.json:2: trigger of 8
        why not configs[1].payload.data.transitions[0]
  FAIL  two.test.json:3: trigger of any
        why not configs[0].payload.data.transitions[0]
        why not configs[1].payload.data.transitions[0]
  FAIL  two.test.json:4: log
        why not configs[0].payload.data.transitions[1]
  FAIL  two.test.json:5: state of 8
        why not configs[1].payload.data.transitions[0]
  FAIL  two.test.json:6: state of 7
        why not configs[0].payload.data.transitions[0]
  FAIL  two.test.json:7: another process
          configs[1].payload.data.transitions[0] -> hot: fires
  FAIL  two.test.json:8: twice of 7
          configs[1].payload.data.transitions[0] -> hot: fires
  FAIL  two.test.json:9: trigger at zram
        why not configs[1].payload.data.transitions[0]
  FAIL  two.test.json:10: no log
          configs[0].payload.data.transitions[1] -> start: fires
  FAIL  two.test.json:11: context
          configs[0].payload.data.transitions[0] -> hot: fires
  FAIL  two.test.json: 0 of 10 passed
  [1]

An explanation draws the random numbers of the test.

  $ document_of "$(transition start start ZramHeartBeat "$(filters 'double PseudoRandomDouble() > =0.5')" "$(actions LogZramHeartBeat)")" >random.json
  $ tests random.json $(for seed in {0..5}; do case_of $seed $z "},\"seed\":$seed,\"context\":{"; done) >r.test.json
  $ vig test r.test.json | grep -E '^FAIL|: fires'
  FAIL  r.test.json:1: 0
          configs[0].payload.data.transitions[0] -> start: fires
  FAIL  r.test.json:1: 1
          configs[0].payload.data.transitions[0] -> start: fires
  FAIL  r.test.json:1: 4
          configs[0].payload.data.transitions[0] -> start: fires
  FAIL  r.test.json: 3 of 6 passed
  [1]

It makes the draws that the test or, if that has no seed either, the command line lists.

  $ tests random.json "$(case_of listed "$z,$z" '},"draws":[0.5,0.75],"context":{')" \
  >   "$(case_of seeded $z '},"seed":2,"context":{')" "$(case_of open $z '')" >d.test.json
  $ for draw in 0.25 0.875; do vig test d.test.json --draw $draw | grep -E '^FAIL|[0-9] > 0'; done
  FAIL  d.test.json:2: listed
            yes   PseudoRandomDouble() > 0.5  0.75 > 0.5
  FAIL  d.test.json: 2 of 3 passed
  FAIL  d.test.json:2: listed
            yes   PseudoRandomDouble() > 0.5  0.75 > 0.5
  FAIL  d.test.json:4: open
            yes   PseudoRandomDouble() > 0.5  0.875 > 0.5
  FAIL  d.test.json: 1 of 3 passed
  [1]

Where a state is not as expected, the last moves of its machine are shown.

  $ go() { transition "$1" "$2" Test; }
  $ document "$(config 7 "$(go start a)" "$(go a b)" "$(go b a)")" "$(config 8 "$(go start hot)")" >moves.json
  $ tests moves.json '{"name":"m","series":{"event":"Test","int64":{"n":"0x24"}},"expect":{"states":{"7":"a","8":"a"}}}' \
  >   '{"name":"n","events":[],"expect":{"states":{"8":"hot"},"moves":1}}' >m.test.json
  $ vig test m.test.json | grep -E '^FAIL|state of|->  *|[^ ] -> .* .event|mov'
  FAIL  m.test.json:1: m
        state of configuration 7: expected "a", got "b"
            4 moves before
          +  b -> a  (event 5)
          +  a -> b  (event 6)
          +  b -> a  (event 7)
          +  a -> b  (event 8)
          +  b -> a  (event 9)
          +  a -> b  (event 10)
          +  b -> a  (event 11)
          +  a -> b  (event 12)
          +  b -> a  (event 13)
          +  a -> b  (event 14)
          +  b -> a  (event 15)
          +  a -> b  (event 16)
          +  b -> a  (event 17)
          +  a -> b  (event 18)
          +  b -> a  (event 19)
          +  a -> b  (event 20)
          +  b -> a  (event 21)
          +  a -> b  (event 22)
          +  b -> a  (event 23)
          +  a -> b  (event 24)
        state of configuration 8: expected "a", got "hot"
          +  start -> hot  (event 1)
          start -> a on Test
          b -> a on Test
  FAIL  m.test.json:1: n
        state of configuration 8: expected "hot", got "start"
            its machine has not moved
        moves: expected 1, got 0
          start -> hot on Test
  FAIL  m.test.json: 0 of 2 passed
  [1]

A series tells events in short: one value is that of all events, and what actions read besides is 0.

  $ short() { printf '\n{"name":"%s","series":%s,"expect":{%s}}' "$@"; }
  $ memory='"event":"ProcessMemoryHeartBeat"'
  $ all='"metadata":["threshold_current_value:10","threshold_units:RSS_anon_plus_swap_KB","vmRssKB:10","vmSwapKB:0","processName:camera"]'
  $ tests rules.json "$(short one "{$memory,\"processName\":\"camera\",\"vmRssKB\":\"8x2 10x2 8\"}" "\"triggers\":[{\"event\":3,$all}]")" \
  >   "$(short several "[{$memory,\"processName\":\"a b x2\",\"vmRssKB\":8},{\"event\":\"Test\"},{$memory,\"vmRssKB\":10,\"processName\":[\"a b\"]}]" '"triggers":[{"process":"a b","event":5}]')" \
  >   "$(short kinds '{"event":"Timeout","timeout_id":3,"every_ms":8000,"double":{"d":"-1.5 2e3"},"bool":{"b":true},"uint64":{"u":"18446744073709551615 0"},"string":{"s":["x3",""],"t":"x3 x"}}' '')" \
  >   "$(short x32 "{$memory,\"processName\":\"x32\",\"vmRssKB\":[\"10\",9]}" '"triggers":[{"process":"x32","event":1}]')" >s.test.json
  $ vig test s.test.json
  ok    s.test.json: 4 of 4 passed
  4 tests: 4 passed, 0 failed
  $ tests rules.json "$(short late "{$memory,\"every_ms\":8000,\"vmRssKB\":\"7x2 8 7\"}" '"triggers":[{}]')" >t.test.json
  $ vig test t.test.json | grep -A1 stopped
                4     stopped by vmRssKB > 9
                        nearest 8 > 9 (off by 2) in event 3 at 16000 ms
  [1]

What is wrong with one is told at the value.

  $ while read -r line; do tests rules.json "{\"name\":\"a\",\"expect\":{},\"series\":$line}" >b.test.json; vig test b.test.json; done <<'EOF'
  > 7
  > []
  > {"event":"Tst"}
  > {"event":"Test","timeout_id":1,"every_ms":-1,"load":1}
  > {"event":"Timeout","int64":7}
  > {"event":"ProcessMemoryHeartBeat","procesName":"camera","vmRssKB":"1 2","vmSwapKB":"1x3","pid":4,"int64":{"pid":4}}
  > {"event":"Test","int64":{"a":"0x10 *3 9223372036854775808 1.0","b":[[]]},"uint64":{"c":-1},"bool":{"d":"1"}}
  > {"event":"Test","double":{"a":"inf","b":"","c":"1x0","d":"1x2 x2","e":"\\u0031 ?"},"string":{"f":1}}
  > [{"event":"Test","int64":{"a":"1x99999"}},{"event":"Test","int64":{"a":"1 2"}},{"event":"Test","int64":{"a":"1x100001"}}]
  > EOF
  b.test.json:1:65: error: tests[0].series: expected an object that tells a series of events, got a number
  b.test.json:1:65: error: tests[0].series: there is no series
  b.test.json:1:74: error: tests[0].series.event: unknown event "Tst"; did you mean "Test"?
  b.test.json:1:94: error: tests[0].series.timeout_id: only a Timeout event has one
  b.test.json:1:107: error: tests[0].series.every_ms: expected an integer from 0 to 31622400000
  b.test.json:1:117: error: tests[0].series.load: Test events have no attribute "load"; put one that vig does not know under its kind, as in "int64": { \xe2\x80\xa6 } (esc)
  b.test.json:1:65: error: tests[0].series: "timeout_id" is missing
  b.test.json:1:92: error: tests[0].series.int64: expected an object, got a number
  b.test.json:1:112: error: tests[0].series.procesName: ProcessMemoryHeartBeat events have no attribute "procesName"; did you mean "processName"?
  b.test.json:1:148: error: tests[0].series.vmSwapKB: has 3 values, but "vmRssKB" has 2; an attribute has one value for all events, or as many as the others
  b.test.json:1:160: error: tests[0].series.pid: given twice
  b.test.json:1:100: error: tests[0].series.int64.a: expected a signed 64-bit integer, or one that is repeated such as 7x3, got "*3"
  b.test.json:1:103: error: tests[0].series.int64.a: expected a signed 64-bit integer, or one that is repeated such as 7x3, got "9223372036854775808"
  b.test.json:1:123: error: tests[0].series.int64.a: expected a signed 64-bit integer, got "1.0"; write 1
  b.test.json:1:133: error: tests[0].series.int64.b[0]: expected a signed 64-bit integer, got an array
  b.test.json:1:152: error: tests[0].series.uint64.c: expected an unsigned 64-bit integer, or one that is repeated such as 7x3, got "-1"
  b.test.json:1:169: error: tests[0].series.bool.d: expected true or false, got "1"
  b.test.json:1:96: error: tests[0].series.double.a: expected a number, or one that is repeated such as 7x3, got "inf"
  b.test.json:1:105: error: tests[0].series.double.b: there is no value
  b.test.json:1:113: error: tests[0].series.double.c: a value is repeated once, from 1 to 100000 times, not as in "1x0"
  b.test.json:1:127: error: tests[0].series.double.d: a value is repeated once, from 1 to 100000 times, not as in "x2"
  b.test.json:1:135: error: tests[0].series.double.e: expected a number, or one that is repeated such as 7x3, got "\\u0031"
  b.test.json:1:135: error: tests[0].series.double.e: expected a number, or one that is repeated such as 7x3, got "?"
  b.test.json:1:162: error: tests[0].series.string.f: expected a string, got a number
  b.test.json:1:107: error: tests[0].series[1]: the series of a file have at most 100000 events together
  b.test.json:1:174: error: tests[0].series[2].int64.a: a value is repeated once, from 1 to 100000 times, not as in "1x100001"
  [2]

Coverage tells what no test reaches, which can be too little.

  $ tests rules.json "$good" >good.test.json
  $ vig test good.test.json --coverage
  ok    good.test.json: 1 of 1 passed
  rules.json:1:62: never fired: start -> hot on ProcessMemoryHeartBeat [configs[0].payload.data.transitions[0]]
  rules.json:1:145: never true: vmRssKB > 9 [configs[0].payload.data.transitions[0].filters[0]]
  rules.json:1:314: never fired: hot -> start on Test [configs[0].payload.data.transitions[1]]
  rules.json:1:395: never fired: start -> start on ZramHeartBeat [configs[0].payload.data.transitions[2]]
  coverage  rules.json: 20.0 % (transitions fired 0/3, filter outcomes seen 1/2)
  1 test: 1 passed, 0 failed
  $ vig test good.test.json --coverage-min 20 | tail -2
  coverage  rules.json: 20.0 % (transitions fired 0/3, filter outcomes seen 1/2)
  1 test: 1 passed, 0 failed
  $ vig test good.test.json --coverage-min 20.1 | tail -2
  coverage is below 20.1 %
  1 test: 1 passed, 0 failed
  [1]

A filter chooses tests by a part of their name, in which ? and * stand for anything.

  $ tests rules.json "$(case_of 'cold start [warm]' "$(camera 8)" '')" "$(case_of hot "$(camera 10)" '')" >f.test.json
  $ for part in 'c?ld*t' '[warm' '[hc]ot' hurt; do vig test f.test.json --filter "$part"; done
  ok    f.test.json: 1 of 1 passed
  1 test: 1 passed, 0 failed
  ok    f.test.json: 1 of 1 passed
  1 test: 1 passed, 0 failed
  vig: error: no test is called like "[hc]ot"
  vig: error: no test is called like "hurt"
  [2]

A report for a build server holds any text, and never takes the place of what is read.

  $ tests rules.json "$good" "$(case_of '<&\">\u0001\uFFFE' "$(camera 8)" '"moves":1')" >j.test.json
  $ vig test j.test.json --junit report.xml >/dev/null
  [1]
  $ cat -v report.xml
  <?xml version="1.0" encoding="UTF-8"?>
  <testsuites>
    <testsuite name="j.test.json" tests="2" failures="1">
      <testcase classname="j.test.json" name="good"/>
      <testcase classname="j.test.json" name="&#60;&#38;&#34;&#62;M-oM-?M-=M-oM-?M-="><failure message="moves: expected 1, got 0">  moves: expected 1, got 0
  </failure></testcase>
    </testsuite>
  </testsuites>
  $ tests rules.json '{"name":"a","events":"events","expect":{}}' >e.test.json
  $ touch events
  $ vig test e.test.json --junit e.test.json
  vig: error: --junit would overwrite e.test.json
  [2]
  $ vig test e.test.json --junit events
  vig: error: --junit would overwrite events
  [2]

Rules are read once for all tests and explanations, or a pipe would be empty the second time.

  $ tests /dev/fd/9 "$(case_of a "$(camera 10)" '"triggers":[{}]')" >p.test.json
  $ tests /dev/fd/9 "$(case_of b "$(camera 10)" '')" "$good" >q.test.json
  $ vig test p.test.json q.test.json 9< <(cat rules.json) | grep -E 'fires|^[0-9]'
          configs[0].payload.data.transitions[0] -> hot: fires
  3 tests: 2 passed, 1 failed
  [1]

Rules that are refused fail each test, and what the library says of them is told once; without rules, there is no test.

  $ document_of "$(transition a b test)" >bad.json
  $ tests bad.json "$good" "${good/good/other}" >bad.test.json
  $ vig test bad.test.json --junit report.xml 2>&1 | grep -vE '^   '
  FAIL  bad.test.json: the rules cannot be tested
  bad.json:1:103: error: FSM Event not found! [InvalidFsm]
  2 tests: 0 passed, 2 failed
  [1]
  $ grep -oE '<testcase [^>]*|FSM Event.*' report.xml
  <testcase classname="bad.test.json" name="good"
  FSM Event not found! [InvalidFsm]">bad.json:1:103: error: FSM Event not found! [InvalidFsm]
  <testcase classname="bad.test.json" name="other"
  FSM Event not found! [InvalidFsm]">bad.json:1:103: error: FSM Event not found! [InvalidFsm]
  $ tests absent.json "$good" >absent.test.json
  $ vig test absent.test.json
  absent.test.json:1:10: error: rules: absent.json: No such file or directory
  [2]

Of long texts, the part is shown in which they differ.

  $ x=$(printf 'x%.0s' {1..100000})
  $ event=$(camera 10)
  $ tests rules.json "$(case_of t "${event/camera/${x}end}" "\"triggers\":[{\"process\":\"${x}END\"}],\"states\":{\"7\":\"$x\"}")" >l.test.json
  $ vig test l.test.json | grep xxx | sed -E 's/x{499}/499 times x/'
          -  process \xe2\x80\xa6xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxEND" (esc)
          +  process \xe2\x80\xa6xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxend"  (event 1) (esc)
        state of configuration 7: expected "499 times x\xe2\x80\xa6, got "hot" (esc)
  [1]

And there may not be too much of them.

  $ tests rules.json "{\"name\":\"t\",\"series\":{\"event\":\"Test\",\"string\":{\"a\":\"$x\"},\"int64\":{\"b\":\"1x672\"}},\"expect\":{}}" >l.test.json
  $ vig test l.test.json
  l.test.json:1:53: error: tests[0].series: the series of a file have at most 64 MB of texts
  [2]

What is not part of a test file is an error at its place.

  $ while read -r line; do echo "$line" >b.test.json; vig test b.test.json; done <<'EOF'
  > {"rules":"a","rules":"b","tests":[]}
  > {} x
  > {"rules" "a",, "tests":[]}
  > {"tests":[]}
  > {"rules":"rules.json","tests":[]}
  > {"rules":1,"tests":{}}
  > {"rules":"","tests":[]}
  > {"rules":"absent.json","rules":"here","tsts":1,"tests":[{"nam":"a","vents":[],"expect":{"stats":{},"moves":-1},"note":1}],"x":1}
  > {"rules":"rules.json","properties":[{"name":"a","can_rech":{}},{"name":"b","x":1,"at_most":{"triggrs":1,"events":0}},{"name":"c","trigger_only_if":[{"operatr":"x"},{"x":1,"operator":"~"}]}]}
  > {"rules":"rules.json","tests":[7]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"seed":-1}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"draws":[]}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"draws":0.5}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"draws":[0,1,-0.1,true,"0",0.99999999999999999999]}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"seed":1,"draws":[0]}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"context":{"int":{}}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},"context":{"int64":{"a":"b"}}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[{"event":"Tst"}],"expect":{}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[{"event":"Test","device":"a"},{"event":"Test","device":"b"},{"device":"a","ended":true}],"expect":{"moves":9}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[{"device":"a","ended":true},{"event":"Test"}],"expect":{}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{"log":[{"priority":"inf","message":null}]}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{"log":["\udc00"]}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{"states":{"x":"end","7x":"end"}}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{}},{"name":"a","events":[],"expect":{}}]}
  > {"rules":"rules.json","tests":[{"name":"a","events":"absent","expect":{}}]}
  > EOF
  b.test.json:1:14: error: Duplicate key: 'rules'
  b.test.json:1:22: error: rules: b: No such file or directory
  b.test.json:1:34: error: tests: there is no test
  b.test.json:1:4: error: the text ends before this; remove it
  b.test.json:1:1: error: "rules" is missing
  b.test.json:1:1: error: neither "tests" nor "properties" are there
  b.test.json:1:9: error: a colon is missing behind the key "rules"; write ":" between the key and its value
  b.test.json:1:1: error: "rules" is missing
  b.test.json:1:10: error: tests: there is no test
  b.test.json:1:31: error: tests: there is no test
  b.test.json:1:10: error: rules: expected a string, got a number
  b.test.json:1:20: error: tests: expected an array, got an object
  b.test.json:1:10: error: rules: there is no name
  b.test.json:1:21: error: tests: there is no test
  b.test.json:1:24: error: Duplicate key: 'rules'
  b.test.json:1:32: error: rules: here: No such file or directory
  b.test.json:1:46: error: unknown key "tsts"; did you mean "tests"?
  b.test.json:1:64: error: tests[0]: unknown key "nam"; did you mean "name"?
  b.test.json:1:76: error: tests[0]: unknown key "vents"; did you mean "events"?
  b.test.json:1:97: error: tests[0].expect: unknown key "stats"; did you mean "states"?
  b.test.json:1:108: error: tests[0].expect.moves: expected an integer from 0 to 9223372036854775807
  b.test.json:1:119: error: tests[0]: unknown key "note"; did you mean "name"?
  b.test.json:1:127: error: unknown key "x"
  b.test.json:1:60: error: properties[0]: unknown key "can_rech"; did you mean "can_reach"?
  b.test.json:1:80: error: properties[1]: unknown key "x"
  b.test.json:1:103: error: properties[1].at_most: unknown key "triggrs"; did you mean "triggers"?
  b.test.json:1:114: error: properties[1].at_most.events: expected an integer from 1 to 9223372036854775807
  b.test.json:1:160: error: properties[2].trigger_only_if[0]: unknown key "operatr"; did you mean "operator"?
  b.test.json:1:170: error: properties[2].trigger_only_if[1]: unknown key "x"
  b.test.json:1:183: error: properties[2].trigger_only_if[1].operator: Invalid operator string: ~.; one of "==", "!=", ">", "<", ">=", "<="
  b.test.json:1:183: error: properties[2].trigger_only_if[1]: Invalid operand value type: . ("value_type" is missing); one of "string", "integer", "double"
  b.test.json:1:183: error: properties[2].trigger_only_if[1]: Filter operand must be an object. ("operand1" is missing); an object is needed
  b.test.json:1:183: error: properties[2].trigger_only_if[1]: Filter operand must be an object. ("operand2" is missing); an object is needed
  b.test.json:1:32: error: tests[0]: expected an object, got a number
  b.test.json:1:75: error: tests[0].seed: expected an integer from 0 to 4294967295
  b.test.json:1:76: error: tests[0].draws: there is no draw
  b.test.json:1:76: error: tests[0].draws: expected an array, got a number
  b.test.json:1:79: error: tests[0].draws[1]: expected a number from 0 up to, but not including, 1
  b.test.json:1:81: error: tests[0].draws[2]: expected a number from 0 up to, but not including, 1
  b.test.json:1:86: error: tests[0].draws[3]: expected a number from 0 up to, but not including, 1
  b.test.json:1:91: error: tests[0].draws[4]: expected a number from 0 up to, but not including, 1
  b.test.json:1:95: error: tests[0].draws[5]: expected a number from 0 up to, but not including, 1
  b.test.json:1:85: error: tests[0].draws: not together with "seed"
  b.test.json:1:85: error: tests[0].context: unknown key "int"; did you mean "int64"?
  b.test.json:1:78: error: tests[0].context: int64.a: expected a signed 64-bit integer, got "b"
  b.test.json:1:54: error: tests[0].events[0]: event: unknown event "Tst"; did you mean "Test"?
  b.test.json:1:84: error: tests[0].events[1]: device: "b" after "a"; vig run --by-device gives each machines of its own
  b.test.json:1:82: error: tests[0].events[1]: device: "a" has ended; vig run --by-device begins anew
  b.test.json:1:85: error: tests[0].expect.log[0].priority: unknown priority "inf"; did you mean "info"?
  b.test.json:1:101: error: tests[0].expect.log[0].message: expected a string, got null
  b.test.json:1:73: error: tests[0].expect.log[0]: invalid UTF-8
  b.test.json:1:80: error: tests[0].expect.states: expected the id of a configuration as key, got "x"
  b.test.json:1:91: error: tests[0].expect.states: expected the id of a configuration as key, got "7x"
  b.test.json:1:77: error: tests[1].name: there is another test "a"
  b.test.json:1:53: error: tests[0].events: absent: No such file or directory
  [2]

Of a file that is all mistakes, a hundred are shown.

  $ echo '{' >bad.jsonl
  $ tests '' $(printf '0 %.0s' {1..100}) '{"name":"a","events":"bad.jsonl","expect":{}}' 0 0 >m.test.json
  $ vig test m.test.json 2>&1 | tail -2
  m.test.json:1:218: error: tests[98]: expected an object, got a number
  m.test.json: error: has more mistakes than the 100 shown
  [2]
  $ printf '[%.0s' {1..2000} >deep.test.json
  $ vig test deep.test.json 2>&1 | cut -c 1-80
  deep.test.json:1:1001: error: Nested deeper than the limit of 1000 levels.
  [2]

Rules are known by the file that they are, not by the text of its path.

  $ mkdir -p here other/deep; ln -s ../other/deep here/link; document "$(config 1)" >here/r.json
  $ document_of "$(transition start end Test)" >other/r.json
  $ echo '{"rules":"r.json","tests":[{"name":"a","events":[],"expect":{}}]}' >here/a.json
  $ echo '{"rules":"../r.json","tests":[{"name":"b","events":[{"event":"Test"}],"expect":{"moves":1}}]}' >other/deep/b.json
  $ echo '{"rules":"../other/r.json","tests":[{"name":"c","events":[],"expect":{}}]}' >here/c.json
  $ cd here; vig test a.json link/b.json c.json --coverage
  ok    a.json: 1 of 1 passed
  ok    link/b.json: 1 of 1 passed
  ok    c.json: 1 of 1 passed
  coverage  r.json: 100.0 % (transitions fired 0/0, filter outcomes seen 0/0)
  coverage  link/../r.json: 100.0 % (transitions fired 1/1, filter outcomes seen 0/0)
  3 tests: 3 passed, 0 failed
