Ten devices, an hour each: the highest value of the first is 100, once, that of the next one 200, twice, and so on.

  $ . "$TESTDIR/../rules.sh"
  $ trigger=$(transition start start ProcessMemoryHeartBeat "$(filters 'string processName == =p' 'integer vmRssKB > =850')" "$(actions TriggerVelora)")
  $ document "$(config 7 "$trigger")" >rules.json
  $ number='configs[0].payload.data.transitions[0].filters[1].operand2'
  $ record() { printf '{"event":"ProcessMemoryHeartBeat","time_ms":%s,"int64":{"vmRssKB":%s,"vmSwapKB":0},"string":{"processName":"%s"}}\n' "$@"; }
  $ for n in 0 1 2 3 4 5 6 7 8 9; do
  >   { record 0 5 p; for i in $(seq 0 $n); do record $i $((n * 100 + 100)) p; done; record 3600000 $((5000 + n)) q; } >d$n
  > done
  $ vig tune rules.json "$number" d? --target 30%
  tune
    constant   configs[0].payload.data.transitions[0].filters[1].operand2.value
    filter     vmRssKB > 850
    fleet      10 devices, 0.417 days in all
    target     30% of the devices
    answer     700: 3 devices, 30 % (95 % interval: 10.8 % to 60.3 %)
    certainty  too small to tell the target from its double; 11 devices would be enough
  
      threshold   devices     share   triggers     a day
              0        10     100 %         65       156  ########################################
            300         7      70 %         49       118  ############################
            500         5      50 %         40        96  ####################
            600         4      40 %         34      81.6  ################
    >       700         3      30 %         27      64.8  ############
            800         2      20 %         19      45.6  ########
            850         2      20 %         19      45.6  ########  now
            900         1      10 %         10        24  ####
  $ for jobs in 1 3; do vig tune rules.json "$number.value" d? --target 30% --format json -j $jobs >out$jobs; done
  $ cmp out1 out3
  $ cat out1
  {"path":"configs[0].payload.data.transitions[0].filters[1].operand2.value","filter":"vmRssKB > 850","target":"30%","devices":10,"failed":0,"events":75,"days":0.4166666666666667,"tried":13,"answer":{"threshold":"700","devices":3,"share":0.3,"triggers":27,"triggers_a_day":64.8,"interval":[0.10779126740630103,0.6032218525388546]},"below":{"threshold":"700","devices":3,"share":0.3,"triggers":27,"triggers_a_day":64.8,"interval":[0.10779126740630103,0.6032218525388546]},"above":{"threshold":"600","devices":4,"share":0.4,"triggers":34,"triggers_a_day":81.6,"interval":[0.16818032970623614,0.6873262302663418]},"now":{"threshold":"850","devices":2,"share":0.2,"triggers":19,"triggers_a_day":45.6,"interval":[0.05668215145437526,0.5098375284633583]},"certainty":{"from_none":true,"from_double":false,"needed":10.243890192359686},"thresholds":[{"threshold":"0","devices":10,"share":1,"triggers":65,"triggers_a_day":156,"interval":[0.7224672001371107,1]},{"threshold":"300","devices":7,"share":0.7,"triggers":49,"triggers_a_day":117.6,"interval":[0.39677814746114537,0.8922087325936989]},{"threshold":"500","devices":5,"share":0.5,"triggers":40,"triggers_a_day":96,"interval":[0.23659309051256397,0.7634069094874361]},{"threshold":"600","devices":4,"share":0.4,"triggers":34,"triggers_a_day":81.6,"interval":[0.16818032970623614,0.6873262302663418]},{"threshold":"700","devices":3,"share":0.3,"triggers":27,"triggers_a_day":64.8,"interval":[0.10779126740630103,0.6032218525388546]},{"threshold":"800","devices":2,"share":0.2,"triggers":19,"triggers_a_day":45.6,"interval":[0.05668215145437526,0.5098375284633583]},{"threshold":"850","devices":2,"share":0.2,"triggers":19,"triggers_a_day":45.6,"interval":[0.05668215145437526,0.5098375284633583]},{"threshold":"900","devices":1,"share":0.1,"triggers":10,"triggers_a_day":24,"interval":[0.017876213095072906,0.4041500267952385]}]}

