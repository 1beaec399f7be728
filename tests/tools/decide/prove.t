  $ . "$TESTDIR/../rules.sh"

What cannot happen, what no recording can show, and what only goes past; where draws lie on the way round; and what a
context would change.

  $ machines >rules.json <<'END'
  > start busy ProcessMemoryHeartBeat | integer vmRssKB > =9 | TriggerVelora ; busy pass Test ; pass end EnteringState ; start a Test | integer x > =5 ; start b Test | integer x > =7 ; start c ZramHeartBeat | double x > =1.7976931348623157e308
  > start hot ProcessMemoryHeartBeat | double PseudoRandomDouble() < =0.25 | TriggerVelora TriggerVelora ; hot cold Test ; cold hot Test | double PseudoRandomDouble() < =0.5 ; cold start Test
  > start on EnteringState | string other != =c & integer limit > =5 & string mode == =b ; start off Test | integer limit > =5 ; start off Test | integer limit <= =5 ; start none Test ; off off ProcessCpuHeartBeat | | TriggerVeloraCpu
  > END
  $ vig prove rules.json
  rules.json: machine 0 (id 0)
    states
      start  at the start
      end    by 2 events
      busy   by 1 event
      pass   by 2 events
      a      by 1 event
      b      never
      c      only by an infinity, NaN or a text that is no UTF-8
    transitions
      0  start -> busy on ProcessMemoryHeartBeat  by 1 event
      1  busy -> pass on Test                     by 2 events
      2  pass -> end on EnteringState             by 2 events
      3  start -> a on Test                       by 1 event
      4  start -> b on Test                       never
      5  start -> c on ZramHeartBeat              only by an infinity, NaN or a text that is no UTF-8
    stays  in "end", once there
           in "a", once there
    load   at most 1 trigger ever
  
  rules.json: machine 1 (id 1)
    states
      start  at the start
      end    never
      hot    by 1 event
      cold   by 2 events
    transitions
      0  start -> hot on ProcessMemoryHeartBeat  by 1 event
      1  hot -> cold on Test                     by 2 events
      2  cold -> hot on Test                     by 3 events
      3  cold -> start on Test                   by 3 events
    stays  nowhere: it can always come back to each of its states
    load   at most 2 triggers in 3 events in the long run, if every draw lets it through (odds 0.125 a round of 3 events)
           two triggers can come by one event
  
  rules.json: machine 2 (id 2)
    states
      start  at the start
      end    never
      on     never, unless the context has a certain int64 limit, string mode, string other
      off    by 1 event, unless the context has a certain int64 limit, string mode, string other
      none   by 1 event, unless the context has a certain int64 limit
    transitions
      0  start -> on on EnteringState       never, unless the context has a certain int64 limit, string mode, string other
      1  start -> off on Test               by 1 event, unless the context has a certain int64 limit, string mode, string other
      2  start -> off on Test               by 1 event, unless the context has a certain int64 limit, string mode, string other
      3  start -> none on Test              by 1 event, unless the context has a certain int64 limit
      4  off -> off on ProcessCpuHeartBeat  by 2 events, unless the context has a certain int64 limit, string mode, string other
    stays  in "off", once there, unless the context has a certain int64 limit, string mode, string other
           in "none", once there, unless the context has a certain int64 limit
    load   at most 1 trigger in 1 event in the long run, unless the context has a certain int64 limit, string mode, string other
           two triggers are at least 1 event apart
  
  rules.json: all machines together: at most 5 triggers in 3 events in the long run

