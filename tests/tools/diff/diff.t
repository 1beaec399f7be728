  $ . "$TESTDIR/../rules.sh"
  $ differ() { vig diff old.json new.json "$@"; }

What is written otherwise is the same: states by other names, filters elsewhere, also where a number is drawn before
them, and transitions that cannot fire. A machine that does nothing is no difference.

  $ machines >old.json <<'END'
  > start busy ProcessMemoryHeartBeat | integer vmRssKB > =9 & string processName == =camera | ; busy start Test ; busy end ProcessMemoryHeartBeat | integer vmRssKB > =9 | TriggerVelora
  > start a ProcessMemoryHeartBeat | integer vmRssKB > =9 & double PseudoRandomDouble() < =0.5 | TriggerVelora ; start b ProcessMemoryHeartBeat | integer vmRssKB > =9 & double PseudoRandomDouble() < =0.25
  > END
  $ machines >new.json <<'END'
  > start fat ProcessMemoryHeartBeat | string processName == =camera & integer vmRssKB > =9 | ; fat done ProcessMemoryHeartBeat | integer vmRssKB >= =10 | TriggerVelora ; fat start Test ; fat lost ProcessMemoryHeartBeat | integer vmRssKB > =11 | TriggerVelora
  > start a ProcessMemoryHeartBeat | double PseudoRandomDouble() < =0.5 & integer vmRssKB > =9 | TriggerVelora ; start b ProcessMemoryHeartBeat | double PseudoRandomDouble() < =0.25 & integer vmRssKB > =9
  > start end Test | | Test
  > END
  $ differ
  old.json -> new.json: 1 new, 2 unchanged
    new          2  does nothing that is seen
    unchanged    0, 1
  $ differ --states | head -8
  old.json -> new.json: 1 changed, 1 new, 1 unchanged
    changed      0  waits in another state for processName "camera", vmRssKB 10 or more in state start
    new          2  does nothing that is seen
    unchanged    1
  
  0: they differ by event 1
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":10},"string":{"processName":"camera"}}
    each number that is drawn for an event is the same in both

