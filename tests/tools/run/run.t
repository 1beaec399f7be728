  $ . "$TESTDIR/../rules.sh"
  $ trigger=$(actions TriggerVelora)
  $ document "$(config 7 "$(transition start end ProcessMemoryHeartBeat '[]' "$trigger")")" \
  >   "$(config -8 "$(transition start armed EnteringState)" \
  >                "$(transition armed armed ProcessMemoryHeartBeat '[]' "$trigger")")" >rules.json
  $ camera='{"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},"int64":{"vmRssKB":1000,"vmSwapKB":24}}'
  $ printf '%s\n' '{"event":"Test"}' "$camera" >events.jsonl

For programs.

  $ vig run rules.json events.jsonl --format jsonl
  {"type":"log","event":0,"priority":"error","tag":"VIGManager","message":"ViG device config is available now."}
  {"type":"move","event":0,"machine":1,"config_id":-8,"from":"start","to":"armed"}
  {"type":"trigger","event":2,"machine":0,"config_id":7,"trigger_name":"vig:memory_heartbeat_over_budget:camera","process_name":"camera","metadata":["threshold_current_value:1024","threshold_units:RSS_anon_plus_swap_KB","vmRssKB:1000","vmSwapKB:24","processName:camera"]}
  {"type":"trigger","event":2,"machine":1,"config_id":-8,"trigger_name":"vig:memory_heartbeat_over_budget:camera","process_name":"camera","metadata":["threshold_current_value:1024","threshold_units:RSS_anon_plus_swap_KB","vmRssKB:1000","vmSwapKB:24","processName:camera"]}
  {"type":"move","event":2,"machine":0,"config_id":7,"from":"start","to":"end"}
  {"type":"end","events":2,"triggers":2,"machines":[{"machine":0,"config_id":7,"payload_id":1,"state":"end"},{"machine":1,"config_id":-8,"payload_id":1,"state":"armed"}]}

For people. Nothing is shown that a terminal acts on.

  $ document "$(config 7 "$(transition start '\u001b[2J\nx' ProcessMemoryHeartBeat '[]' "$trigger")")" \
  >   "$(config 8 "$(transition start start Test '[]' "$trigger")" \
  >               "$(transition start start ZramHeartBeat '[]' "$(actions LogZramHeartBeat)")")" >control.json
  $ vig run control.json - <<'END'
  > {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":2},"string":{"processName":"\u001b]0;\u0007\u202ea\n"}}
  > {"event":"Test"}
  > {"event":"ZramHeartBeat","uint64":{"memUsedMaxBytes":3,"numCompressedDataBytes":2}}
  > END
      event  what     who            detail
          1  trigger  0 (id 7)
             vig:memory_heartbeat_over_budget:\x1b]0;\x07\u202ea\n
             threshold_current_value:3  threshold_units:RSS_anon_plus_swap_KB
             vmRssKB:1  vmSwapKB:2  processName:\x1b]0;\x07\u202ea\n
          1  move     0 (id 7)       start -> \x1b[2J\nx
          2  log      error          VIGManager: Missing required attribute
                                     processName in event.
          3  log      info           VIGManager: Received VIG zram heart beat.
                                     memUsedMaxBytes: 3, numCompressedDataBytes: 2
  
  summary
    events    3
    triggers  1
            1 vig:memory_heartbeat_over_budget:\x1b]0;\x07\u202ea\n
    machine   0  config id 7  payload id 1  in state \x1b[2J\nx
    machine   1  config id 8  payload id 1  in state start

A document that is refused is told with the layer at fault, and with its log lines, to people if they want them.

  $ fsm=$(document_of "$(transition start end test)")
  $ for text in '{' '[]' '{"configs":[{"id":1,"payload":{}}]}' "$fsm" '{"configs":[7]}'; do
  >   echo "$text" >refused.json
  >   vig run refused.json events.jsonl --format jsonl >out || echo "$? $(grep -c '"type":"log"' out) $(wc -l <out)"
  > done
  refused.json:1:2: error: the text ends, and the "{" in line 1, column 1 is still open [InvalidJson]
      {
       ^
      hint: write } at the end
  1 2 2
  refused.json:1:1: error: the root must be an object whose "configs" is an array [InvalidResponse]
      []
      ^~
      hint: put {"configs": \xe2\x80\xa6 } around it (esc)
  1 1 1
  refused.json:1:31: error: Invalid VIG Config Payload JSON: {} ("id" is missing) [InvalidConfigPayload]
      {"configs":[{"id":1,"payload":{}}]}
                                    ^~
      path: configs[0].payload
      hint: a number is needed
  refused.json:1:31: error: Invalid VIG Config Payload JSON: {} ("data" is missing) [InvalidConfigPayload]
      {"configs":[{"id":1,"payload":{}}]}
                                    ^~
      path: configs[0].payload
      hint: an object is needed
  1 2 2
  refused.json:1:109: error: FSM Event not found! [InvalidFsm]
      \xe2\x80\xa6state":"start","to_state":"end","event":"test","filters":[],"actions":[]}]}}}]} (esc)
                                               ^~~~~~
      path: configs[0].payload.data.transitions[0].event: start -> end (line 1)
      hint: there is no event "test"; did you mean "Test"?
  1 3 3
  refused.json:1:13: error: Invalid VIG Config JSON: 7 [InvalidConfig]
      {"configs":[7]}
                  ^
      path: configs[0]
      hint: an object is needed
  1 2 2
  $ vig run refused.json events.jsonl --verbose
      event  what     who            detail
          0  log      error          VIGManager: Invalid VIG Config JSON: 7
                                     .
          0  log      error          VIGManager: ViG device config is available
                                     now.
  refused.json:1:13: error: Invalid VIG Config JSON: 7 [InvalidConfig]
      {"configs":[7]}
                  ^
      path: configs[0]
      hint: an object is needed
  [1]

What stands behind the end is told, and the rules run.

  $ printf '{"configs":[]}\n}' >trailing.json
  $ vig run trailing.json events.jsonl
  trailing.json:2:1: warning: the document ends before this, and what follows is ignored [trailing-text]
      }
      ^
      hint: remove it, or the bracket further up that closes too early
  summary
    events    2
    triggers  0

