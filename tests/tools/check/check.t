  $ . "$TESTDIR/../rules.sh"
  $ cat >"a b.json" <<'EOF'
  > { "configs": [
  > 	{ "note ä": 1, "id": true, "payload": { "id": 1, "data": { "transitions": [
  > 		{ "from_state": "start", "to_state": "end", "event": "ZramHeartbeat",
  > 			"filters": [], "actions": [{ "name": "Test" }] } ] } } }
  > ] }
  > EOF
  $ vig check "a b.json"
  a b.json:2:4: warning: the key "note \xc3\xa4" is ignored [unknown-key] (esc)
      \t{ "note \xc3\xa4": 1, "id": true, "payload": { "id": 1, "data": { "transitions": [ (esc)
      \t  ^~~~~~~~ (esc)
      path: configs[0].note \xc3\xa4 (esc)
      hint: known here: "id", "payload"
  a b.json:2:24: error: Invalid VIG Config JSON: { "note \xc3\xa4": 1, "id": true, "payload": {\xe2\x80\xa6 ("id" is a boolean) [InvalidConfig] (esc)
      \t{ "note \xc3\xa4": 1, "id": true, "payload": { "id": 1, "data": { "transitions": [ (esc)
      \t                     ^~~~ (esc)
      path: configs[0].id
      hint: a number is needed
  a b.json:3:56: error: FSM Event not found! [InvalidFsm]
      \t\t{ "from_state": "start", "to_state": "end", "event": "ZramHeartbeat", (esc)
      \t\t                                                     ^~~~~~~~~~~~~~~ (esc)
      path: configs[0].payload.data.transitions[0].event: start -> end (line 3)
      hint: there is no event "ZramHeartbeat"; did you mean "ZramHeartBeat"?
  2 errors, 1 warning in 1 file
  [1]

For programs: with columns in bytes, and in characters. The rules that a result may break are numbered from 0.

  $ vig check "a b.json" --format json
  {"findings":[
  {"file":"a b.json","line":2,"column":4,"end_line":2,"end_column":13,"severity":"warning","name":"unknown-key","path":"configs[0].note \xc3\xa4","message":"the key \\"note \xc3\xa4\\" is ignored","hint":"known here: \\"id\\", \\"payload\\""}, (esc)
  {"file":"a b.json","line":2,"column":24,"end_line":2,"end_column":28,"severity":"error","name":"InvalidConfig","path":"configs[0].id","message":"Invalid VIG Config JSON: { \\"note \xc3\xa4\\": 1, \\"id\\": true, \\"payload\\": {\xe2\x80\xa6 (\\"id\\" is a boolean)","hint":"a number is needed"}, (esc)
  {"file":"a b.json","line":3,"column":56,"end_line":3,"end_column":71,"severity":"error","name":"InvalidFsm","path":"configs[0].payload.data.transitions[0].event","message":"FSM Event not found!","hint":"there is no event \"ZramHeartbeat\"; did you mean \"ZramHeartBeat\"?","transition":{"from":"start","to":"end","line":3}}
  ],"errors":2,"warnings":1,"files":1,"undecided":[]}
  [1]
  $ vig check "a b.json" --format sarif | grep -nv '^{"id":"[^u].*,$' | sed 's/\("vig","version":"\)[0-9.]*/\1/'
  1:{"version":"2.1.0","$schema":"https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json","runs":[{"tool":{"driver":{"name":"vig","version":"","rules":[
  7:{"id":"unreachable-state","shortDescription":{"text":"the machine never comes to the state"}},
  15:{"id":"unknown-attribute","shortDescription":{"text":"an attribute that the event type does not have"}},
  30:{"id":"unknown-key","shortDescription":{"text":"a key that is ignored"}},
  35:{"id":"unused-timeout","shortDescription":{"text":"a transition on \"Timeout\", which nothing arms by itself"}},
  36:{"id":"no-way-out","shortDescription":{"text":"a state that cannot be left and is not \"end\""}}]}},"columnKind":"unicodeCodePoints","results":[
  37:{"ruleId":"unknown-key","ruleIndex":28,"level":"warning","message":{"text":"the key \\"note \xc3\xa4\\" is ignored Hint: known here: \\"id\\", \\"payload\\""},"locations":[{"physicalLocation":{"artifactLocation":{"uri":"a%20b.json"},"region":{"startLine":2,"startColumn":4,"endLine":2,"endColumn":12}},"logicalLocations":[{"fullyQualifiedName":"configs[0].note \xc3\xa4"}]}]}, (esc)
  38:{"ruleId":"InvalidConfig","ruleIndex":2,"level":"error","message":{"text":"Invalid VIG Config JSON: { \\"note \xc3\xa4\\": 1, \\"id\\": true, \\"payload\\": {\xe2\x80\xa6 (\\"id\\" is a boolean) Hint: a number is needed"},"locations":[{"physicalLocation":{"artifactLocation":{"uri":"a%20b.json"},"region":{"startLine":2,"startColumn":23,"endLine":2,"endColumn":27}},"logicalLocations":[{"fullyQualifiedName":"configs[0].id"}]}]}, (esc)
  39:{"ruleId":"InvalidFsm","ruleIndex":4,"level":"error","message":{"text":"FSM Event not found! Hint: there is no event \"ZramHeartbeat\"; did you mean \"ZramHeartBeat\"?"},"locations":[{"physicalLocation":{"artifactLocation":{"uri":"a%20b.json"},"region":{"startLine":3,"startColumn":56,"endLine":3,"endColumn":71}},"logicalLocations":[{"name":"start -> end","fullyQualifiedName":"configs[0].payload.data.transitions[0].event"}]}]}
  40:]}]}
  $ vig check "$PWD/a b.json" --format sarif | grep -o '"uri":"[^"]*' | uniq
  "uri":"file:///*/a%20b.json (glob)

Of a long line only the neighbourhood of the place is shown, and nothing that would act on the terminal.

  $ filler=$(printf '%200s')
  $ printf '{"configs":[%s"\x1b[2J"%s]}' "$filler" "$filler" >long.json
  $ vig check long.json
  long.json:1:213: error: Invalid VIG Config JSON: "\x1b[2J" [InvalidConfig]
      \xe2\x80\xa6                                        "\\x1b[2J"                                                      \xe2\x80\xa6 (esc)
                                               ^~~~~~~~~
      path: configs[0]
      hint: an object is needed
  1 error in 1 file
  [1]

The status tells errors from warnings, which may be allowed, and both from what cannot be read.

  $ document_of "$(transition start end Test [] "$(actions Test)")" >clean.json
  $ sed 's/"id"/"x":1,&/' clean.json >warned.json
  $ vig check --strict clean.json
  nothing found in 1 file
  $ vig check warned.json >out; echo $?; tail -1 out
  0
  1 warning in 1 file
  $ vig check --strict warned.json >out; echo $?; tail -1 out
  1
  1 warning in 1 file
  $ vig check --strict warned.json --allow unknown-key
  nothing found in 1 file
  $ vig check warned.json "a b.json" clean.json --allow unknown-key >out; echo $?; tail -1 out
  1
  2 errors in 3 files
  $ vig check absent.json "a b.json" --allow unknown-key >out; echo $?; tail -1 out
  vig: error: absent.json: No such file or directory
  2
  2 errors in 1 file
  $ vig check absent.json warned.json --allow unknown-key
  vig: error: absent.json: No such file or directory
  nothing found in 1 file
  [2]
  $ : >empty.json; vig check empty.json >out; echo $?; head -1 out
  1
  empty.json:1:1: error: the file is empty [InvalidJson]

Programs get long names whole.

  $ name=$(printf 'x%.0s' {1..3000})
  $ echo "{\"configs\":[],\"$name\":1}" >long.json
  $ vig check long.json --format json | grep -o "\"path\":\"$name\"" | wc -c
  3010
  $ vig check long.json --format sarif | grep -o "\"fullyQualifiedName\":\"$name\"" | wc -c
  3024

What events show is shown by them on demand, and always to programs. They are as `vig run` takes them.

  $ random='double PseudoRandomDouble() < =0.1'
  $ machines >shown.json <<EOF
  > start end EnteringState | $random | Test
  > start hot ProcessMemoryHeartBeat | integer vmRssKB > =102400 | TriggerVelora; hot start ProcessMemoryHeartBeat | integer vmRssKB > =204800
  > EOF
  $ sed -i 's/{"configs":\[/&{"id":true},/' shown.json
  $ vig check shown.json --verbose | tail -12
      hint: an object is needed
  shown.json:1:613: warning: "TriggerVelora" asks for a collection once in 2 ProcessMemoryHeartBeat events as long as their values stay the same: they lead from "start" to "hot" to "start" [trigger-storm]
      \xe2\x80\xa6,"value":"102400"}}],"actions":[{"name":"TriggerVelora"}]},{"from_state":"hot","to_state":"start","e\xe2\x80\xa6 (esc)
                                               ^~~~~~~~~~~~~~~
      path: configs[2].payload.data.transitions[0].actions[0]: start -> hot (line 1)
      hint: the same event must not fulfil the filters of both start -> hot (transitions[0]) and hot -> start (transitions[1]); or add the filter PseudoRandomDouble() < 0.1
      for example:
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}}
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}}
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}}
          {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}}
  2 errors, 1 warning in 1 file
  $ vig check shown.json --format json | grep -o '"witness".*'
  "witness":{"events":[{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}},{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}},{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}},{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"app"}}],"draws":[]}}
  $ vig check shown.json --format sarif | grep -o '"properties".*' | cut -c1-80
  "properties":{"witness":{"events":[{"event":"ProcessMemoryHeartBeat","int64":{"v
  $ machines >shown.json <<EOF
  > start a Test | integer x > =7; a b EnteringState | $random; b c Test; a c Test | integer x > =9
  > start a Test; a a EnteringState
  > start a EnteringState | $random; a b EnteringState; b a EnteringState | double PseudoRandomDouble() > =0.5; b c Test
  > start a EnteringState; a a EnteringState
  > EOF
  $ vig check shown.json --format json | sed -nE 's/.*"name":("[^"]*").*"witness":(.*)}.*/\1 \2/p'
  "no-way-out" {"events":[{"event":"Test","int64":{"x":8}},{"event":"Test","int64":{"x":10}}],"draws":[0.5]}
  "no-way-out" {"events":[{"event":"Test"}],"draws":[]}
  "endless-entering" {"events":[{"event":"Test"}],"draws":[]}
  "endless-entering" {"events":[],"draws":[0.05,0.75,0.5]}
  "no-way-out" {"events":[{"event":"Test"}],"draws":[0.05,0.5]}
  "no-way-out" {"events":[],"draws":[]}
  "endless-entering" {"events":[],"draws":[]}
  $ vig check shown.json --verbose | grep 'soon\|0.75'
      for example: as soon as it starts
      with the draws 0.05, 0.75, 0.5
      for example: as soon as it starts
      for example: as soon as it starts

Warnings can be left out, and errors cannot.

  $ vig check shown.json --allow no-way-out --allow endless-entering --allow no-action | tail -1
  2 errors in 1 file

What a thousand transitions leave of a number is decided, and so is a circle beside the way of a storm, and a state that
only one name or none at all leaves.

  $ below=$(transition start end Test "$(filters 'integer x < =-N')" "$(actions Test)") above=$(transition start end Test "$(filters 'integer x > =N')")
  $ document_of $(for n in {900..1}; do echo "${below/N/$n}" "${above/N/$n}"; done) >many.json
  $ machines >beside.json <<'END'
  > start a ProcessMemoryHeartBeat | integer vmRssKB > =10 | TriggerVelora; a b ProcessMemoryHeartBeat; b a ProcessMemoryHeartBeat | integer vmRssKB > =10; b start ProcessMemoryHeartBeat
  > start hot ProcessMemoryHeartBeat | string processName == =a; hot start ProcessMemoryHeartBeat | string processName > =a; hot start ProcessMemoryHeartBeat | string processName < =a & string processName > =; hot end ProcessMemoryHeartBeat || TriggerVelora
  > END
  $ vig check many.json beside.json
  nothing found in 2 files

What would take too long is left undecided, which is said: nine different numbers cannot be from 1 to 8.

  $ all="start end Test | "
  $ for n in {1..9}; do all+="integer a$n >= =1 & integer a$n <= =8 & "; done
  $ for n in {1..9}; do for m in {1..9}; do [ $n -ge $m ] || all+="integer a$n != a$m & "; done; done
  $ all="${all% & } | Test"
  $ echo "$all" | machines >ways.json
  $ vig check ways.json
  ways.json: not decided: warnings may be missing of configs[0] (id 0)
  nothing found in 1 file; not everything could be decided of 1 machine
  $ vig check ways.json --strict >out; echo $?
  1
  $ vig check ways.json --format json | tail -1
  ],"errors":0,"warnings":0,"files":1,"undecided":[{"file":"ways.json","path":"configs[0]","id":0}]}
  $ vig check ways.json --format sarif | tail -1
  ],"invocations":[{"executionSuccessful":true,"toolExecutionNotifications":[{"level":"warning","message":{"text":"ways.json: warnings may be missing of configs[0] (id 0)"}}]}]}]}
  $ for n in {0..6}; do echo "$all"; all+=" Test"; done | machines >ways.json
  $ vig check ways.json clean.json
  ways.json: not decided: warnings may be missing of configs[0] (id 0), configs[1] (id 1), configs[2] (id 2), configs[3] (id 3), configs[4] (id 4) and 2 more
  nothing found in 2 files; not everything could be decided of 7 machines