With its recordings, each of which the tool replays.

  $ vig prove rules.json --witness a/b >out
  $ grep -E ' (hot|1|load|two) ' out | cut -c-140
      busy   by 1 event    a/b/0-state-2.jsonl --draw 0.5
      a      by 1 event    a/b/0-state-4.jsonl
      0  start -> busy on ProcessMemoryHeartBeat  by 1 event   a/b/0-transition-0.jsonl --draw 0.5
      1  busy -> pass on Test                     by 2 events  a/b/0-transition-1.jsonl --draw 0.5
      3  start -> a on Test                       by 1 event   a/b/0-transition-3.jsonl
    load   at most 1 trigger ever  a/b/0-load.jsonl --draw 0.5
  rules.json: machine 1 (id 1)
      hot    by 1 event    a/b/1-state-2.jsonl --draw 0.125
      0  start -> hot on ProcessMemoryHeartBeat  by 1 event   a/b/1-transition-0.jsonl --draw 0.125
      1  hot -> cold on Test                     by 2 events  a/b/1-transition-1.jsonl --draw 0.125
      2  cold -> hot on Test                     by 3 events  a/b/1-transition-2.jsonl --draw 0.125 --draw 0.25
    load   at most 2 triggers in 3 events in the long run, if every draw lets it through (odds 0.125 a round of 3 events)  a/b/1-load.jsonl --
           two triggers can come by one event  a/b/1-distance.jsonl --draw 0.125
      off    by 1 event, unless the context has a certain int64 limit, string mode, string other  a/b/2-state-3.jsonl
      none   by 1 event, unless the context has a certain int64 limit  a/b/2-state-4.jsonl
      1  start -> off on Test               by 1 event, unless the context has a certain int64 limit, string mode, string other  a/b/2-transit
      2  start -> off on Test               by 1 event, unless the context has a certain int64 limit, string mode, string other  a/b/2-transit
      3  start -> none on Test              by 1 event, unless the context has a certain int64 limit  a/b/2-transition-3.jsonl
    load   at most 1 trigger in 1 event in the long run, unless the context has a certain int64 limit, string mode, string other  a/b/2-load.j
           two triggers are at least 1 event apart  a/b/2-distance.jsonl
  $ grep -oE 'a/b/.-transition.*' out |
  > while read -r file draws; do
  >   path="configs[${file:4:1}].payload.data.transitions[${file:17:1}]"
  >   # shellcheck disable=SC2086 # The draws stand between spaces.
  >   vig run rules.json $file $draws --explain --format jsonl |
  >     grep -oE '"path":"[^"]*","to":"[^"]*","fired":true' | grep -cF "\"$path\""
  > done | sort | uniq -c
       12 1
  $ ls a/b | wc -l
  28
  $ cat a/b/1-load.jsonl
  {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":1},"string":{"processName":"app"}}
  {"event":"Test"}
  {"event":"Test"}

For programs.

  $ machines <<<'start end Test | double PseudoRandomDouble() < =0.25 & integer x > =5' >one.json
  $ vig prove one.json --format json
  {"machines":[
  {"file":"one.json","index":0,"config":0,"states":[
  {"name":"start","reached":"yes","events":0,"witness":{"events":[],"draws":[]},"context":[]},
  {"name":"end","reached":"yes","events":1,"witness":{"events":[{"event":"Test","int64":{"x":6}}],"draws":[0.125]},"context":[]}
  ],"transitions":[
  {"path":"configs[0].payload.data.transitions[0]","from":"start","to":"end","event":"Test","fires":"yes","events":1,"witness":{"events":[{"event":"Test","int64":{"x":6}}],"draws":[0.125]},"context":[]}
  ],"stays":[["end"]],"stays_context":[[]],
  "load":{"decided":true,"triggers":0,"distance":null,"context":[]},"context_decided":true}
  ],"load":{"triggers":0}}
  $ machines <<<'start start ProcessMemoryHeartBeat | double PseudoRandomDouble() < =0.25 | TriggerVelora' >round.json
  $ vig prove round.json rules.json --format json --witness w
  vig: error: --witness takes the recordings of one rule document
  Try: vig prove --help
  [2]
  $ vig prove round.json --format json --witness w | tail -3
  ],"stays":[["start"]],"stays_context":[[]],
  "load":{"decided":true,"rate":{"triggers":1,"events":1},"odds":0.25,"distance":1,"witness":{"events":[{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":1},"string":{"processName":"app"}}],"draws":[0.125],"path":"w/0-load.jsonl"},"distance_witness":{"events":[{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":1},"string":{"processName":"app"}},{"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":1},"string":{"processName":"app"}}],"draws":[0.125],"path":"w/0-distance.jsonl"},"context":[]},"context_decided":true}
  ],"load":{"rate":{"triggers":1,"events":1}}}
  $ vig prove round.json rules.json --format json | tail -1
  ],"load":{"rate":{"triggers":8,"events":3}}}

The documentation has the keys, all of them and no others.

  $ { vig prove rules.json one.json --format json; vig prove round.json --format json --witness w; } |
  >   sed 's/"events":\[[^]]*\]/"events":0/g' | grep -o '"[a-z_]*":' | tr -d '":' | sort -u >keys
  $ sed -n '/^## The answers as JSON/,/^## Why/p' "$VIG_SOURCE/docs/proofs.md" |
  >   sed -E 's/^\|([^|]*)\|.*/\1/' | grep -oE '`[^` ]+`' | grep -oE '[a-z_]+' | sort -u | diff keys -

What a text is, is what a person would pick; a NUL only where nothing else is left.

  $ for filters in {' < =b',' < =B',' < =5',' < =!0',' < =!',' > = & string s < =a',' > =b & string s < =ba',' < =\u0001'}; do
  >   echo "start end Test | string s$filters"
  > done | machines >texts.json
  $ vig prove texts.json --format json | grep '"path"' | grep -o '"s":"[^"]*"' | tr '\n' ' '
  "s":"app" "s":"A" "s":"0" "s":"!" "s":" " "s":"A" "s":"bA" "s":"\u0000"  (no-eol)

