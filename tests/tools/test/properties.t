  $ . "$TESTDIR/../rules.sh"
  $ set -o pipefail
  $ property() { printf '\n{"name":"%s",%s}' "$@"; }
  $ properties() { printf '{"rules":"%s","properties":%s}' "$1" "$(joined "${@:2}")" >a.test.json; }
  $ lacks() { sed -E 's/^      //' | grep -vE '^ *(FAIL|ok|[0-9]+ (test|of))'; }

The tutorial's properties are true.

  $ cd "$VIG_SOURCE/docs/tutorial"
  $ vig test camera.properties.test.json
  ok    camera.properties.test.json: 4 of 4 passed
  4 tests: 4 passed, 0 failed
  $ cd "$OLDPWD"

One that is not is shown to be none.

  $ sed "s|204800|153600|; s|camera.json|$VIG_SOURCE/docs/tutorial/camera.json|" "$VIG_SOURCE/docs/tutorial/camera.properties.test.json" >camera.test.json
  $ vig test camera.test.json --filter shrinks
  FAIL  camera.test.json:15: it shrinks before it is collected again
        configs[0] (id 300) triggers on event 1, and on event 3 without such an event between them:
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":307201,"vmSwapKB":1},"string":{"processName":"camera"}}
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":153600},"string":{"processName":"camera"}}
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":307201,"vmSwapKB":1},"string":{"processName":"camera"}}
        event 1: ProcessMemoryHeartBeat in state start
          configs[0].payload.data.transitions[0] -> collected: fires
            yes   processName == "camera"  "camera" == "camera"
            yes   vmRssKB > 307200         307201 > 307200
            runs  TriggerVelora
        event 3: ProcessMemoryHeartBeat in state start
          configs[0].payload.data.transitions[0] -> collected: fires
            yes   processName == "camera"  "camera" == "camera"
            yes   vmRssKB > 307200         307201 > 307200
            runs  TriggerVelora
  FAIL  camera.test.json: 0 of 1 passed
  1 test: 0 passed, 1 failed
  [1]
  $ vig test camera.test.json --junit report.xml >/dev/null; grep '<testcase' report.xml
      <testcase classname="camera.test.json" name="only a large camera is collected"/>
      <testcase classname="camera.test.json" name="it shrinks before it is collected again"><failure message="configs[0] (id 300) triggers on event 1, and on event 3 without such an event between them:">  configs[0] (id 300) triggers on event 1, and on event 3 without such an event between them:
      <testcase classname="camera.test.json" name="of two events, one is collected at most"/>
      <testcase classname="camera.test.json" name="it can be collected"/>