What cannot be read is named at once.

  $ vig run absent events.jsonl
  vig: error: absent: No such file or directory
  [2]
  $ vig run rules.json absent
  vig: error: absent: No such file or directory
  [2]
  $ vig run rules.json events.jsonl --context absent
  vig: error: absent: No such file or directory
  [2]
  $ vig run . events.jsonl
  vig: error: .: Is a directory
  [2]
  $ vig run rules.json .
  vig: error: .: Is a directory
  [2]
  $ vig run rules.json events.jsonl --context .
  vig: error: .: Is a directory
  [2]

A bad line ends the run after what happened before.

  $ printf '%s\n{"event":"\033[2J\\u001b"}\n{"event":"Test"}\n' "$camera" >bad.jsonl
  $ vig run rules.json bad.jsonl
      event  what     who            detail
          0  move     1 (id -8)      start -> armed
          1  trigger  0 (id 7)       vig:memory_heartbeat_over_budget:camera
             threshold_current_value:1024  threshold_units:RSS_anon_plus_swap_KB
             vmRssKB:1000  vmSwapKB:24  processName:camera
          1  trigger  1 (id -8)      vig:memory_heartbeat_over_budget:camera
             threshold_current_value:1024  threshold_units:RSS_anon_plus_swap_KB
             vmRssKB:1000  vmSwapKB:24  processName:camera
          1  move     0 (id 7)       start -> end
  bad.jsonl:2: error: a control character in a string has to be escaped
  [2]
  $ vig run rules.json <bad.jsonl >out
  <stdin>:2: error: a control character in a string has to be escaped
  [2]

The seed and the context decide what happens.

  $ five='integer limit == =5'
  $ document "$(config 1 "$(transition start end EnteringState "$(filters "$five")")")" \
  >   "$(config 2 "$(transition start end Test "$(filters 'double PseudoRandomDouble() < =0.5' "$five")")")" >drawn.json
  $ echo '{"event":"Test","int64":{"limit":5}}' >context.jsonl
  $ vig run drawn.json events.jsonl | grep move
  [1]
  $ vig run drawn.json events.jsonl --context context.jsonl | grep move
          0  move     0 (id 1)       start -> end
          1  move     1 (id 2)       start -> end
  $ vig run drawn.json events.jsonl --context context.jsonl --seed 1 | grep move
          0  move     0 (id 1)       start -> end
  $ vig run drawn.json events.jsonl --context /dev/null
  /dev/null: error: expected exactly one record
  [2]
  $ cat context.jsonl context.jsonl >twice.jsonl
  $ vig run drawn.json events.jsonl --context twice.jsonl
  twice.jsonl: error: expected exactly one record
  [2]

Draws are made as they are listed, by each device anew, and the last one stays.

  $ half=$(filters 'double PseudoRandomDouble() < =0.5')
  $ document_of "$(transition start other Test "$half")" "$(transition other start Test "$half")" >flip.json
  $ yes '{"event":"Test"}' | head -5 >five.jsonl
  $ vig run flip.json five.jsonl --draw 0.5 --draw 0 --draw 0.49999999999999994 --draw 0.75 --explain | grep -E 'move|<'
               no    PseudoRandomDouble() < 0.5  0.5 < 0.5
               yes   PseudoRandomDouble() < 0.5  0 < 0.5
          2  move     0 (id 7)       start -> other
               yes   PseudoRandomDouble() < 0.5  0.49999999999999994 < 0.5
          3  move     0 (id 7)       other -> start
               no    PseudoRandomDouble() < 0.5  0.75 < 0.5
  $ vig run flip.json five.jsonl five.jsonl -j 1 --draw 0 --draw 0.5 | grep move
          1  move     0 (id 7)       start -> other
          1  move     0 (id 7)       start -> other

Nobody has to read what is printed.

  $ mkfifo unread
  $ exec 4<>unread 3>unread 4>&-
  $ vig run rules.json events.jsonl >&3

When it cannot be printed, the run ends, and does not wait for the end of the events.

  $ yes "$camera" 2>/dev/null | timeout 60 vig run rules.json - --explain >/dev/full
  vig: error: standard output: No space left on device
  [2]

A document that the device configuration cannot read is no empty one.

  $ truncate --size 1G large.json
  $ for file in large.json /proc/self/mem; do vig run $file events.jsonl >/dev/null; vig graph $file; done
  vig: error: large.json: too large: 1 GiB or more
  vig: error: large.json: too large: 1 GiB or more
  vig: error: /proc/self/mem: Input/output error
  vig: error: /proc/self/mem: Input/output error
  [2]

An interruption ends the run with the summary of what happened.

  $ mkfifo in out.pipe
  $ vig run rules.json in --format jsonl >out.pipe &
  $ exec 4<out.pipe 5<>in
  $ echo "$camera" >&5
  $ while read -r line && [[ $line != *'"to":"end"'* ]]; do :; done <&4
  $ kill $!
  $ wait $!
  [130]
  $ cat <&4
  {"type":"end","events":1,"triggers":2,"machines":[{"machine":0,"config_id":7,"payload_id":1,"state":"end"},{"machine":1,"config_id":-8,"payload_id":1,"state":"armed"}]}
