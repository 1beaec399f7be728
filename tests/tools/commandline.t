What is missing or wrong is a usage error, which names the help to read.

  $ while read -r arguments; do
  >   said=$(eval "vig $arguments" 2>&1)
  >   echo "$? ${said//$'\n'/. }"
  > done <<'EOF'
  > run
  > watch
  > test
  > check
  > graph
  > run r a b --explain
  > run r a --format json --why-not p
  > run r a --summary-only --explain
  > run r a --by-device --where a=b
  > run r - -
  > run r a -j 0
  > run r a -j 257
  > run r --seed -1
  > run r --seed 4294967296
  > run r --seed 0x10
  > run r --seed ''
  > run r --draw 1
  > run r --draw 0 --draw -0.1
  > run r --draw ''
  > run r --draw {}
  > run r --draw 0.1x
  > graph r --draw 1e-400
  > test r --draw nan
  > watch r --draw 0 --seed 1
  > run r --format xml
  > run r --interval 1s
  > run r --context ''
  > run r --why-not .
  > run r --explain=some
  > run r --machine -1
  > run r --where =camera
  > run r --where event=Tset
  > run r --from 8q
  > run r a b --to 1s
  > watch --record f --draw 0
  > summary a --format jsonl
  > watch r --interval 0
  > watch r --record
  > watch r --record ''
  > test a --coverage-min 101
  > test a --coverage-min 1x
  > test a --junit ''
  > check r --format jsonl
  > check r --allow no-way-ou
  > check r --catalogue ''
  > check r --events ''
  > graph r --events ''
  > prove r --format sarif
  > prove r --witness ''
  > prove a b --witness w
  > EOF
  2 vig: error: RULES is required. Try: vig run --help
  2 vig: error: RULES is required, or --record FILE to record without rules. Try: vig watch --help
  2 vig: error: FILE is required. Try: vig test --help
  2 vig: error: RULES is required. Try: vig check --help
  2 vig: error: RULES is required. Try: vig graph --help
  2 vig: error: --explain, --why-not, --machine, --where, --from and --to tell of one device: give one file, and neither a summary nor --by-device. Try: vig run --help
  2 vig: error: --explain, --why-not, --machine, --where, --from and --to tell of one device: give one file, and neither a summary nor --by-device. Try: vig run --help
  2 vig: error: --explain, --why-not, --machine, --where, --from and --to tell of one device: give one file, and neither a summary nor --by-device. Try: vig run --help
  2 vig: error: --explain, --why-not, --machine, --where, --from and --to tell of one device: give one file, and neither a summary nor --by-device. Try: vig run --help
  2 vig: error: standard input can be one of them only: the rule document, or one file of event records. Try: vig run --help
  2 vig: error: --jobs: expected a whole number from 1 to 256, got 0. Try: vig run --help
  2 vig: error: --jobs: expected a whole number from 1 to 256, got 257. Try: vig run --help
  2 vig: error: --seed: expected a whole number from 0 to 4294967295, got -1. Try: vig run --help
  2 vig: error: --seed: expected a whole number from 0 to 4294967295, got 4294967296. Try: vig run --help
  2 vig: error: --seed: expected a whole number from 0 to 4294967295, got 0x10. Try: vig run --help
  2 vig: error: --seed: expected a whole number from 0 to 4294967295, got nothing. Try: vig run --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got 1. Try: vig run --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got -0.1. Try: vig run --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got nothing. Try: vig run --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got {}. Try: vig run --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got 0.1x. Try: vig run --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got 1e-400. Try: vig graph --help
  2 vig: error: --draw: expected a number from 0 up to, but not including, 1, got nan. Try: vig test --help
  2 vig: error: --seed excludes --draw. Try: vig watch --help
  2 vig: error: --format: expected text|jsonl|json|html, got xml. Try: vig run --help
  2 vig: error: The following argument was not expected: --interval. Try: vig run --help
  2 vig: error: --context: expected a name, got nothing. Try: vig run --help
  2 vig: error: --why-not takes "." for a transition: write it behind the files, or --why-not=TRANSITION. Try: vig run --help
  2 vig: error: --explain: expected nothing or all, got some. Try: vig run --help
  2 vig: error: --machine: expected the place of a machine, from 0, or id=NUMBER of its configuration, got -1. Try: vig run --help
  2 vig: error: --where: expected ATTRIBUTE=VALUE, such as processName=camera, got =camera. Try: vig run --help
  2 vig: error: --where: there is no event "Tset"; did you mean "Test"?. Try: vig run --help
  2 vig: error: --from: expected the number of an event, or a time with its unit such as 500ms, 8s or 2m, got 8q. Try: vig run --help
  2 vig: error: --explain, --why-not, --machine, --where, --from and --to tell of one device: give one file, and neither a summary nor --by-device. Try: vig run --help
  2 vig: error: --context and --draw are for rules: name a rule document. Try: vig watch --help
  2 vig: error: --format: expected text|json, got jsonl. Try: vig summary --help
  2 vig: error: --interval: expected a time such as 500ms, 1s or 2m, got 0. Try: vig watch --help
  2 vig: error: --record: 1 required FILE missing. Try: vig watch --help
  2 vig: error: --record: expected a name, got nothing. Try: vig watch --help
  2 vig: error: --coverage-min: expected a number from 0 to 100, got 101. Try: vig test --help
  2 vig: error: --coverage-min: expected a number from 0 to 100, got 1x. Try: vig test --help
  2 vig: error: --junit: expected a name, got nothing. Try: vig test --help
  2 vig: error: --format: expected text|json|sarif, got jsonl. Try: vig check --help
  2 vig: error: --allow: there is no warning "no-way-ou"; did you mean "no-way-out"?. Try: vig check --help
  2 vig: error: --catalogue: expected a name, got nothing. Try: vig check --help
  2 vig: error: --events: expected a name, got nothing. Try: vig check --help
  2 vig: error: --events: expected a name, got nothing. Try: vig graph --help
  2 vig: error: --format: expected text|json, got sarif. Try: vig prove --help
  2 vig: error: --witness: expected a name, got nothing. Try: vig prove --help
  2 vig: error: --witness takes the recordings of one rule document. Try: vig prove --help
  $ for time in '' s -1s '1 s' 1e3 nan inf 1sec 99999999h; do vig watch r --duration "$time" 2>&1 | grep -o 'got .*'; done
  got 
  got s
  got -1s
  got 1 s
  got 1e3
  got nan
  got inf
  got 1sec
  got 99999999h