Each kind has a shortest recording that refutes it, with what is drawn and decided. Others may be true of another machine.

  $ machines >two.json <<'END'
  > start hot ProcessMemoryHeartBeat | integer vmRssKB > =9 & double PseudoRandomDouble() < =0.25 | TriggerVelora; hot start Test; start pass ZramHeartBeat | string a == b &string c == =x | ; pass end EnteringState
  > start start ProcessCpuHeartBeat | double cpuAvgUtilization >= =5 | TriggerVeloraCpu TriggerVeloraCpu; start never Test | integer a > =1 & integer a < =2; start far Test | double b > =1.7976931348623157e308
  > END
  $ big=$(filters 'integer vmRssKB > =10') cpu=$(filters 'double cpuAvgUtilization > =2'); test_=${cpu/\{/\{\"event\":\"Test\",}
  $ properties two.json "$(property if "\"trigger_only_if\":$big")" "$(property type "\"config\":1,\"trigger_only_if\":$test_")" \
  >   "$(property between "\"config\":0,\"between_triggers\":$test_")" "$(property twice "\"between_triggers\":[]")" \
  >   "$(property most '"at_most":{"triggers":1}')" "$(property window '"config":0,"at_most":{"triggers":1,"events":3}')" \
  >   "$(property never '"cannot_reach":{"1":"never","0":"pass"}')"
  $ vig test a.test.json | lacks
  configs[0] (id 0) triggers on event 1, for which vmRssKB > 10 is not true:
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
  draws 0.125
  event 1: ProcessMemoryHeartBeat in state start
    configs[0].payload.data.transitions[0] -> hot: fires
      yes   vmRssKB > 9                  10 > 9
      yes   PseudoRandomDouble() < 0.25  0.125 < 0.25
      runs  TriggerVelora
  configs[1] (id 1) triggers on event 1, for which cpuAvgUtilization > 2 of Test is not true:
    {"event":"ProcessCpuHeartBeat","double":{"cpuAvgUtilization":5},"string":{"processName":"app"}}
  event 1: ProcessCpuHeartBeat in state start
    configs[1].payload.data.transitions[0] -> start: fires
      yes   cpuAvgUtilization >= 5  5 >= 5
      runs  TriggerVeloraCpu
      runs  TriggerVeloraCpu
  configs[0] (id 0) triggers on event 1, and on event 3 without such an event between them:
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
    {"event":"Test","double":{"cpuAvgUtilization":2}}
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
  draws 0.125
  event 1: ProcessMemoryHeartBeat in state start
    configs[0].payload.data.transitions[0] -> hot: fires
      yes   vmRssKB > 9                  10 > 9
      yes   PseudoRandomDouble() < 0.25  0.125 < 0.25
      runs  TriggerVelora
  event 3: ProcessMemoryHeartBeat in state start
    configs[0].payload.data.transitions[0] -> hot: fires
      yes   vmRssKB > 9                  10 > 9
      yes   PseudoRandomDouble() < 0.25  0.125 < 0.25
      runs  TriggerVelora
  configs[1] (id 1) triggers twice on event 1:
    {"event":"ProcessCpuHeartBeat","double":{"cpuAvgUtilization":5},"string":{"processName":"app"}}
  event 1: ProcessCpuHeartBeat in state start
    configs[1].payload.data.transitions[0] -> start: fires
      yes   cpuAvgUtilization >= 5  5 >= 5
      runs  TriggerVeloraCpu
      runs  TriggerVeloraCpu
  configs[0] (id 0) triggers 2 times, on events 1, 3:
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
    {"event":"Test"}
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
  draws 0.125
  event 3: ProcessMemoryHeartBeat in state start
    configs[0].payload.data.transitions[0] -> hot: fires
      yes   vmRssKB > 9                  10 > 9
      yes   PseudoRandomDouble() < 0.25  0.125 < 0.25
      runs  TriggerVelora
  configs[0] (id 0) triggers 2 times, on events 1, 3:
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
    {"event":"Test"}
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
  draws 0.125
  event 3: ProcessMemoryHeartBeat in state start
    configs[0].payload.data.transitions[0] -> hot: fires
      yes   vmRssKB > 9                  10 > 9
      yes   PseudoRandomDouble() < 0.25  0.125 < 0.25
      runs  TriggerVelora
  configs[0] (id 0) comes to the state pass:
    {"event":"ZramHeartBeat","string":{"a":"app","b":"app","c":"x"}}
  event 1: ZramHeartBeat in state start
    configs[0].payload.data.transitions[2] -> pass: fires
      yes   a == b    "app" == "app"
      yes   c == "x"  "x" == "x"
  event 1: EnteringState in state pass
    configs[0].payload.data.transitions[3] -> end: fires
  [1]
  $ properties two.json "$(property if "\"config\":1,\"trigger_only_if\":$cpu")" "$(property between '"config":0,"between_triggers":[]')" \
  >   "$(property window '"config":0,"at_most":{"triggers":2,"events":4}')" "$(property huge '"config":0,"at_most":{"triggers":4611686018427387904,"events":9223372036854775807}')" \
  >   "$(property can '"can_reach":{"0":"pass","1":"start"}')" "$(property cannot '"cannot_reach":{"1":"never"}')" "$(property infinite '"cannot_reach":{"1":"far"}')"
  $ vig test a.test.json
  ok    a.test.json: 7 of 7 passed
  7 tests: 7 passed, 0 failed

A trigger before the events of the limit does not count.

  $ hot='ProcessCpuHeartBeat | string processName == =a & double cpuAvgUtilization > =1 | TriggerVeloraCpu'
  $ machines <<<"start a $hot; a b $hot; b end $hot TriggerVeloraCpu" >three.json
  $ properties three.json "$(property few '"at_most":{"triggers":2,"events":2}')"
  $ vig test a.test.json | grep -o 'triggers .*'
  triggers 3 times, on events 2, 3, 3:
  [1]

What only an infinity breaks is true.

  $ machines <<<'start end ProcessCpuHeartBeat | double x > =5 | TriggerVeloraCpu' >finite.json
  $ finite() { property "$1" "\"trigger_only_if\":$(filters "double x <= =$1")"; }
  $ properties finite.json "$(finite 1.7976931348623157e308)" "$(finite 1.7976931348623155e308)"
  $ vig test a.test.json | grep "^[^ ]"
  FAIL  a.test.json:3: 1.7976931348623155e308
  FAIL  a.test.json: 1 of 2 passed
  2 tests: 1 passed, 1 failed
  [1]

What no machine can do, or is too long to show, fails.

  $ properties two.json "$(property never '"can_reach":{"1":"never"}')" "$(property infinite '"can_reach":{"1":"far"}')" \
  >   "$(property state '"cannot_reach":{"1":"fare"}')" "$(property id '"cannot_reach":{"2":"end"}')" "$(property config '"config":3,"at_most":{"triggers":0}')" \
  >   "$(property start '"cannot_reach":{"1":"start"}')" "$(property long '"at_most":{"triggers":1000000000}')" \
  >   "$(property wide '"at_most":{"triggers":400000,"events":500000}')"
  $ vig test a.test.json | lacks
  configs[1] (id 1) comes to the state never by no events
  configs[1] (id 1) comes to the state far only by events that no recording has: with an infinity, a NaN or a text that is no UTF-8
  configs[1] (id 1) has no state fare
  there is no configuration 2
  there is no configuration 3
  configs[1] (id 1) comes to the state start as it starts
  not decided for configs[0] (id 0): a recording with so many triggers is too long to look for
  not decided for configs[1] (id 1): a recording with so many triggers is too long to look for
  [1]

The context is that of the property, and a machine is the first with its id.

  $ document "$(config 7 "$(transition start end EnteringState "$(filters 'integer limit > =5')")")" "$(config 7)" >context.json
  $ properties context.json "$(property with '"can_reach":{"7":"end"},"context":{"int64":{"limit":6}}')" \
  >   "$(property without '"can_reach":{"7":"end"}')"
  $ vig test a.test.json
  FAIL  a.test.json:3: without
        configs[0] (id 7) comes to the state end by no events
  FAIL  a.test.json: 1 of 2 passed
  2 tests: 1 passed, 1 failed
  [1]

They stand beside tests, and count and are chosen like them.

  $ echo '{"rules":"two.json","tests":[{"name":"a","events":[],"expect":{}}],"properties":[{"name":"b","at_most":{"triggers":0}}]}' >both.test.json
  $ for part in a b c; do vig test both.test.json --filter $part; done
  ok    both.test.json: 1 of 1 passed
  1 test: 1 passed, 0 failed
  FAIL  both.test.json:1: b
        configs[0] (id 0) triggers 1 time, on event 1:
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10,"vmSwapKB":1},"string":{"processName":"app"}}
        draws 0.125
        event 1: ProcessMemoryHeartBeat in state start
          configs[0].payload.data.transitions[0] -> hot: fires
            yes   vmRssKB > 9                  10 > 9
            yes   PseudoRandomDouble() < 0.25  0.125 < 0.25
            runs  TriggerVelora
  FAIL  both.test.json: 0 of 1 passed
  1 test: 0 passed, 1 failed
  vig: error: no test is called like "c"
  [2]