Triggers a day are counted by time_ms.

  $ vig tune rules.json "$number" d? --target 456/day
  tune
    constant   configs[0].payload.data.transitions[0].filters[1].operand2.value
    filter     vmRssKB > 850
    fleet      10 devices, 0.417 days in all
    target     456/day on each device
    answer     none of the 13 that were replayed gives it
    nearest    0: 65 triggers, 156 triggers a device and day (95 % interval: 117 to 208)
    certainty  enough to tell the target from none, and from its double
  
      threshold   devices     share   triggers     a day
              0        10     100 %         65       156  ########################################
             10        10     100 %         55       132  ##################################
            100         9      90 %         54       130  ##################################
            300         7      70 %         49       118  ###############################
            700         3      30 %         27      64.8  #################
            850         2      20 %         19      45.6  ############  now
  [1]

Nothing gives a share that is less than one device.

  $ gzip d9
  $ vig tune rules.json "$number" d? d9.gz --target 0.1% | sed -n '5,10p'
    target     0.1% of the devices
    answer     none of the 14 that were replayed gives it
    nearest    1000: 0 devices, 0 % (95 % interval: 0 % to 27.8 %)
    nearest    900: 1 device, 10 % (95 % interval: 1.79 % to 40.4 %)
    certainty  too small to tell the target from none, or from its double; 7668 devices would be enough
  

What is wrong is said, and where.

  $ tune() { vig tune "$@" 2>&1; }
  $ tune rules.json "${number%2}3" d1 --target 1%
  rules.json: error: no number to tune has the path "configs[0].payload.data.transitions[0].filters[1].operand3"; did you mean "configs[0].payload.data.transitions[0].filters[1].operand2"?; there are configs[0].payload.data.transitions[0].filters[1].operand2
  [2]
  $ tune rules.json "${number/\[1\]/[0]}.value" d1 --target 1%
  rules.json: error: not a number to tune, "configs[0].payload.data.transitions[0].filters[0].operand2.value" in processName == "p"; there are configs[0].payload.data.transitions[0].filters[1].operand2
  [2]
  $ tune rules.json "${number%2}1" d1 --target 1%
  rules.json: error: not a number to tune, "configs[0].payload.data.transitions[0].filters[1].operand1" in vmRssKB > 850; there are configs[0].payload.data.transitions[0].filters[1].operand2
  [2]
  $ document_of "$(transition start end Test "$(filters 'integer v > =1')")" >quiet.json
  $ tune quiet.json "${number/\[1\]/[0]}" d1 --target 1%
  quiet.json: error: configs[0] never asks for a collection, whatever the number is
  [2]
  $ echo '{}' >refused.json
  $ tune refused.json "$number" d1 --target 1%
  refused.json:1:1: error: the root must be an object whose "configs" is an array ("configs" is missing) [InvalidResponse]
      {}
      ^~
      hint: an array is needed; [] for none
  [2]
  $ tune none.json "$number" d1 --target 1%
  vig: error: none.json: No such file or directory
  [2]
  $ tune rules.json "$number" - --target 1%
  vig: error: recordings are read more than once: standard input cannot be
  Try: vig tune --help
  [2]
  $ tune rules.json "$number" d1
  vig: error: --target is required
  Try: vig tune --help
  [2]
  $ for target in 1 % 0% 101% 1/hour -1% nan% 1e99/day ''; do tune rules.json "$number" d1 --target "$target" | head -n 1; done
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got 1
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got %
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got 0%
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got 101%
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got 1/hour
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got -1%
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got nan%
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got 1e99/day
  vig: error: --target: expected a share such as 0.1% or a rate such as 3/day, got 
  $ tune rules.json "$number" none --target 1%
  vig: error: none: No such file or directory
  vig: error: there is no recording to replay
  [2]
  $ echo '{"event":"Test"}' >timeless
  $ tune rules.json "$number" d1 timeless --target 1/day
  vig: error: timeless: no record has a time_ms, which triggers a day are counted by
  [2]
  $ record 7 1 p >instant
  $ tune rules.json "$number" instant --target 1/day
  vig: error: no time passes from the first to the last time_ms of any recording
  [2]

Devices that cannot be read are told in their order, and the others go on.

  $ mkfifo pipe
  $ { record 0 900 p; echo 7; } >broken
  $ tune rules.json "$number" none d1 broken pipe --target 50% | sed -n '1,8p'
  vig: error: none: No such file or directory
  broken:2: error: expected a JSON object, got 7
  vig: error: pipe: expected a file, which is read more than once
  tune
    constant   configs[0].payload.data.transitions[0].filters[1].operand2.value
    filter     vmRssKB > 850
    fleet      2 devices, 0.0417 days in all, 3 cannot be read, or not to the end
    target     50% of the devices
