The new document lets machine 7 trigger for less, but once, does without 8, has a machine 9, lets 6 log less and leaves
5 as it was.

  $ . "$TESTDIR/../rules.sh"
  $ beat=ProcessMemoryHeartBeat
  $ over() { transition ${1} ${2} $beat "$(filters "integer vmRssKB > =$3")" "$(actions TriggerVelora)"; }
  $ same=$(config 5 "$(transition start start Timeout '[]' "$(actions TriggerVelora)")")
  $ logs() { config 6 "$(transition start start ZramHeartBeat "$(filters "integer level > =$1")" "$(actions LogZramHeartBeat)")"; }
  $ document "$(config 7 "$(transition start on Test)" "$(over on start 100)")" "$(config 8 "$(over start end 900)")" \
  >   "$(logs 1)" "$same" >old.json
  $ document "$same" "$(config 9 "$(over start start 2000)")" "$(logs 2)" \
  >   "$(config 7 "$(transition start on Test)" "$(over on end 50)")" >new.json
  $ beat() { echo '{"event":"'$beat'","time_ms":'$1',"int64":{"vmRssKB":'$2',"vmSwapKB":0},"string":{"processName":"p"}}'; }
  $ test='{"event":"Test"}'
  $ { echo $test; beat 10 40; beat 20 60; } >newly
  $ beat 10 950 >nolonger
  $ { echo $test; beat 10 200; echo $test; beat 20 200; } >less
  $ { beat 10 2500; beat 20 2500; } >more
  $ { echo $test; beat 10 60; beat 20 200; } >otherwise
  $ echo '{"event":"ZramHeartBeat","int64":{"level":2}}' >logs
  $ { echo $test; beat 10 20; sed 's/:"Pro[^"]*"/:"Timeout","timeout_id":1/' nolonger; } >same

