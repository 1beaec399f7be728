Two configurations: one moves with an event of type Test, one triggers with each Timeout.

  $ . "$TESTDIR/../rules.sh"
  $ document "$(config 7 "$(transition start end Test)")" \
  >   "$(config 8 "$(transition start start Timeout '[]' "$(actions TriggerVelora)")")" >rules.json
  $ heartbeat='"int64":{"vmRssKB":1,"vmSwapKB":2},"string":{"processName":"p"}}'
  $ timeout='{"event":"Timeout","timeout_id":1,'$heartbeat
  $ other='{"event":"ProcessMemoryHeartBeat",'$heartbeat

Devices that fail are told in their order, and the others go on, on one thread as on several.

  $ printf '%s\n' "$other" "$other" '{"event":"Test"}' >a
  $ printf '%s\n' "$other" '{"event":"Test"}' '{"event":7}' '{"event":"Test"}' >b
  $ printf '\037\213' >c
  $ echo "$timeout" >d
  $ mkfifo pipe
  $ exec 3<>pipe
  $ for jobs in 1 3; do
  >   echo '{"event":7}' >&3
  >   vig run rules.json none a b c d . pipe -j $jobs >out$jobs 2>&1 || echo $?
  > done
  2
  2
  $ cmp out1 out3
  $ cat out3
  
  == none
  vig: error: none: No such file or directory
  
  == a
      event  what     who            detail
          3  move     0 (id 7)       start -> end
  
  summary
    events    3
    triggers  0
    machine   0  config id 7  payload id 1  in state end
    machine   1  config id 8  payload id 1  in state start
  
  == b
      event  what     who            detail
          2  move     0 (id 7)       start -> end
  b:3: error: event: expected a string, got 7
  
  == c
  c:1: error: the gzip data is truncated
  
  == d
      event  what     who            detail
          1  trigger  1 (id 8)       vig:memory_heartbeat_over_budget:p
             threshold_current_value:3  threshold_units:RSS_anon_plus_swap_KB
             vmRssKB:1  vmSwapKB:2  processName:p
  
  summary
    events    1
    triggers  1
            1 vig:memory_heartbeat_over_budget:p
    machine   0  config id 7  payload id 1  in state start
    machine   1  config id 8  payload id 1  in state start
  
  == .
  vig: error: .: Is a directory
  
  == pipe
  pipe:1: error: event: expected a string, got 7
  
  fleet
    devices   5
    failed    5
    events    6
    triggers  1 (a device: median 0, 99th percentile 1, most 1)
    storms    0
        fired      devices
            2 on         2  configs[0] (id 7)
            2 on         2    configs[0].payload.data.transitions[0]  start -> end on Test
            1 on         1  configs[1] (id 8)
            1 on         1    configs[1].payload.data.transitions[0]  start -> start on Timeout

Standard input has one name.

  $ yes "$timeout" | head -n 12 >storm
  $ vig run rules.json a - <storm | grep stdin
  == <stdin>
           12 triggers in 12 events: <stdin>
  $ vig run rules.json - a --format jsonl <storm | grep -o '"device":"<[^}]*}' | uniq -c
       13 "device":"<stdin>"}
        1 "device":"<stdin>","triggers":12,"events":12}

Names of recordings are what a mapper may be given.

  $ printf '%s\n' d none a | xargs -r -d '\n' vig run rules.json -j 1 --format json -- >mapped
  vig: error: none: No such file or directory
  [123]
  $ vig run rules.json a d none --format json 2>/dev/null | cmp - mapped