A number that is drawn, the start, what no record can hold, what a machine that is new or gone does, and an id that
repeats. Only the odds are the same in the first one.

  $ machines >old.json <<'END'
  > start hot ProcessMemoryHeartBeat | double PseudoRandomDouble() < =0.5 | TriggerVelora
  > start on EnteringState | | LogZramHeartBeat
  > start end ZramHeartBeat | double x >= =1.7976931348623157e308 | LogZramHeartBeat
  > start end Test | | LogZramHeartBeat
  > END
  $ sed 's/"id":3/"id":1/; s/"operator":"<"/"operator":">="/; s/"TriggerVelora"/"TriggerVeloraCpu"/2; s/">=","value_type":"double","operand1":{"type":"envvar"/"==","value_type":"double","operand1":{"type":"envvar"/' old.json >new.json
  $ differ
  old.json -> new.json: 2 changed, 1 new, 1 removed, 1 unchanged
    changed      0  no longer triggers, with some draws, on ProcessMemoryHeartBeat in state start
    changed      0  triggers, with some draws, on ProcessMemoryHeartBeat in state start
    changed      0  only what is drawn differs: everything is as probable as before
    changed      2  only an infinity, NaN or a text that is no UTF-8 shows a difference
    new          1 (the 2. with this id)  logs on Test in state start
    removed      3  no longer logs on Test in state start
    unchanged    1
  
  0: they differ by event 1
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":1},"string":{"processName":"app"}}
    each number that is drawn for an event is the same in both
    old draws 0
    new draws 0
    old                                                                    | new
    triggers vig:memory_heartbeat_over_budget:app threshold_current_value\xe2\x80\xa6 | neither triggers nor logs (esc)
    ProcessMemoryHeartBeat in state start                                  | ProcessMemoryHeartBeat in state start
      transitions[0] -> hot: fires                                         |   transitions[0] -> hot: stopped by filter 1 of 1
        yes   PseudoRandomDouble() < 0.5  0 < 0.5                          |     no    PseudoRandomDouble() >= 0.5  0 >= 0.5
        runs  TriggerVelora                                                |
  
  1 (the 2. with this id): they differ by event 1
    {"event":"Test","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1}}
    old                 | new
    has no such machine | logs Received VIG zram heart beat. memUsedMaxBytes: 1, numCompres\xe2\x80\xa6 (esc)
                        | Test in state start
                        |   transitions[0] -> end: fires
                        |     runs  LogZramHeartBeat
  
  3: they differ by event 1
    {"event":"Test","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1}}
    old                                                                | new
    logs Received VIG zram heart beat. memUsedMaxBytes: 1, numCompres\xe2\x80\xa6 | has no such machine (esc)
    Test in state start                                                |
      transitions[0] -> end: fires                                     |
        runs  LogZramHeartBeat                                         |
  [1]
  $ differ --format markdown | head -8
  **old.json \xe2\x86\x92 new.json**: 2 changed, 1 new, 1 removed, 1 unchanged (esc)
  
  | configuration | | what is new |
  |---|---|---|
  | 0 | changed | no longer triggers, with some draws, on ProcessMemoryHeartBeat in state start<br>triggers, with some draws, on ProcessMemoryHeartBeat in state start<br>only what is drawn differs: everything is as probable as before |
  | 2 | changed | only an infinity, NaN or a text that is no UTF-8 shows a difference |
  | 1 (the 2. with this id) | new | logs on Test in state start |
  | 3 | removed | no longer logs on Test in state start |
  $ differ --format json | cut -c 1-400
  {"old":"old.json","new":"new.json","machines":[
  {"id":0,"old":0,"new":0,"verdict":"different","events":1,"shortest":true,"same_odds":true,"changes":["no longer triggers, with some draws, on ProcessMemoryHeartBeat in state start","triggers, with some draws, on ProcessMemoryHeartBeat in state start"],"recording":{"events":[{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":1},"string":{"processName":"app"}}],"draws":{"old":[0],"new
  {"id":1,"old":1,"new":1,"verdict":"same"},
  {"id":2,"old":2,"new":2,"verdict":"unrecordable"},
  {"id":1,"old":null,"new":3,"verdict":"different","events":1,"shortest":true,"same_odds":false,"changes":["logs on Test in state start"],"recording":{"events":[{"event":"Test","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1}}],"draws":{"old":[],"new":[]}},"explanation":{"old":[],"new":["Test in state start","  configs[3].payload.data.transitions[0] -> end: fires","    runs  LogZramHeartBea
  {"id":3,"old":3,"new":null,"verdict":"different","events":1,"shortest":true,"same_odds":false,"changes":["no longer logs on Test in state start"],"recording":{"events":[{"event":"Test","uint64":{"memUsedMaxBytes":1,"numCompressedDataBytes":1}}],"draws":{"old":[],"new":[]}},"explanation":{"old":["Test in state start","  configs[3].payload.data.transitions[0] -> end: fires","    runs  LogZramHeartBe
  ]}

The escalation example by other names and with its filters turned round, and with one threshold lower.

  $ cp "$VIG_SOURCE/examples/escalation.json" old.json
  $ python3 >new.json - <<'END'
  > import json
  > document = json.load(open("old.json"))
  > for rule in document["configs"][0]["payload"]["data"]["transitions"]:
  >     rule["to_state"] = rule["to_state"].replace("over budget", "too large")
  >     rule["from_state"] = rule["from_state"].replace("over budget", "too large")
  >     rule["filters"].sort(key=lambda each: ["integer", "string", "double"].index(each["value_type"]))
  > print(json.dumps(document))
  > END
  $ differ
  old.json -> new.json: 1 unchanged
    unchanged    104
  $ sed -E '0,/204800/s/204800/150000/' old.json >new.json
  $ differ
  old.json -> new.json: 1 changed
    changed      104  triggers, with some draws, for processName "camera", vmRssKB 204801 or more in state sampling (was over budget)
  
  104: they differ by event 3
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":150001},"string":{"processName":"camera"}}
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801},"string":{"processName":"camera"}}
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"camera"}}
    each number that is drawn for an event is the same in both
    new draws 0
    old                                                     | new
    neither triggers nor logs                               | triggers vig:memory_heartbeat_over_budget:camera threshold_current_va\xe2\x80\xa6 (esc)
    ProcessMemoryHeartBeat in state over budget             | ProcessMemoryHeartBeat in state sampling
      transitions[1] -> start: stopped by filter 2 of 2     |   transitions[3] -> start: stopped by filter 2 of 2
        yes   processName == "camera"  "camera" == "camera" |     yes   processName == "camera"  "camera" == "camera"
        no    vmRssKB <= 204800        204801 <= 204800     |     no    vmRssKB <= 204800        204801 <= 204800
      transitions[2] -> sampling: fires                     |   transitions[4] -> cooling down: fires
        yes   processName == "camera"  "camera" == "camera" |     yes   processName == "camera"     "camera" == "camera"
                                                            |     yes   PseudoRandomDouble() < 0.5  0 < 0.5
                                                            |     runs  TriggerVelora
  [1]
  $ differ --format markdown
  **old.json \xe2\x86\x92 new.json**: 1 changed (esc)
  
  | configuration | | what is new |
  |---|---|---|
  | 104 | changed | triggers, with some draws, for processName "camera", vmRssKB 204801 or more in state sampling (was over budget) |
  
  <details><summary>104: they differ by event 3</summary>
  
  ```json
  {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":150001},"string":{"processName":"camera"}}
  {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801},"string":{"processName":"camera"}}
  {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":204801,"vmSwapKB":1},"string":{"processName":"camera"}}
  ```
  each number that is drawn for an event is the same in both<br>new draws 0
  
  <table><tr><th>old</th><th>new</th></tr><tr><td><pre>
  neither triggers nor logs
  ProcessMemoryHeartBeat in state over budget
    transitions[1] -&gt; start: stopped by filter 2 of 2
      yes   processName == "camera"  "camera" == "camera"
      no    vmRssKB &lt;= 204800        204801 &lt;= 204800
    transitions[2] -&gt; sampling: fires
      yes   processName == "camera"  "camera" == "camera"
  </pre></td><td><pre>
  triggers vig:memory_heartbeat_over_budget:camera threshold_current_va\xe2\x80\xa6 (esc)
  ProcessMemoryHeartBeat in state sampling
    transitions[3] -&gt; start: stopped by filter 2 of 2
      yes   processName == "camera"  "camera" == "camera"
      no    vmRssKB &lt;= 204800        204801 &lt;= 204800
    transitions[4] -&gt; cooling down: fires
      yes   processName == "camera"     "camera" == "camera"
      yes   PseudoRandomDouble() &lt; 0.5  0 &lt; 0.5
      runs  TriggerVelora
  </pre></td></tr></table>
  </details>
  [1]

Odds that only add up to the same are the same; others, or another state in which they count, are not.

  $ drawn() { machines <<<"start hot ProcessMemoryHeartBeat | $1 | TriggerVelora ; start cold ProcessMemoryHeartBeat | $2 ; hot start Test ; cold ${3:-start} Test"; }
  $ r="double PseudoRandomDouble()"
  $ drawn "$r < =0.25" "$r < =0.5" >old.json
  $ odds() { drawn "$@" >new.json; differ --format json | grep -o '"same_odds":[a-z]*'; }
  $ odds "$r >= =0.75" "$r >= =0.5"
  "same_odds":true
  $ odds "$r >= =0.25" "$r < =0.5"
  "same_odds":false
  $ odds "$r >= =0.75" "$r < =0.5" other
  "same_odds":false
  $ odds "$r >= =0.75 & integer x > =0" "$r < =0.5"
  "same_odds":false
  $ odds "double x < PseudoRandomDouble()" "$r < =0.5"
  "same_odds":false

Odds that are hardly different are not the same, nor are those of states whose names count. What stands in a table of
Markdown does not end its cells.

  $ machines >old.json <<'END'
  > start start Test | double PseudoRandomDouble() < =1e-13 & string axb == =_c_ | LogZramHeartBeat
  > start a Test | double PseudoRandomDouble() < =0.25 ; start b Test ; a end Test | | LogZramHeartBeat ; b end Test | | LogZramHeartBeat
  > END
  $ sed -i 's/axb/a|b/' old.json
  $ sed 's/1e-13/2e-13/; s/"to_state":"a"/"to_state":"c"/; s/"to_state":"b"/"to_state":"a"/; s/"to_state":"c"/"to_state":"b"/' old.json >new.json
  $ differ --states --format markdown | head -6
  **old.json \xe2\x86\x92 new.json**: 2 changed (esc)
  
  | configuration | | what is new |
  |---|---|---|
  | 0 | changed | logs, with some draws, for a&#124;b "&#95;c&#95;" in state start |
  | 1 | changed | waits in another state, with some draws, on Test in state start |

A machine's own event has no attributes, and an action says what it lacks of an event.

  $ machines >old.json <<'END'
  > start end EnteringState | double x >= PseudoRandomDouble() | LogZramHeartBeat
  > start end Test | string processName == = | TriggerVelora
  > END
  $ machines >new.json <<'END'
  > start end EnteringState | double PseudoRandomDouble() <= =0 | LogZramHeartBeat
  > start end Test | string processName == =
  > END
  $ differ | head -3
  old.json -> new.json: 1 changed, 1 unchanged
    changed      1  no longer logs for no processName in state start
    unchanged    0

A change deep in the document is found at the end of the shortest way there. What a circle of draws leaves open is no
claim.

  $ machines >old.json <<'END'
  > start a Test ; a b Test ; b start Test ; b c ProcessMemoryHeartBeat | integer vmRssKB > =20000 & double cpu < =0.5 | TriggerVelora
  > start a Test ; a a EnteringState | double PseudoRandomDouble() < =0.5 | ; a start Test
  > END
  $ sed 's/20000/15000/' old.json >new.json
  $ differ
  old.json -> new.json: 1 changed, 1 unchanged
    changed      0  triggers for vmRssKB 15001 to 20000, cpu below 0.5 in state b
    unchanged    1
  
  0: they differ by event 3
    {"event":"Test"}
    {"event":"Test"}
    {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":15001,"vmSwapKB":1},"double":{"cpu":-1},"string":{"processName":"app"}}
    each number that is drawn for an event is the same in both
    old draws 0.5
    new draws 0.5
    old                                             | new
    neither triggers nor logs                       | triggers vig:memory_heartbeat_over_budget:app threshold_current_value\xe2\x80\xa6 (esc)
    ProcessMemoryHeartBeat in state b               | ProcessMemoryHeartBeat in state b
      transitions[3] -> c: stopped by filter 1 of 2 |   transitions[3] -> c: fires
        no    vmRssKB > 20000  15001 > 20000        |     yes   vmRssKB > 15000  15001 > 15000
                                                    |     yes   cpu < 0.5        -1 < 0.5
                                                    |     runs  TriggerVelora
  [1]
  $ sed -i 's/"a","event":"EnteringState"/"start","event":"EnteringState"/' new.json
  $ differ --format json | cut -c 1-100
  {"old":"old.json","new":"new.json","machines":[
  {"id":0,"old":0,"new":0,"verdict":"different","events":3,"shortest":true,"same_odds":false,"changes"
  {"id":1,"old":1,"new":1,"verdict":"not decided","events":1}
  ]}

  $ machines >old.json <<'END'
  > start a Test ; a a EnteringState | double PseudoRandomDouble() < =0.25
  > END
  $ sed 's/0\.25/0.125/' old.json >new.json
  $ differ
  old.json -> new.json: 1 not decided
    not decided  0  not decided up to 1 event: no shorter recording shows a difference
  [3]

  $ vig diff missing.json new.json
  vig: error: missing.json: No such file or directory
  [2]
  $ echo '{}' >new.json
  $ differ
  new.json:1:1: error: the root must be an object whose "configs" is an array ("configs" is missing) [InvalidResponse]
      {}
      ^~
      hint: an array is needed; [] for none
  [2]
  $ vig diff old.json
  vig: error: NEW is required
  Try: vig diff --help
  [2]
