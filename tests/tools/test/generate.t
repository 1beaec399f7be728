  $ . "$TESTDIR/../rules.sh"

The tests of a document reach all of it that can be reached, and tell what the library does.

  $ machines >two.json <<'END'
  > start hot ProcessMemoryHeartBeat | integer vmRssKB > =9 & double PseudoRandomDouble() < =0.25 | TriggerVelora; hot pass Timeout; pass end EnteringState | double PseudoRandomDouble() >= =0.5; pass hot EnteringState | integer x == =1
  > start start ZramHeartBeat | string a != b | LogZramHeartBeat; start far ZramHeartBeat | double c > =1.7976931348623157e308; start never Test | integer d > =1 & integer d < =2; never never Test | integer d == =1; far start Test
  > END
  $ vig test --generate two.json 2>gaps | tee two.test.json
  {
    "rules": "two.json",
    "tests": [
      {
        "name": "`vmRssKB > 9` is false",
        "events": [
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":9}}
        ],
        "expect": {
          "states": { "0": "start", "1": "start" },
          "moves": 0
        }
      },
      {
        "name": "`PseudoRandomDouble() < 0.25` is false",
        "events": [
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10}}
        ],
        "draws": [0.5],
        "expect": {
          "states": { "0": "start", "1": "start" },
          "moves": 0
        }
      },
      {
        "name": "pass -> end on EnteringState fires",
        "events": [
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}},
          {"event":"Timeout","timeout_id":1}
        ],
        "draws": [0.125, 0.5],
        "expect": {
          "triggers": [
            { "name": "vig:memory_heartbeat_over_budget:app", "process": "app", "config": 0, "event": 1 }
          ],
          "states": { "0": "end", "1": "start" },
          "moves": 2
        }
      },
      {
        "name": "`PseudoRandomDouble() >= 0.5` is false",
        "events": [
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}},
          {"event":"Timeout","timeout_id":1}
        ],
        "draws": [0.125, 0.25],
        "expect": {
          "triggers": [
            { "name": "vig:memory_heartbeat_over_budget:app", "process": "app", "config": 0, "event": 1 }
          ],
          "states": { "0": "pass", "1": "start" },
          "moves": 2
        }
      },
      {
        "name": "start -> start on ZramHeartBeat fires",
        "events": [
          {"event":"ZramHeartBeat","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1},"string":{"a":"app","b":"appa"}}
        ],
        "expect": {
          "log": [
            { "message": "Received VIG zram heart beat. memUsedMaxBytes: 1, numCompressedDataBytes: 1", "priority": "info" }
          ],
          "states": { "0": "start", "1": "start" },
          "moves": 0
        }
      },
      {
        "name": "`a != b` is false",
        "events": [
          {"event":"ZramHeartBeat","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1},"string":{"a":"app","b":"app"}}
        ],
        "expect": {
          "states": { "0": "start", "1": "start" },
          "moves": 0
        }
      },
      {
        "name": "`d > 1` is true",
        "events": [
          {"event":"Test","int64":{"d":2}}
        ],
        "expect": {
          "states": { "0": "start", "1": "start" },
          "moves": 0
        }
      },
      {
        "name": "`d > 1` is false",
        "events": [
          {"event":"Test","int64":{"d":1}}
        ],
        "expect": {
          "states": { "0": "start", "1": "start" },
          "moves": 0
        }
      }
    ]
  }
  $ cat gaps
  two.json:1:775: never fired: pass -> hot on EnteringState [configs[0].payload.data.transitions[3]]: no events do it
  two.json:1:848: never true: x == 1 [configs[0].payload.data.transitions[3].filters[0]]: no events do it
  two.json:1:1281: never fired: start -> far on ZramHeartBeat [configs[1].payload.data.transitions[1]]: only an infinity, a NaN or a text that is no UTF-8 does it
  two.json:1:1355: never true: c > 1.7976931348623157e308 [configs[1].payload.data.transitions[1].filters[0]]: only an infinity, a NaN or a text that is no UTF-8 does it
  two.json:1:1514: never fired: start -> never on Test [configs[1].payload.data.transitions[2]]: no events do it
  two.json:1:1705: never true: d < 2 [configs[1].payload.data.transitions[2].filters[1]]: no events do it
  two.json:1:1844: never fired: never -> never on Test [configs[1].payload.data.transitions[3]]: no events do it
  two.json:1:1911: never true: d == 1 [configs[1].payload.data.transitions[3].filters[0]]: no events do it
  two.json:1:1911: never false: d == 1 [configs[1].payload.data.transitions[3].filters[0]]: no events do it
  two.json:1:2051: never fired: far -> start on Test [configs[1].payload.data.transitions[4]]: only an infinity, a NaN or a text that is no UTF-8 does it
  $ vig test two.test.json --coverage | tee covered
  ok    two.test.json: 8 of 8 passed
  two.json:1:775: never fired: pass -> hot on EnteringState [configs[0].payload.data.transitions[3]]
  two.json:1:848: never true: x == 1 [configs[0].payload.data.transitions[3].filters[0]]
  two.json:1:1281: never fired: start -> far on ZramHeartBeat [configs[1].payload.data.transitions[1]]
  two.json:1:1355: never true: c > 1.7976931348623157e308 [configs[1].payload.data.transitions[1].filters[0]]
  two.json:1:1514: never fired: start -> never on Test [configs[1].payload.data.transitions[2]]
  two.json:1:1705: never true: d < 2 [configs[1].payload.data.transitions[2].filters[1]]
  two.json:1:1844: never fired: never -> never on Test [configs[1].payload.data.transitions[3]]
  two.json:1:1911: never true: d == 1 [configs[1].payload.data.transitions[3].filters[0]]
  two.json:1:1911: never false: d == 1 [configs[1].payload.data.transitions[3].filters[0]]
  two.json:1:2051: never fired: far -> start on Test [configs[1].payload.data.transitions[4]]
  coverage  two.json: 62.9 % (transitions fired 4/9, filter outcomes seen 13/18)
  8 tests: 8 passed, 0 failed
  $ diff <(sed -E 's/: [^]]*$//' gaps) <(grep never covered)

