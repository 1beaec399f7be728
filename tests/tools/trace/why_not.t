  $ . "$TESTDIR/../rules.sh"
  $ cat >events.jsonl <<'END'
  > {"event":"Test","int64":{"pid":3}}
  > {"event":"Test","time_ms":9,"int64":{"pid":8,"limit":4}}
  > END
  $ above=$(filters 'integer pid > =9')
  $ document_of "$(transition start end Test "$above")" "$(transition start a Test)" "$(transition a b Test)" \
  >   "$(transition b c EnteringState "$above")" "$(transition c b EnteringState)" >rules.json

What kept a transition from firing is told after what happened.

  $ for index in 0 2 3 4; do
  >   vig run rules.json events.jsonl --why-not "configs[0].payload.data.transitions[$index]" |
  >     sed -n '/^why not/,/^$/p'
  > done
  why not configs[0].payload.data.transitions[0] (start -> end on Test)
          2 events
          1   while the machine was in state a
          1   for which it was tried
          1     stopped by pid > 9, at the nearest 3 > 9 (off by 7) in event 1
          0     fired
  
  why not configs[0].payload.data.transitions[2] (a -> b on Test)
          2 events
          1   while the machine was in state start
          1   for which it was tried
          1     fired
  
  why not configs[0].payload.data.transitions[3] (b -> c on EnteringState)
          3 events
          2   of another type
          1   for which it was tried
          1     stopped by pid > 9
          0     fired
  
  why not configs[0].payload.data.transitions[4] (c -> b on EnteringState)
          2 events
          2   of another type
          0   for which it was tried
          0     fired
  

For programs.

  $ document_of "$(transition start end Test "$above")" >rules.json
  $ vig run rules.json events.jsonl --format jsonl --why-not 'configs[0].payload.data.transitions[0]' | grep why_not
  {"type":"why_not","path":"configs[0].payload.data.transitions[0]","machine":0,"config_id":7,"from":"start","to":"end","event_type":"Test","events":2,"other_types":0,"other_states":[],"earlier_fired":0,"tried":2,"fired":0,"filters":[{"condition":"pid > 9","stopped":2,"nearest":{"distance":2,"left":8,"right":9,"event":2,"time_ms":9}}]}
  $ vig run rules.json events.jsonl --why-not 'configs[0].payload.data.transition[0]'
      event  what     who            detail
          0  log      error          VIGManager: ViG device config is available now.
  rules.json: error: no transition has the path "configs[0].payload.data.transition[0]"; did you mean "configs[0].payload.data.transitions[0]"?; there are configs[0].payload.data.transitions[0]
  [2]