Warnings are told beside errors, as far as they are there however those are mended: the last action may ask for
collections, so that nothing is said of storms, and the third transition may lead to "b".

  $ sed 's/TriggerVelora/Trigger/; s/"Test"/"Tst"/' >beside.json < <(machines <<'EOF'
  > start hot ProcessMemoryHeartBeat | integer vmRsKB > =1x; start end ProcessMemoryHeartBeat; start b ProcessMemoryHeartBeat; hot b Test; c b ProcessMemoryHeartBeat || TriggerVelora
  > EOF
  > )
  $ vig check beside.json | sed -n 's/^beside.json:[0-9:]* //p; /path/p'
  warning: `vmRsKB > 1x` is false for a ProcessMemoryHeartBeat event without vmRsKB, which then fires start -> end (transitions[1]) as if it were the opposite [missing-falls-through]
      path: configs[0].payload.data.transitions[0].filters[0]: start -> hot (line 1)
  warning: ProcessMemoryHeartBeat events are not known to have an attribute "vmRsKB" [unknown-attribute]
      path: configs[0].payload.data.transitions[0].filters[0].operand1.value: start -> hot (line 1)
  warning: "1x" is read as 1; "x" is ignored [number-text]
      path: configs[0].payload.data.transitions[0].filters[0].operand2.value: start -> hot (line 1)
  warning: this never fires: before it comes start -> end (transitions[1]) on ProcessMemoryHeartBeat, which always fires [shadowed-transition]
      path: configs[0].payload.data.transitions[2]: start -> b (line 1)
  error: FSM Event not found! [InvalidFsm]
      path: configs[0].payload.data.transitions[3].event: hot -> b (line 1)
  warning: no chain of transitions leads from "start" to "c" [unreachable-state]
      path: configs[0].payload.data.transitions[4].from_state: c -> b (line 1)
  error: FSM Action (Trigger) not found! [InvalidFsm]
      path: configs[0].payload.data.transitions[4].actions[0].name: c -> b (line 1)

Standard input is a document as well, of which the other verbs tell what is wrong alike.

  $ vig check - <warned.json | head -1
  <stdin>:1:14: warning: the key "x" is ignored [unknown-key]
  $ vig graph --format mermaid - <beside.json 2>&1 | grep error
  <stdin>:1:529: error: FSM Event not found! [InvalidFsm]
  <stdin>:1:660: error: FSM Action (Trigger) not found! [InvalidFsm]
  $ vig graph - --events - <beside.json
  vig: error: standard input can be one of them only: the rule document, or one file of event records
  Try: vig graph --help
  [2]
  $ document_of "$(transition start end Test)" >rules.json
  $ echo '{"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{"states":{"7":"start"}}}]}' | vig test -
  ok    <stdin>: 1 of 1 passed
  1 test: 1 passed, 0 failed
  $ vig check - - </dev/null; vig test - - </dev/null; vig test --generate -
  vig: error: standard input can be read only once
  Try: vig check --help
  vig: error: standard input can be read only once
  Try: vig test --help
  vig: error: --generate takes a file, since the tests name it
  Try: vig test --help
  [2]
  $ echo '{"configs":[]}' | vig prove -