Each device that differs is told with both explanations of the first event by which it does.

  $ vig diff old.json new.json newly nolonger less more otherwise logs same
  == newly
  triggers newly: 0 -> 1; the first difference is event 3 at 20 ms
    id 7
      old  nothing
             ProcessMemoryHeartBeat in state on
               configs[0].payload.data.transitions[1]
               -> start: stopped by filter 1 of 1
                 no    vmRssKB > 100  60 > 100
      new  trigger vig:memory_heartbeat_over_budget:p
             threshold_current_value:60  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:60  vmSwapKB:0  processName:p
             ProcessMemoryHeartBeat in state on
               configs[3].payload.data.transitions[1] -> end: fires
                 yes   vmRssKB > 50  60 > 50
                 runs  TriggerVelora
  
  == nolonger
  triggers no longer: 1 -> 0; the first difference is event 1 at 10 ms
    id 8
      old  trigger vig:memory_heartbeat_over_budget:p
             threshold_current_value:950  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:950  vmSwapKB:0  processName:p
             ProcessMemoryHeartBeat in state start
               configs[1].payload.data.transitions[0] -> end: fires
                 yes   vmRssKB > 900  950 > 900
                 runs  TriggerVelora
      new  has no such machine
  
  == less
  triggers less: 2 -> 1; the first difference is event 4 at 20 ms
    id 7
      old  trigger vig:memory_heartbeat_over_budget:p
             threshold_current_value:200  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:200  vmSwapKB:0  processName:p
             ProcessMemoryHeartBeat in state on
               configs[0].payload.data.transitions[1] -> start: fires
                 yes   vmRssKB > 100  200 > 100
                 runs  TriggerVelora
      new  nothing
             ProcessMemoryHeartBeat in state end: no transition listens
  
  == more
  triggers more: 1 -> 2; the first difference is event 1 at 10 ms
    id 9
      old  has no such machine
      new  trigger vig:memory_heartbeat_over_budget:p
             threshold_current_value:2500  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:2500  vmSwapKB:0  processName:p
             ProcessMemoryHeartBeat in state start
               configs[1].payload.data.transitions[0] -> start: fires
                 yes   vmRssKB > 2000  2500 > 2000
                 runs  TriggerVelora
    id 8
      old  trigger vig:memory_heartbeat_over_budget:p
             threshold_current_value:2500  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:2500  vmSwapKB:0  processName:p
             ProcessMemoryHeartBeat in state start
               configs[1].payload.data.transitions[0] -> end: fires
                 yes   vmRssKB > 900  2500 > 900
                 runs  TriggerVelora
      new  has no such machine
  
  == otherwise
  triggers otherwise: 1 -> 1; the first difference is event 2 at 10 ms
    id 7
      old  nothing
             ProcessMemoryHeartBeat in state on
               configs[0].payload.data.transitions[1]
               -> start: stopped by filter 1 of 1
                 no    vmRssKB > 100  60 > 100
      new  trigger vig:memory_heartbeat_over_budget:p
             threshold_current_value:60  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:60  vmSwapKB:0  processName:p
             ProcessMemoryHeartBeat in state on
               configs[3].payload.data.transitions[1] -> end: fires
                 yes   vmRssKB > 50  60 > 50
                 runs  TriggerVelora
  
  == logs
  logs otherwise: 0 -> 0; the first difference is event 1
    id 6
      old  log info VIGManager: Received VIG zram heart beat. memUsedMaxBytes: 0, numCompressedDataBytes: 0
             ZramHeartBeat in state start
               configs[2].payload.data.transitions[0] -> start: fires
                 yes   level > 1  2 > 1
                 runs  LogZramHeartBeat
      new  nothing
             ZramHeartBeat in state start
               configs[2].payload.data.transitions[0]
               -> start: stopped by filter 1 of 1
                 no    level > 2  2 > 2
  
  fleet
    devices   7
    events    17
    newly     newly: 0 -> 1 triggers, from event 3 on
    no longer nolonger: 1 -> 0 triggers, from event 1 on
    more      more: 1 -> 2 triggers, from event 1 on
    less      less: 2 -> 1 triggers, from event 4 on
    otherwise otherwise: 1 -> 1 triggers, from event 2 on
    logs      logs: 0 -> 0 triggers, from event 1 on
     devices                                                             triggers
       newly no longer      more      less otherwise      logs      same       old       new
           1         1         1         1         1         1         1         6         6  all machines
           0         0         0         0         0         0         7         1         1  id 5 (configs[3] -> configs[0])
           1         0         0         0         0         0         6         0         2  id 9 (configs[1], new)
           0         0         0         0         0         1         6         0         0  id 6 (configs[2])
           1         0         0         1         1         0         4         3         3  id 7 (configs[0] -> configs[3])
           0         2         0         0         0         0         5         2         0  id 8 (configs[1], gone)
  [1]