So it is with all documents of the repository, the same each time.

  $ for each in "$TESTDIR"/../../../{examples,docs/tutorial}/*.json; do
  >     [[ $each == *.test.json || $each == */draft.json ]] || { vig test --generate $each >a.test.json &&
  >     vig test --generate $each | cmp - a.test.json && vig test a.test.json --coverage-min 100 | tail -1; }; done
  5 tests: 5 passed, 0 failed
  14 tests: 14 passed, 0 failed
  4 tests: 4 passed, 0 failed
  3 tests: 3 passed, 0 failed
  1 test: 1 passed, 0 failed
  5 tests: 5 passed, 0 failed
  5 tests: 5 passed, 0 failed
  5 tests: 5 passed, 0 failed
  3 tests: 3 passed, 0 failed

A document without anything to reach has a test of its start, and one in a pipe is read once. What nobody can run has none.

  $ document | vig test --generate /dev/stdin
  {
    "rules": "/dev/stdin",
    "tests": [
      {
        "name": "it starts",
        "events": [],
        "expect": {
          "moves": 0
        }
      }
    ]
  }
  $ document_of "$(transition a b test)" >bad.json
  $ vig test --generate bad.json 2>&1 | head -2
  bad.json:1:103: error: FSM Event not found! [InvalidFsm]
      \xe2\x80\xa6"from_state":"a","to_state":"b","event":"test","filters":[],"actions":[]}]}}}]} (esc)
  $ vig test --generate absent.json; vig test --generate ''; vig test --generate two.json two.test.json
  vig: error: absent.json: No such file or directory
  vig: error: --generate: expected a name, got nothing
  Try: vig test --help
  vig: error: FILE excludes --generate
  Try: vig test --help
  [2]
  $ for option in '--filter a' --coverage '--coverage-min 1' '--junit a' '--draw 0'; do vig test --generate two.json $option 2>&1 | head -1; done
  vig: error: --generate excludes --filter
  vig: error: --generate excludes --coverage
  vig: error: --generate excludes --coverage-min
  vig: error: --generate excludes --junit
  vig: error: --generate excludes --draw
