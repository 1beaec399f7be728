  $ cat >clean.json <<'EOF'
  > { "configs": [
  >   { "id": 7, "payload": { "id": 1, "data": { "transitions": [
  >     {
  >       "from_state": "start", "to_state": "end", "event": "ProcessMemoryHeartBeat",
  >       "filters": [
  >         { "operator": ">", "value_type": "integer",
  >           "operand1": { "type": "envvar", "value": "vmRssKB" },
  >           "operand2": { "type": "constant", "value": "300000" } },
  >         { "operator": "<", "value_type": "double",
  >           "operand1": { "type": "function", "value": "PseudoRandomDouble" },
  >           "operand2": { "type": "constant", "value": "0.1" } }
  >       ],
  >       "actions": [ { "name": "TriggerVelora" } ]
  >     }
  >   ] } } },
  >   { "id": 8, "payload": { "id": 2, "data": { "transitions": [] } } }
  > ] }
  > EOF

Every mistake is found at its place: from a line and column to others, with its path; "~" is the path of the transition.

  $ edited() {
  >   sed "${@/#/-e}" clean.json >rules.json; vig check rules.json --format json | sed -nE '
  >     s/.*"line":(.*),"column":(.*),"end_line":(.*),"end_column":(.*),"severity":".*","name":"(.*)","path":"(.*)","message":"(.*)","hint":"(([^"\\]|\\.)*)"(,"transition":.*)?\},?$/\1:\2-\3:\4 \6: \7 [\5]: \8/; T
  >     s/configs\[0\]\.payload\.data\.transitions\[0\]/~/; s/\\"/"/g; s/: $//; p'
  > }
  $ vig check clean.json
  nothing found in 1 file
  $ edited 's/"id": 7/"id": "7"/' 's/{ "id": 8.*/{ "id": 8 }/'
  2:11-2:14 configs[0].id: Invalid VIG Config JSON: { "id": "7", "payload": { "id": 1, "data\xe2\x80\xa6 ("id" is a string) [InvalidConfig]: a number is needed, without quotes (esc)
  16:11-16:12 configs[1]: Invalid VIG Config JSON: { "id": 8 } ("payload" is missing) [InvalidConfig]: an object is needed
  $ edited 's/"id": 7/"id": null/' 's/"<"/"< "/' 's/{ "name".*}/{}/'
  2:11-2:15 configs[0].id: Invalid VIG Config JSON: { "id": null, "payload": { "id": 1, "dat\xe2\x80\xa6 ("id" is null) [InvalidConfig]: a number is needed (esc)
  9:23-9:27 ~.filters[1].operator: Invalid operator string: < . [InvalidFsm]: one of "==", "!=", ">", "<", ">=", "<="
  13:20-13:22 ~.actions[0]: Invalid action JSON: {} ("name" is missing) [InvalidFsm]: a string is needed
  $ edited 's/"id": 1,/"id": 2147483648,/' 's/"id": 8/"id": -8.5/'
  2:33-2:43 configs[0].payload.id: Invalid VIG Config Payload JSON: { "id": 2147483648, "data": { "transitio\xe2\x80\xa6 [InvalidConfigPayload]: a number within the signed 32-bit range is needed (esc)
  16:11-16:15 configs[1].id: the id -8.5 is read as -8 [truncated-id]
  $ edited 's/"from_state": "start", //'
  4:19-4:24 ~: Invalid FSM JSON: { "to_state": "end", "event": "ProcessMe\xe2\x80\xa6 ("from_state" is missing) [InvalidFsm]: a string is needed (esc)
  $ edited 's/"end"/1/' 's/"name": "TriggerVelora"/&, "parameters": {}/' 's/"id": 8/"id": 7/'
  4:42-4:43 ~.to_state: Invalid FSM JSON: { "from_state": "start", "to_state": 1, \xe2\x80\xa6 ("to_state" is a number) [InvalidFsm]: a string: write "1" for 1 (esc)
  13:47-13:59 ~.actions[0].parameters: "parameters" is ignored, because it is not an array [unknown-key]: remove it, or write an array
  16:11-16:12 configs[1].id: configs[0] has the id 7 as well [duplicate-id]
  $ edited 's/"ProcessMemoryHeartBeat"/"processMemoryHeartbeat"/' 's/">"/"=>"/' 's/"300000"/300000/' \
  >   's/{.*"PseudoRandomDouble" }/"PseudoRandomDouble"/' 's/"TriggerVelora"/"TriggerVelor"/'
  4:58-4:82 ~.event: FSM Event not found! [InvalidFsm]: there is no event "processMemoryHeartbeat"; did you mean "ProcessMemoryHeartBeat"?
  6:23-6:27 ~.filters[0].operator: Invalid operator string: =>. [InvalidFsm]: write ">=": one of "==", "!=", ">", "<", ">=", "<="
  8:54-8:60 ~.filters[0].operand2.value: Filter operand value is missing or invalid. ("value" is a number) [InvalidFsm]: a string: write "300000" for 300000
  10:23-10:43 ~.filters[1].operand1: Filter operand must be an object. ("operand1" is a string) [InvalidFsm]: an object is needed: write { "type": "constant", "value": "PseudoRandomDouble" }
  13:30-13:44 ~.actions[0].name: FSM Action (TriggerVelor) not found! [InvalidFsm]: there is no action "TriggerVelor"; did you mean "TriggerVelora"?
  $ edited 's/"envvar"/"env"/' 's/"double"/"integer"/' 's/"0.1"/"1"/' 's/"TriggerVelora"/&, "parameters": []/'
  7:33-7:38 ~.filters[0].operand1.type: Unknown filter operand type: env [InvalidFsm]: one of "constant", "function", "envvar"
  10:54-10:74 ~.filters[1].operand1.value: Failed to find function: PseudoRandomDouble [InvalidFsm]: write "value_type": "double", which the function gives
  13:61-13:63 ~.actions[0].parameters: FSM Action (TriggerVelora()) not found! [InvalidFsm]: registered without parameters: remove "parameters"
  $ edited 's/"integer"/"Integer"/' 's/"PseudoRandomDouble"/"PseudoRandom"/' 's/"0.1"/""/' \
  >   's/"TriggerVelora"/"Tset", "parameters": [{ "type": "int", "value": 1 }, { "type": "integer", "value": 2147483648 }]/'
  6:42-6:51 ~.filters[0].value_type: Invalid operand value type: Integer. [InvalidFsm]: one of "string", "integer", "double"; did you mean "integer"?
  10:54-10:68 ~.filters[1].operand1.value: Failed to find function: PseudoRandom [InvalidFsm]: there is no function "PseudoRandom"; did you mean "PseudoRandomDouble"?
  11:54-11:56 ~.filters[1].operand2.value: Invalid constant of value type double: . [InvalidFsm]: a number within the range is needed, such as "0.5"
  13:30-13:36 ~.actions[0].name: FSM Action (Tset) not found! [InvalidFsm]: there is no action "Tset"; did you mean "Test"?
  13:63-13:68 ~.actions[0].parameters[0].type: Invalid action parameter type: int. [InvalidFsm]: write "integer": one of "string", "integer", "double"
  13:114-13:124 ~.actions[0].parameters[1].value: Invalid value for an action parameter of type integer: 2147483648. [InvalidFsm]: a whole number within the range is needed, such as "80"
  $ edited 's/"filters": \[/& null, [],/' 's/"actions": \[/& "Test",/'
  5:20-5:24 ~.filters[0]: Invalid filter JSON: null [InvalidFsm]: an object is needed
  5:26-5:28 ~.filters[1]: Invalid filter JSON: [] [InvalidFsm]: an object is needed
  13:20-13:26 ~.actions[0]: Invalid action JSON: "Test" [InvalidFsm]: an object is needed: write { "name": "Test" }
  $ edited 's/"configs"/"$schema": 1, &/' 's/"id": 8/"id": 6, "\\u0069d": 8/' 's/"id": 2/"$schema": 1, &/'
  16:5-16:9 configs[1].id: "id" is overwritten by the one in line 16, column 14 [duplicate-key]
  16:41-16:50 configs[1].payload.$schema: the key "$schema" is ignored [unknown-key]: known here: "id", "data"
  $ edited 's/"<"/">"/' 's/"0.1"/"10"/'
  9:23-9:26 ~.filters[1]: `PseudoRandomDouble() > 10` is never true, whatever the event [never-true]: a share lies between 0 and 1: write PseudoRandomDouble() < 0.1 to let 10 % through
  $ edited 's/"<"/"!="/' 's/"0.1"/"-1"/'
  9:23-9:27 ~.filters[1]: `PseudoRandomDouble() != -1` is always true, whatever the event [always-true]: a share lies between 0 and 1: write such a number, or leave the filter out
  $ edited 's/"double"/"integer"/' 's/"function", "value": "PseudoRandomDouble"/"envvar", "value": "vmRssKB"/' 's/"0.1"/"5"/'
  9:23-9:26 ~.filters[1]: `vmRssKB < 5` contradicts `vmRssKB > 300000` in the same transition [never-true]: a transition fires only if all its filters hold: make two transitions for two cases
  $ edited 's/"configs":/"configs"/'
  1:12-1:13 : a colon is missing behind the key "configs" [InvalidJson]: write ":" between the key and its value

Behind a comment the reader takes the bracket for the comma.

  $ edited 's|"id": 8|"id": 8/**/] "payloads": 1|'
  16:18-16:28 configs[1].payloads: the key "payloads" is ignored [unknown-key]: known here: "id", "payload"; did you mean "payload"?