Rules that are refused fail each property.

  $ document_of "$(transition a b test)" >bad.json
  $ properties bad.json "$(property a '"at_most":{"triggers":1}')" "$(property b '"can_reach":{"7":"end"}')"
  $ vig test a.test.json 2>&1 | tail -1
  2 tests: 0 passed, 2 failed
  [1]

What is not part of a property is an error at its place.

  $ while read -r line; do echo "{\"rules\":\"bad.json\",\"properties\":[$line]}" >b.test.json; vig test b.test.json; done <<'END'
  > 
  > {"name":"a"}
  > {"name":"a","at_most":{"triggers":1},"can_reach":{"7":"end"}}
  > {"name":"a","at_mst":{"triggers":1}}
  > {"name":"a","at_most":{"events":0,"most":1}}
  > {"name":"a","at_most":{"triggers":-1,"events":0}}
  > {"name":"a","can_reach":{}}
  > {"name":"a","can_reach":{"x":"end"},"config":7}
  > {"name":"a","at_most":{"triggers":1}},{"name":"a","at_most":{"triggers":1},"config":"x"}
  > {"name":"a","trigger_only_if":[]}
  > {"name":"a","trigger_only_if":[7]}
  > {"name":"a","between_triggers":[{"event":"Tst"}]}
  > {"name":"a","between_triggers":[{"operator":"=","value_type":"integer","operand1":{"type":"constant","value":"x"},"operand2":{"type":"envvar","value":"a","of":1}}]}
  > {"name":"a","between_triggers":[{"operator":"<","value_type":"double","operand1":{"type":"function","value":"PseudoRandomDouble"},"operand2":{"type":"constant","value":"1"}}]}
  > END
  b.test.json:1:34: error: properties: there is no property
  b.test.json:1:35: error: properties[0]: expected exactly one of "trigger_only_if", "between_triggers", "at_most", "can_reach", "cannot_reach"
  b.test.json:1:35: error: properties[0]: expected exactly one of "trigger_only_if", "between_triggers", "at_most", "can_reach", "cannot_reach"
  b.test.json:1:56: error: properties[0]: unknown key "at_mst"; did you mean "at_most"?
  b.test.json:1:57: error: properties[0].at_most: "triggers" is missing
  b.test.json:1:67: error: properties[0].at_most.events: expected an integer from 1 to 9223372036854775807
  b.test.json:1:76: error: properties[0].at_most: unknown key "most"
  b.test.json:1:69: error: properties[0].at_most.triggers: expected an integer from 0 to 9223372036854775807
  b.test.json:1:81: error: properties[0].at_most.events: expected an integer from 1 to 9223372036854775807
  b.test.json:1:59: error: properties[0].can_reach: there is no state
  b.test.json:1:64: error: properties[0].can_reach: expected the id of a configuration as key, got "x"
  b.test.json:1:80: error: properties[0].config: not together with "can_reach", which says it itself
  b.test.json:1:81: error: properties[1].name: there is another test or property "a"
  b.test.json:1:119: error: properties[1].config: expected an integer from -9223372036854775808 to 9223372036854775807
  b.test.json:1:65: error: properties[0].trigger_only_if: there is no filter
  b.test.json:1:66: error: properties[0].trigger_only_if[0]: expected an object, got a number
  b.test.json:1:67: error: properties[0].between_triggers[0]: Invalid filter JSON: {"event":"Tst"} ("operator" is missing); one of "==", "!=", ">", "<", ">=", "<="
  b.test.json:1:67: error: properties[0].between_triggers[0]: Invalid operand value type: . ("value_type" is missing); one of "string", "integer", "double"
  b.test.json:1:67: error: properties[0].between_triggers[0]: Filter operand must be an object. ("operand1" is missing); an object is needed
  b.test.json:1:67: error: properties[0].between_triggers[0]: Filter operand must be an object. ("operand2" is missing); an object is needed
  b.test.json:1:76: error: properties[0].between_triggers[0].event: unknown event "Tst"; did you mean "Test"?
  b.test.json:1:79: error: properties[0].between_triggers[0].operator: Invalid operator string: =.; write "==": one of "==", "!=", ">", "<", ">=", "<="
  b.test.json:1:144: error: properties[0].between_triggers[0].operand1.value: Invalid constant of value type integer: x.; a whole number within the range is needed, such as "80"
  b.test.json:1:194: error: properties[0].between_triggers[0].operand2: unknown key "of"
  b.test.json:1:116: error: properties[0].between_triggers[0].operand1: the filter of a property has no function
  [2]
  $ echo '{"rules":"bad.json"}' >b.test.json; vig test b.test.json
  b.test.json:1:1: error: neither "tests" nor "properties" are there
  [2]
