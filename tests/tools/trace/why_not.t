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
  why not configs[0].payload.data.transitions[0]
    start -> end on Test
          2 events
          1   while the machine was in state a
          1   for which it was tried
          1     stopped by pid > 9
                  nearest 3 > 9 (off by 7) in event 1
          0     fired
  
  why not configs[0].payload.data.transitions[2]
    a -> b on Test
          2 events
          1   while the machine was in state start
          1   for which it was tried
          1     fired
  
  why not configs[0].payload.data.transitions[3]
    b -> c on EnteringState
          3 events
          2   of another type
          1   for which it was tried
          1     stopped by pid > 9
          0     fired
  
  why not configs[0].payload.data.transitions[4]
    c -> b on EnteringState
          2 events
          2   of another type
          0   for which it was tried
          0     fired
    never tried: the machine never was in state c, since on the way there
      transitions[3] b -> c never fired: stopped by filter 1 of 1, pid > 9
  

For programs.

  $ document_of "$(transition start end Test "$above")" >rules.json
  $ vig run rules.json events.jsonl --format jsonl --why-not 'configs[0].payload.data.transitions[0]' | grep why_not
  {"type":"why_not","path":"configs[0].payload.data.transitions[0]","machine":0,"config_id":7,"from":"start","to":"end","event_type":"Test","events":2,"other_types":0,"other_states":[],"earlier_fired":0,"tried":2,"fired":0,"filters":[{"condition":"pid > 9","stopped":2,"nearest":{"distance":2,"left":8,"right":9,"event":2,"time_ms":9}}],"upstream":[]}

What was never tried is told with what kept it from being tried, upstream or in its own state.

  $ document_of "$(transition start one Test)" "$(transition one two Test "$above")" "$(transition two end ZramHeartBeat)" \
  >   "$(transition one end Timeout)" "$(transition gone two Test)" "$(transition start gone2 Test)" >chain.json
  $ vig run chain.json events.jsonl --why-not | grep -A9 -E '^why|^  never'
  why not configs[0].payload.data.transitions[1]
    one -> two on Test
          2 events
          1   while the machine was in state start
          1   for which it was tried
          1     stopped by pid > 9
                  nearest 8 > 9 (off by 2) in event 2 at 9 ms
          0     fired
  
  why not configs[0].payload.data.transitions[2]
    two -> end on ZramHeartBeat
          2 events
          2   of another type
          0   for which it was tried
          0     fired
    never tried: the machine never was in state two, since on the way there
      transitions[1] one -> two never fired: stopped by filter 1 of 1, pid > 9,
        nearest 8 > 9 (off by 2) in event 2 at 9 ms
  
  why not configs[0].payload.data.transitions[3]
    one -> end on Timeout
          2 events
          2   of another type
          0   for which it was tried
          0     fired
    never tried: no Timeout came while the machine was in state one
  
  why not configs[0].payload.data.transitions[4]
    gone -> two on Test
          2 events
          1   while the machine was in state one
          1   while the machine was in state start
          0   for which it was tried
          0     fired
    never tried: no transition leads the machine to state gone
  
  why not configs[0].payload.data.transitions[5]
    start -> gone2 on Test
          2 events
          1   while the machine was in state one
          1   for which an earlier transition fired
          0   for which it was tried
          0     fired
    never tried: transitions[0] start -> one fired each time before it
  
  summary
    events    2
    triggers  0
    machine   0  config id 7  payload id 1  in state one
  $ vig run chain.json events.jsonl --format jsonl --why-not 'two->end' | grep -o '"upstream":.*"fired":0'
  "upstream":[{"type":"why_not","path":"configs[0].payload.data.transitions[1]","machine":0,"config_id":7,"from":"one","to":"two","event_type":"Test","events":2,"other_types":0,"other_states":[{"state":"start","events":1}],"earlier_fired":0,"tried":1,"fired":0

A transition is called by its path, the end of it, or its move, of each machine; a name that calls none is told before
anything runs.

  $ document "$(config 7 "$(transition start end Test)")" "$(config 8 "$(transition start end Test)" "$(transition end start Test)")" >two.json
  $ for name in 'transitions[0]' 'start -> end' 'start->end' 'configs[1].payload.data.transitions[1]'; do
  >   vig run two.json events.jsonl --why-not "$name" | grep '^why' && echo
  > done
  why not configs[0].payload.data.transitions[0]
  why not configs[1].payload.data.transitions[0]
  
  why not configs[0].payload.data.transitions[0]
  why not configs[1].payload.data.transitions[0]
  
  why not configs[0].payload.data.transitions[0]
  why not configs[1].payload.data.transitions[0]
  
  why not configs[1].payload.data.transitions[1]
  
  $ vig run two.json events.jsonl --why-not 'transitions[0]' --machine id=8 | grep '^why'
  why not configs[1].payload.data.transitions[0]
  $ vig run two.json events.jsonl --why-not 'start -> edn'
  two.json: error: there is no transition "start -> edn"; did you mean "start -> end"? There are:
    configs[0].payload.data.transitions[0]  start -> end on Test
    configs[1].payload.data.transitions[0]  start -> end on Test
    configs[1].payload.data.transitions[1]  end -> start on Test
  [2]
  $ vig run two.json events.jsonl --machine 0 --why-not 'transitions[1]'
  two.json: error: there is no transition "transitions[1]"; did you mean "transitions[0]"? There are:
    transitions[0]  start -> end on Test
  [2]

An equal number misses `!=` by the least there is.

  $ document_of "$(transition start end Test "$(filters 'integer pid != =3' 'integer pid != =8')")" >other.json
  $ vig run other.json events.jsonl --why-not 'transitions[0]' | grep -A1 stopped
          1     stopped by pid != 3
                  nearest 3 != 3 (off by 1) in event 1
          1     stopped by pid != 8
                  nearest 8 != 8 (off by 1) in event 2 at 9 ms