The odds are those of all draws on the way, up to the thousandth move, and the way to a circle is the shortest. A sum of
rates that no few numbers can say is rounded up.

  $ machines >limit.json <<<'b a Test; a b ProcessMemoryHeartBeat || TriggerVelora; b end EnteringState | double PseudoRandomDouble() < =0.5; b b EnteringState; start a Test'
  $ vig prove limit.json --witness limit | grep -o 'odds.*load.jsonl'; wc -l <limit/0-load.jsonl
  odds 9.33e-302 a round of 2 events)  limit/0-load.jsonl
  3
  $ round() { config 0 "$(transition start 1 ProcessMemoryHeartBeat '[]' "$(actions TriggerVelora)")" $(for ((n = 1; n < $1 - 1; ++n)); do transition $n $((n + 1)) Test; echo; done) "$(transition $(($1 - 1)) start Test)"; }
  $ document "$(round 101)" "$(round 103)" "$(round 107)" >sum.json; vig prove sum.json | tail -1
  sum.json: all machines together: at most 7239 triggers in 250000 events in the long run

Two numbers that are not NaN can be compared.

  $ machines >nan.json <<<'start a Test | double x < y; start b Test | double x >= y; start end Test | double x > =0 & double y > =0'
  $ vig prove nan.json | grep ' end  '
      end    never

A context that is given.

  $ echo '{"event":"Test","string":{"mode":"b"},"int64":{"limit":6}}' >context.jsonl
  $ vig prove rules.json --context context.jsonl | tail -18
  
  rules.json: machine 2 (id 2)
    states
      start  at the start
      end    never
      on     at the start, unless the context has a certain int64 limit, string mode, string other
      off    never, unless the context has a certain int64 limit, string mode, string other
      none   never, unless the context has a certain int64 limit
    transitions
      0  start -> on on EnteringState       at the start, unless the context has a certain int64 limit, string mode, string other
      1  start -> off on Test               never, unless the context has a certain int64 limit, string mode, string other
      2  start -> off on Test               never, unless the context has a certain int64 limit, string mode, string other
      3  start -> none on Test              never, unless the context has a certain int64 limit
      4  off -> off on ProcessCpuHeartBeat  never, unless the context has a certain int64 limit, string mode, string other
    stays  in "on", once there, unless the context has a certain int64 limit, string mode, string other
    load   no trigger ever, unless the context has a certain int64 limit, string mode, string other
  
  rules.json: all machines together: at most 2 triggers in 3 events in the long run

  $ machines >ways.json <<<'start end EnteringState | integer limit > =5'
  $ vig prove ways.json | grep stays
    stays  in "start", once there, unless the context has a certain int64 limit

So are attributes that only together lead on.

  $ machines >both.json <<<'start a EnteringState | integer limit > =5 ; a end EnteringState | string mode == =b'
  $ vig prove both.json | grep -E '^    (end|a)'
      end    never, unless the context has a certain int64 limit, string mode
      a      never, unless the context has a certain int64 limit

An attribute that can only be missing has no value to try.

  $ machines >none.json <<<'start start EnteringState | string x > =b ; start a EnteringState | string x >= =c | TriggerVelora'
  $ vig prove none.json | grep ' on \|stays'
      0  start -> start on EnteringState  never, unless the context has a certain string x
      1  start -> a on EnteringState      never
    stays  in "start", once there

Too many contexts are left undecided.

  $ each=$(transition start end Test "$(filters 'integer x == =N' 'integer x > y')")
  $ document_of $(for ((i = 0; i < 600; ++i)); do echo "${each/N/$i}"; done) >many.json
  $ vig prove many.json >out
  [1]
  $ tail -3 out
    stays    in "end", once there
    load     no trigger ever
    context  not decided what another one would change
  $ vig prove many.json --format json | grep -o '"context_decided.*'
  "context_decided":false}

What cannot be used is told, and the others are decided.

  $ echo '[]' >refused.json
  $ vig prove absent refused.json round.json >out
  vig: error: absent: No such file or directory
  refused.json:1:1: error: the root must be an object whose "configs" is an array [InvalidResponse]
      []
      ^~
      hint: put {"configs": \xe2\x80\xa6 } around it (esc)
  [2]
  $ grep -c machine out
  1
  $ vig prove rules.json --context absent
  vig: error: absent: No such file or directory
  [2]
  $ vig prove rules.json --catalogue refused.json
  refused.json:1:1: error: expected an object, got an array
  [2]
  $ vig prove round.json --witness round.json
  vig: error: round.json: Not a directory
  [2]
  $ mkdir kept && cp round.json kept/0-load.jsonl
  $ vig prove kept/0-load.jsonl --witness kept >out
  vig: error: --witness would overwrite kept/0-load.jsonl
  [2]
  $ cmp round.json kept/0-load.jsonl
  $ tail -2 out
    load   at most 1 trigger in 1 event in the long run, if every draw lets it through (odds 0.25 a round of 1 event)
           two triggers are at least 1 event apart
  $ rm w/0-load.jsonl && mkdir w/0-load.jsonl && vig prove round.json --witness w >out
  vig: error: w/0-load.jsonl: Is a directory
  [2]

An interruption ends it, after what was decided before.

  $ mkfifo in out.pipe
  $ vig prove round.json /dev/fd/5 5<>in >out.pipe &
  $ exec 4<out.pipe
  $ while read -r line && [[ $line != *apart ]]; do :; done <&4
  $ kill $!
  $ wait $!
  [130]