A verb that is missing or misspelt is answered by all that there are.

  $ vig
  vig: error: a verb is missing; there are:
    init       Writes a rule document of a common kind, and its tests.
    check      Says what is wrong with rule documents, all at once.
    prove      Decides what rule documents can do, for all events.
    diff       Compares what two rule documents do, for all events or for recorded
               ones.
    run        Replays recorded events, and shows what the rules do with them.
    summary    Merges the summaries of runs, or of comparisons, over parts of a
               fleet.
    tune       Finds the threshold with which a share of a fleet fires.
    watch      Observes this machine, and shows what the rules do with its events.
    catalogue  Prints which attributes the events of a recording have.
    test       Runs the tests of rule documents, and decides their properties.
    graph      Draws the machines of a rule document.
  Try: vig --help
  [2]
  $ for verb in walk -x rnu; do vig $verb r 2>&1 | sed -n '1p; /^  check/p; $p'; done
  vig: error: there is no verb "walk"; there are:
    check      Says what is wrong with rule documents, all at once.
  Try: vig --help
  vig: error: there is no verb "-x"; there are:
    check      Says what is wrong with rule documents, all at once.
  Try: vig --help
  vig: error: there is no verb "rnu"; did you mean "run"? There are:
    check      Says what is wrong with rule documents, all at once.
  Try: vig --help

Every verb has a help with an example.

  $ for verb in run summary tune watch test check prove catalogue graph; do vig "$verb" --help | grep ^Example; done
  Example: which events of a recording fire a trigger? And why did the second transition not fire?
  Example: two halves of a fleet, replayed apart
  Example: with which threshold does one device of a thousand fire? And with which one are there 3 triggers
  Example: record this machine for a minute, to see what there is to write rules for:
  Example: all tests, with what they do not reach, and a report for the build server:
  Example: check before a commit, as strictly as possible, for a service that arms timeouts:
  Example: what makes the machine cause so many triggers?
  Example: what do the events of this machine have?
  Example: where does the recording get stuck?
  $ vig --help | grep -A11 Subcommands
  Subcommands:
    init                        Writes a rule document of a common kind, and its tests.
    check                       Says what is wrong with rule documents, all at once.
    prove                       Decides what rule documents can do, for all events.
    diff                        Compares what two rule documents do, for all events or for recorded ones.
    run                         Replays recorded events, and shows what the rules do with them.
    summary                     Merges the summaries of runs, or of comparisons, over parts of a fleet.
    tune                        Finds the threshold with which a share of a fleet fires.
    watch                       Observes this machine, and shows what the rules do with its events.
    catalogue                   Prints which attributes the events of a recording have.
    test                        Runs the tests of rule documents, and decides their properties.
    graph                       Draws the machines of a rule document.
  $ vig --version
  vig \d+\.\d+\.\d+ (re)
