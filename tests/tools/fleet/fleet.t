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

A stream may have the records of several devices, each of which names its own. One that has ended begins anew.

  $ of() { echo "{\"device\":\"$1\",${2#\{}"; }
  $ { of b '{"event":"Test"}'; of - '{"event":"Test"}'; of a "$timeout"; of b "$other"; of b '{"ended":true}'
  >   of b '{"event":"Test"}'; of c '{"ended":true}'; of - "$other"; } >mixed
  $ vig run rules.json --by-device mixed
  
  == b
      event  what     who            detail
          1  move     0 (id 7)       start -> end
  
  == -
      event  what     who            detail
          1  move     0 (id 7)       start -> end
  
  == a
      event  what     who            detail
          1  trigger  1 (id 8)       vig:memory_heartbeat_over_budget:p
             threshold_current_value:3  threshold_units:RSS_anon_plus_swap_KB
             vmRssKB:1  vmSwapKB:2  processName:p
  
  == b
  summary
    events    2
    triggers  0
    machine   0  config id 7  payload id 1  in state end
    machine   1  config id 8  payload id 1  in state start
  
  == b
      event  what     who            detail
          1  move     0 (id 7)       start -> end
  
  == c
  summary
    events    0
    triggers  0
    machine   0  config id 7  payload id 1  in state start
    machine   1  config id 8  payload id 1  in state start
  
  == -
  summary
    events    2
    triggers  0
    machine   0  config id 7  payload id 1  in state end
    machine   1  config id 8  payload id 1  in state start
  
  == a
  summary
    events    1
    triggers  1
            1 vig:memory_heartbeat_over_budget:p
    machine   0  config id 7  payload id 1  in state start
    machine   1  config id 8  payload id 1  in state start
  
  == b
  summary
    events    1
    triggers  0
    machine   0  config id 7  payload id 1  in state end
    machine   1  config id 8  payload id 1  in state start
  
  fleet
    devices   5
    events    6
    triggers  1 (a device: median 0, 99th percentile 1, most 1)
    storms    0
        fired      devices
            3 on         3  configs[0] (id 7)
            3 on         3    configs[0].payload.data.transitions[0]  start -> end on Test
            1 on         1  configs[1] (id 8)
            1 on         1    configs[1].payload.data.transitions[0]  start -> start on Timeout
  $ sed '$i{"event":"Test"}' mixed | vig run rules.json --by-device mixed - none --summary-only | head -n 4
  <stdin>:8: error: device: missing, without which nobody knows whose event it is
  vig: error: none: No such file or directory
  fleet
    devices   10
    failed    4
    events    11

If its records go bad, all its devices that have not ended fail, and one if there are none.

  $ sed '7i{"device":"b","event":"Tset"}' mixed | vig run rules.json --by-device --format jsonl | cut -c 1-93
  <stdin>:7: error: event: unknown event "Tset"; did you mean "Test"?
  {"type":"log","event":0,"priority":"error","tag":"VIGManager","message":"ViG device config is
  {"type":"move","event":1,"machine":0,"config_id":7,"from":"start","to":"end","device":"b"}
  {"type":"move","event":1,"machine":0,"config_id":7,"from":"start","to":"end","device":"-"}
  {"type":"trigger","event":1,"machine":1,"config_id":8,"trigger_name":"vig:memory_heartbeat_ov
  {"type":"end","events":2,"triggers":0,"machines":[{"machine":0,"config_id":7,"payload_id":1,"
  {"type":"move","event":1,"machine":0,"config_id":7,"from":"start","to":"end","device":"b"}
  {"type":"fleet","document":"47f72f7bc6897b81","devices":4,"failed":3,"unfinished":0,"events":
  $ of a '{"ended":true}' | sed '2i{}' | vig run rules.json --by-device --summary-only | head -n 4
  fleet
    devices   1
    events    0
    triggers  0 (a device: median 0, 99th percentile 0, most 0)
  $ echo '{}' | vig run rules.json --by-device --summary-only | head -n 3
  <stdin>:1: error: event: missing
  fleet
    devices   0
    failed    1
  $ of a '{"event":"Test"}' | sed 'a{"event":"Test"}' | vig run rules.json --by-device - none --summary-only | head -n 4
  <stdin>:2: error: device: missing, without which nobody knows whose event it is
  vig: error: none: No such file or directory
  fleet
    devices   1
    failed    2
    events    1

Without that, a stream has one device.

  $ vig run rules.json mixed --summary-only | head -n 3
  mixed:2: error: device: "-" after "b"; vig run --by-device gives each machines of its own
  fleet
    devices   1
    failed    1
  $ { of a '{"event":"Test"}'; of a '{"ended":true}'; } | tee one | vig run rules.json
      event  what     who            detail
          1  move     0 (id 7)       start -> end
  
  summary
    events    1
    triggers  0
    machine   0  config id 7  payload id 1  in state end
    machine   1  config id 8  payload id 1  in state start
  $ cat one one | vig run rules.json --format json - | cut -c 1-73
  <stdin>:3: error: device: "a" has ended; vig run --by-device begins anew
  {"document":"47f72f7bc6897b81","devices":1,"failed":1,"unfinished":0,"eve
