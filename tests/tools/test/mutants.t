  $ . "$TESTDIR/../rules.sh"
  $ set -o pipefail
  $ camera='{"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},"int64":{"vmRssKB":10,"vmSwapKB":1}}'
  $ hot='"tests":[{"name":"hot","events":['$camera'],"draws":[0.375],"expect":{"triggers":[{}]}}]'
  $ file() { printf '{"rules":"%s",%s}\n' "$1" "$2"; }
  $ brief() { grep -E '^[^ ]' | sed 's/ \[configs.*//'; }

What no test notices is shown, with the shortest recording that would. What has no effect is left out: here, all changes
of a transition that never fires.

  $ machines >rules.json <<'END'
  > start hot ProcessMemoryHeartBeat | integer vmRssKB > =9 & double PseudoRandomDouble() < =0.5 | TriggerVelora; hot hot ZramHeartBeat | | LogZramHeartBeat; never end Test
  > END
  $ file rules.json "$hot" >hot.test.json
  $ vig test hot.test.json --mutants --write more.test.json >first
  [1]
  $ brief <first
  ok    hot.test.json: 1 of 1 passed
  rules.json:1:95: survived: to_state "hot" became "start"
  rules.json:1:95: survived: to_state "hot" became "hot_"
  rules.json:1:145: survived: the filter `vmRssKB > 9` was lost
  rules.json:1:145: survived: `vmRssKB > 9` became `vmRssKB >= 9`
  rules.json:1:275: survived: the filter `PseudoRandomDouble() < 0.5` was lost
  rules.json:1:275: survived: `PseudoRandomDouble() < 0.5` became `PseudoRandomDouble() <= 0.5`
  rules.json:1:275: survived: `PseudoRandomDouble() < 0.5` became `PseudoRandomDouble() < 0.4`
  rules.json:1:275: survived: `PseudoRandomDouble() < 0.5` became `PseudoRandomDouble() < 0.6`
  rules.json:1:275: survived: `PseudoRandomDouble() < 0.5` became `PseudoRandomDouble() < 0.45`
  rules.json:1:275: survived: `PseudoRandomDouble() < 0.5` became `PseudoRandomDouble() < 0.55`
  rules.json:1:458: survived: the transition hot -> hot on ZramHeartBeat was lost
  rules.json:1:489: survived: to_state "hot" became "never"
  rules.json:1:489: survived: to_state "hot" became "hot_"
  rules.json:1:503: survived: the event ZramHeartBeat became ProcessCpuHeartBeat
  rules.json:1:551: survived: the action LogZramHeartBeat was lost
  mutants  rules.json: 4 of 19 noticed, besides 4 without effect
  wrote  more.test.json: 5 more tests
  1 test: 1 passed, 0 failed
  $ grep -A3 '`vmRssKB > 9` was lost' first
  rules.json:1:145: survived: the filter `vmRssKB > 9` was lost [configs[0].payload.data.transitions[0].filters[0]]
    it shows by 1 event, {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":9,"vmSwapKB":1},"string":{"processName":"app"}}
      unchanged: nothing
      changed:   triggers "vig:memory_heartbeat_over_budget:app"
  $ grep -A3 'action LogZramHeartBeat' first
  rules.json:1:551: survived: the action LogZramHeartBeat was lost [configs[0].payload.data.transitions[1].actions[0]]
    it shows by 2 events, the last one {"event":"ZramHeartBeat","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1}}, with the draws 0
      unchanged: logs "Received VIG zram heart beat. memUsedMaxBytes: 1, numCompressedD\xe2\x80\xa6" (esc)
      changed:   nothing
  $ head -13 more.test.json
  {
    "rules": "rules.json",
    "tests": [
      {
        "name": "notices that the filter `vmRssKB > 9` was lost",
        "events": [
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":9,"vmSwapKB":1},"string":{"processName":"app"}}
        ],
        "expect": {
          "states": { "0": "start" },
          "moves": 0
        }
      },
  $ vig test hot.test.json more.test.json --mutants
  ok    hot.test.json: 1 of 1 passed
  ok    more.test.json: 5 of 5 passed
  mutants  rules.json: 19 of 19 noticed, besides 4 without effect
  6 tests: 6 passed, 0 failed

Numbers are changed by a step and by a tenth, and texts, operators, events, states and the order are changed.

  $ machines >kinds.json <<'END'
  > start start Test | double c == =-1.5 & string a != =é1y & integer =30 > d | TriggerVeloraCpu; start end Test | integer e >= =9223372036854775807 | TriggerVeloraCpu; end start TelemetryEventEnd
  > END
  $ file kinds.json '"tests":[{"name":"still","events":[],"expect":{}}]' >kinds.test.json
  $ vig test kinds.test.json --mutants | brief
  ok    kinds.test.json: 1 of 1 passed
  kinds.json:1:62: survived: the transition start -> start on Test was lost
  kinds.json:1:62: survived: the transitions start -> start on Test and start -> end on Test were swapped
  kinds.json:1:95: survived: to_state "start" became "end"
  kinds.json:1:95: survived: to_state "start" became "start_"
  kinds.json:1:111: survived: the event Test became TelemetryEventBegin
  kinds.json:1:129: survived: the filter `c == -1.5` was lost
  kinds.json:1:129: survived: `c == -1.5` became `c != -1.5`
  kinds.json:1:129: survived: `c == -1.5` became `c == -1.6`
  kinds.json:1:129: survived: `c == -1.5` became `c == -1.4`
  kinds.json:1:129: survived: `c == -1.5` became `c == -1.35`
  kinds.json:1:129: survived: `c == -1.5` became `c == -1.65`
  kinds.json:1:256: survived: the filter `a != "\xc3\xa91y"` was lost (esc)
  kinds.json:1:256: survived: `a != "\xc3\xa91y"` became `a == "\xc3\xa91y"` (esc)
  kinds.json:1:256: survived: `a != "\xc3\xa91y"` became `a != "\xc3\xa91"` (esc)
  kinds.json:1:256: survived: `a != "\xc3\xa91y"` became `a != "\xc3\xa91Y"` (esc)
  kinds.json:1:383: survived: the filter `30 > d` was lost
  kinds.json:1:383: survived: `30 > d` became `30 >= d`
  kinds.json:1:383: survived: `30 > d` became `29 > d`
  kinds.json:1:383: survived: `30 > d` became `27 > d`
  kinds.json:1:383: survived: `30 > d` became `33 > d`
  kinds.json:1:528: survived: the action TriggerVeloraCpu was lost
  kinds.json:1:550: survived: the transition start -> end on Test was lost
  kinds.json:1:583: survived: to_state "end" became "start"
  kinds.json:1:583: survived: to_state "end" became "end_"
  kinds.json:1:597: survived: the event Test became TelemetryEventBegin
  kinds.json:1:615: survived: the filter `e >= 9223372036854775807` was lost
  kinds.json:1:615: survived: `e >= 9223372036854775807` became `e > 9223372036854775807`
  kinds.json:1:615: survived: `e >= 9223372036854775807` became `e >= 9223372036854775806`
  kinds.json:1:615: survived: `e >= 9223372036854775807` became `e >= 8301034833169298227`
  kinds.json:1:778: survived: the action TriggerVeloraCpu was lost
  kinds.json:1:800: survived: the transition end -> start on TelemetryEventEnd was lost
  kinds.json:1:831: survived: to_state "start" became "end"
  kinds.json:1:831: survived: to_state "start" became "start_"
  kinds.json:1:847: survived: the event TelemetryEventEnd became ForegroundAppsStats
  mutants  kinds.json: 0 of 34 noticed
  1 test: 1 passed, 0 failed
  [1]

Tests are added behind those of a file, whose text stays as it is, under names that it does not have.

  $ mkdir sub && file ../rules.json "${hot/\"hot\"/\"notices that the filter \`vmRssKB > 9\` was lost\"}" >sub/own.test.json
  $ cp sub/own.test.json before && vig test sub/own.test.json --mutants --write sub/own.test.json >second
  [1]
  $ brief <second | tail -2 && cmp -n 200 before sub/own.test.json && tail -c 3 sub/own.test.json && grep -c lost sub/own.test.json
  wrote  sub/own.test.json: 5 more tests
  1 test: 1 passed, 0 failed
  ]}
  3
  $ vig test sub/own.test.json --mutants
  ok    sub/own.test.json: 6 of 6 passed
  mutants  sub/../rules.json: 19 of 19 noticed, besides 4 without effect
  6 tests: 6 passed, 0 failed

Properties notice mutants, too. A mutant without effect is asked about in each context of the tests.

  $ file rules.json '"properties":[{"name":"once","at_most":{"triggers":1}}]' >once.test.json
  $ vig test once.test.json --mutants | brief | head -3
  ok    once.test.json: 1 of 1 passed
  rules.json:1:62: survived: the transition start -> hot on ProcessMemoryHeartBeat was lost
  rules.json:1:95: survived: to_state "hot" became "hot_"
  [1]
  $ machines >limit.json <<'END'
  > start mid EnteringState | integer limit > =5; mid end Test | | TriggerVeloraCpu
  > END
  $ file limit.json '"tests":[{"name":"x","events":[],"context":{"int64":{"limit":6}},"expect":{}}]' >x.test.json
  $ vig test x.test.json --mutants --write y.test.json | grep -A3 '`limit > 5` became `limit > 6`'
  limit.json:1:136: survived: `limit > 5` became `limit > 6` [configs[0].payload.data.transitions[0].filters[0]]
    it shows by 1 event, {"event":"Test","double":{"cpuAvgUtilization":1},"string":{"processName":"app"}}, in the context {"int64":{"limit":6}}
      unchanged: triggers "vig:cpu_over_budget:app"
      changed:   nothing
  [1]
  $ grep -n context y.test.json && vig test y.test.json --mutants
  21:      "context": {"int64":{"limit":6}},
  ok    y.test.json: 2 of 2 passed
  mutants  limit.json: 11 of 11 noticed, besides 1 without effect
  2 tests: 2 passed, 0 failed

If a test fails, it would notice everything; and what is written is a file of tests of the one document.

  $ file rules.json "${hot/0.375/0.625}" >fails.test.json && vig test fails.test.json --mutants | tail -2
  mutants  rules.json: not tried, since a test of it fails
  1 test: 0 passed, 1 failed
  [1]
  $ vig test hot.test.json x.test.json --mutants --write new.test.json
  vig: error: --write adds the tests of one rule document, and these are of several
  [2]
  $ vig test hot.test.json --mutants --write x.test.json
  vig: error: x.test.json has the tests of limit.json
  [2]
  $ vig test hot.test.json --mutants --write rules.json
  rules.json:1:1: error: is a rule document, which a file of tests names under "rules"
  [2]
  $ vig test hot.test.json --write new.test.json
  vig: error: --write requires --mutants
  Try: vig test --help
  [2]
  $ vig test hot.test.json --mutants --write nowhere/new.test.json | tail -2
  vig: error: nowhere/new.test.json: No such file or directory
  mutants  rules.json: 4 of 19 noticed, besides 4 without effect
  1 test: 1 passed, 0 failed
  [2]