A device that fails, and standard input, stand among the others, on one thread as on several.

  $ echo '{"event":7}' >bad
  $ for jobs in 1 3; do
  >   vig diff old.json new.json newly none - bad same --format jsonl -j $jobs <less >out$jobs 2>&1 || echo $?
  > done
  2
  2
  $ cmp out1 out3
  $ sed -E 's/"machines":.*"explanation".*/.../' out3
  {"type":"device","device":"newly","change":"newly","triggers":{"old":0,"new":1},"event":3,"time_ms":20,...
  vig: error: none: No such file or directory
  {"type":"device","device":"<stdin>","change":"less","triggers":{"old":2,"new":1},"event":4,"time_ms":20,...
  bad:1: error: event: expected a string, got 7
  {"type":"fleet_diff","old":"2a2164bba64ffb94","new":"de13cf55b14504e1","devices":4,"failed":2,"unfinished":0,"events":10,"triggers":{"old":3,"new":3},"changes":{"newly":1,"no_longer":0,"more":0,"less":1,"otherwise":0,"logs":0,"none":2},"examples":[{"change":"newly","device":"newly","triggers":{"old":0,"new":1},"event":3},{"change":"less","device":"<stdin>","triggers":{"old":2,"new":1},"event":4}],"machines":[{"id":5,"old":"configs[3]","new":"configs[0]","triggers":{"old":1,"new":1},"changes":{"newly":0,"no_longer":0,"more":0,"less":0,"otherwise":0,"logs":0,"none":4}},{"id":9,"old":null,"new":"configs[1]","triggers":{"old":0,"new":0},"changes":{"newly":0,"no_longer":0,"more":0,"less":0,"otherwise":0,"logs":0,"none":4}},{"id":6,"old":"configs[2]","new":"configs[2]","triggers":{"old":0,"new":0},"changes":{"newly":0,"no_longer":0,"more":0,"less":0,"otherwise":0,"logs":0,"none":4}},{"id":7,"old":"configs[0]","new":"configs[3]","triggers":{"old":2,"new":2},"changes":{"newly":1,"no_longer":0,"more":0,"less":1,"otherwise":0,"logs":0,"none":2}},{"id":8,"old":"configs[1]","new":null,"triggers":{"old":0,"new":0},"changes":{"newly":0,"no_longer":0,"more":0,"less":0,"otherwise":0,"logs":0,"none":4}}]}

What is not fit to be compared:

  $ vig diff old.json new.json --summary-only
  vig: error: jsonl, --summary-only and --draw are for files of event records
  Try: vig diff --help
  [2]
  $ vig diff old.json new.json same --states
  vig: error: markdown, html, --states and --catalogue are for documents without event records
  Try: vig diff --help
  [2]
  $ vig diff old.json new.json - -
  vig: error: standard input can be one of them only: the rule document, or one file of event records
  Try: vig diff --help
  [2]
  $ vig diff old.json none same
  vig: error: none: No such file or directory
  [2]
  $ document "$(config 7 1)" >refused.json
  $ vig diff refused.json new.json same
  refused.json:1:62: error: Invalid FSM JSON: 1 [InvalidFsm]
      {"configs":[{"id":7,"payload":{"id":1,"data":{"transitions":[1]}}}]}
                                                                   ^
      path: configs[0].payload.data.transitions[0]
      hint: an object is needed
  [2]
  $ vig diff new.json new.json newly same --summary-only
  fleet
    devices   2
    events    6
     devices                                                             triggers
       newly no longer      more      less otherwise      logs      same       old       new
           0         0         0         0         0         0         2         2         2  all machines
           0         0         0         0         0         0         2         1         1  id 5 (configs[0])
           0         0         0         0         0         0         2         0         0  id 9 (configs[1])
           0         0         0         0         0         0         2         0         0  id 6 (configs[2])
           0         0         0         0         0         0         2         1         1  id 7 (configs[3])
  $ vig diff old.json new.json logs --format jsonl | head -n 1
  {"type":"device","device":"logs","change":"logs","triggers":{"old":0,"new":0},"event":1,"time_ms":null,"machines":[{"config_id":6,"old":{"machine":2,"triggers":[],"logs":[{"priority":"info","tag":"VIGManager","message":"Received VIG zram heart beat. memUsedMaxBytes: 0, numCompressedDataBytes: 0"}],"explanation":[{"type":"explain","event":1,"machine":2,"config_id":6,"event_type":"ZramHeartBeat","state":"start","transitions":[{"path":"configs[2].payload.data.transitions[0]","to":"start","fired":true,"filters":[{"condition":"level > 1","left":2,"right":1,"verdict":true}],"actions":["LogZramHeartBeat"]}]}]},"new":{"machine":2,"triggers":[],"logs":[],"explanation":[{"type":"explain","event":1,"machine":2,"config_id":6,"event_type":"ZramHeartBeat","state":"start","transitions":[{"path":"configs[2].payload.data.transitions[0]","to":"start","fired":false,"filters":[{"condition":"level > 2","left":2,"right":2,"verdict":false}],"actions":[]}]}]}}]}

Summaries of runs and of comparisons do not go together.

  $ vig run old.json same --format json >run
  $ vig diff old.json new.json less --format json >diff
  [1]
  $ cat diff run | vig summary
  <stdin>:2: error: it cannot be merged with <stdin>:1: one is of a run, the other of a comparison
  [2]
