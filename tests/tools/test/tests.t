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
        why not configs[0].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
                2 events
                2   for which it was tried
                2     stopped by vmRssKB > 9, at the nearest 8 > 9 (off by 2) in event 1
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
        why not configs[1].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
  FAIL  two.test.json:3: trigger of any
        why not configs[0].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
        why not configs[1].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
  FAIL  two.test.json:4: log
        why not configs[0].payload.data.transitions[1] (start -> start on ZramHeartBeat)
  FAIL  two.test.json:5: state of 8
        why not configs[1].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
  FAIL  two.test.json:6: state of 7
        why not configs[0].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
  FAIL  two.test.json:7: another process
          configs[1].payload.data.transitions[0] -> hot: fires
  FAIL  two.test.json:8: twice of 7
          configs[1].payload.data.transitions[0] -> hot: fires
  FAIL  two.test.json:9: trigger at zram
        why not configs[1].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
  FAIL  two.test.json:10: no log
          configs[0].payload.data.transitions[1] -> start: fires
  FAIL  two.test.json:11: context
          configs[0].payload.data.transitions[0] -> hot: fires
          configs[1].payload.data.transitions[0] -> hot: fires
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
  vig: error: absent.json: No such file or directory
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

What is not part of a test file is an error at its place.

  $ while read -r line; do echo "$line" >b.test.json; vig test b.test.json; done <<'EOF'
  > {"rules":"a","rules":"b","tests":[]}
  > {} x
  > {"tests":[]}
  > {"rules":"","tests":[]}
  > {"rules":1,"tests":{}}
  > {"rules":"","tests":[7]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"seed":-1}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"draws":[]}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"draws":0.5}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"draws":[0,1,-0.1,true,"0",0.99999999999999999999]}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"seed":1,"draws":[0]}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"context":{"int":{}}}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{},"context":{"int64":{"a":"b"}}}]}
  > {"rules":"","tests":[{"name":"a","events":[{"event":"Tst"}],"expect":{}}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{"log":[{"priority":"inf","message":null}]}}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{"log":["\udc00"]}}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{"states":{"x":"end","7x":"end"}}}]}
  > {"rules":"","tests":[{"name":"a","events":[],"expect":{}},{"name":"a","events":[],"expect":{}}]}
  > {"rules":"","tests":[{"name":"a","events":"absent","expect":{}}]}
  > EOF
  b.test.json:1:14: error: Duplicate key: 'rules'
  b.test.json:1:4: error: Extra non-whitespace after JSON value.
  b.test.json:1:1: error: "rules" is missing
  b.test.json:1:10: error: tests: there is no test
  b.test.json:1:21: error: tests: there is no test
  b.test.json:1:10: error: rules: expected a string, got a number
  b.test.json:1:20: error: tests: expected an array, got an object
  b.test.json:1:22: error: tests[0]: expected an object, got a number
  b.test.json:1:65: error: tests[0].seed: expected an integer from 0 to 4294967295
  b.test.json:1:66: error: tests[0].draws: there is no draw
  b.test.json:1:66: error: tests[0].draws: expected an array, got a number
  b.test.json:1:69: error: tests[0].draws[1]: expected a number from 0 up to, but not including, 1
  b.test.json:1:71: error: tests[0].draws[2]: expected a number from 0 up to, but not including, 1
  b.test.json:1:76: error: tests[0].draws[3]: expected a number from 0 up to, but not including, 1
  b.test.json:1:81: error: tests[0].draws[4]: expected a number from 0 up to, but not including, 1
  b.test.json:1:85: error: tests[0].draws[5]: expected a number from 0 up to, but not including, 1
  b.test.json:1:75: error: tests[0].draws: not together with "seed"
  b.test.json:1:75: error: tests[0].context: unknown key "int"; did you mean "int64"?
  b.test.json:1:68: error: tests[0].context: int64.a: expected a signed 64-bit integer, got "b"
  b.test.json:1:44: error: tests[0].events[0]: event: unknown event "Tst"; did you mean "Test"?
  b.test.json:1:91: error: tests[0].expect.log[0].message: expected a string, got null
  b.test.json:1:75: error: tests[0].expect.log[0].priority: unknown priority "inf"; did you mean "info"?
  b.test.json:1:63: error: tests[0].expect.log[0]: invalid UTF-8
  b.test.json:1:81: error: tests[0].expect.states: expected the id of a configuration as key, got "7x"
  b.test.json:1:70: error: tests[0].expect.states: expected the id of a configuration as key, got "x"
  b.test.json:1:67: error: tests[1].name: there is another test "a"
  b.test.json:1:43: error: tests[0].events: absent: No such file or directory
  [2]

Of a file that is all mistakes, a hundred are shown.

  $ echo '{' >bad.jsonl
  $ tests '' $(printf '0 %.0s' {1..100}) '{"name":"a","events":"bad.jsonl","expect":{}}' 0 0 >m.test.json
  $ vig test m.test.json 2>&1 | tail -2
  m.test.json:1:220: error: tests[99]: expected an object, got a number
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
