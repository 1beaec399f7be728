  $ . "$TESTDIR/../rules.sh"
  $ cat >events.jsonl <<'EOF'
  > {"event":"Test","int64":{"pid":3}}
  > {"event":"Test","time_ms":9,"int64":{"pid":8,"limit":4}}
  > EOF
  $ echo '{"event":"Test","int64":{"limit":5}}' >context.jsonl

Each filter is shown with the values that it compared, up to the one that does not hold.

  $ five=$(filters 'integer =4kB < limit' 'string name != =x' 'integer absent <= pid' \
  >   'double PseudoRandomDouble() < =1' 'double pid > =0')
  $ document_of "$(transition start end Test "$five")" "$(transition start a Test '[]' "$(actions Test)")" \
  >   "$(transition a b EnteringState)" >rules.json
  $ vig run rules.json events.jsonl --context context.jsonl --explain=all
      event  what     who            detail
          1  explain  0 (id 7)       Test in state start
             configs[0].payload.data.transitions[0]
             -> end: stopped by filter 5 of 5
               yes   4kB < limit               4 < 5
               yes   name != "x"               "" (missing) != "x"
               yes   absent <= pid             0 (missing) <= 3
               yes   PseudoRandomDouble() < 1  0.1354770042967805 < 1
               no    pid > 0                   missing > 0
             configs[0].payload.data.transitions[1] -> a: fires
               runs  Test
          1  explain  0 (id 7)       EnteringState in state a
             configs[0].payload.data.transitions[2] -> b: fires
          1  move     0 (id 7)       start -> b
          2  explain  0 (id 7)       Test in state b: no transition listens
  
  summary
    events    2
    triggers  0
    machine   0  config id 7  payload id 1  in state b

For programs.

  $ document_of "$(transition start end Test "$five")" >rules.json
  $ vig run rules.json events.jsonl --context context.jsonl --explain --format jsonl | grep '"explain","event":2'
  {"type":"explain","event":2,"machine":0,"config_id":7,"event_type":"Test","state":"start","transitions":[{"path":"configs[0].payload.data.transitions[0]","to":"end","fired":false,"filters":[{"condition":"4kB < limit","left":4,"right":4,"verdict":false}],"actions":[]}]}

A program gets whole what a person sees the beginning of.

  $ name=$(printf 'n%.0s' {1..100})
  $ document_of "$(transition start end Test "$(filters "integer $name > =9")")" >rules.json
  $ vig run rules.json events.jsonl --explain --format jsonl | grep -o "\"condition\":\"$name > 9\"" | uniq | wc -c
  119
  $ vig run rules.json events.jsonl --explain=all | grep -A1 ' > 9' | head -2
                     > 9
                       missing > 9

Of many events, people see those by which a transition fires or comes nearer than before; programs see all.

  $ beat() { printf '{"event":"Test","time_ms":%s,"string":{"name":"%s"},"int64":{"pid":%s}}\n' "$@"; }
  $ document_of "$(transition start a Test "$(filters 'string name == =x' 'integer pid > =99' 'integer pid < absent')")" \
  >   "$(transition a start Test "$(filters 'integer pid < =10')")" >near.json
  $ (beat 0 y 1; beat 1 x 1; beat 2 x 50; beat 3 x 51; beat 4 x 40; beat 5 x 80; beat 6 x 100; beat 7 x 101; beat 8 y 9) >near.jsonl
  $ vig run near.json near.jsonl --explain
      event  what     who            detail
          2  explain  0 (id 7)       Test in state start
             configs[0].payload.data.transitions[0] -> a: stopped by filter 2 of 3
               yes   name == "x"  "x" == "x"
               no    pid > 99     1 > 99
          4  explain  0 (id 7)       Test in state start
             transitions[0] -> a: stopped by filter 2 of 3
               yes   name == "x"  "x" == "x"
               no    pid > 99     51 > 99
          6  explain  0 (id 7)       Test in state start
             transitions[0] -> a: stopped by filter 2 of 3
               yes   name == "x"  "x" == "x"
               no    pid > 99     80 > 99
          7  explain  0 (id 7)       Test in state start
             transitions[0] -> a: stopped by filter 3 of 3
               yes   name == "x"   "x" == "x"
               yes   pid > 99      100 > 99
               no    pid < absent  100 < 0 (missing)
  
  explained 4 of 9 events, in which a transition fired, or came nearer to firing
  than before; --explain=all explains all
  
  summary
    events    9
    triggers  0
    machine   0  config id 7  payload id 1  in state start
  $ vig run near.json near.jsonl --explain --format jsonl | grep -c '"explain"'
  9
  $ for i in {1..4000}; do beat $i x $((i * 7919 % 100)); done >many.jsonl
  $ vig run near.json many.jsonl --explain | grep -c .
  23

What is told is chosen by the machine, the attributes, and the number or the time of the event; the summary is not.

  $ document "$(config 7 "$(transition start a Test)")" "$(config 8 "$(transition start a Test)" "$(transition a b Test)")" >two.json
  $ while read -r arguments; do
  >   echo "$arguments: $(eval "vig run two.json near.jsonl --explain=all $arguments" 2>&1 | grep -oE '^ +[0-9]+ +(explain|move) +[01]|note.*|error.*|^  [0-9].*' | tr -s ' \n' ' ')"
  > done <<'EOF'
  > --machine 0 --to 2
  > --machine id=8 --to 2
  > --machine 2
  > --machine id=0
  > --where name=y --machine 1
  > --where name=y --where pid=9 --where event=Test
  > --where event=Timeout
  > --where nmae=y
  > --from 9
  > --from 7ms --to 7ms
  > EOF
  --machine 0 --to 2:  1 explain 0 1 move 0 2 explain 0 
  --machine id=8 --to 2:  1 explain 1 1 move 1 2 explain 1 2 move 1 
  --machine 2: error: there is no machine 2; there are: 0 (id 7) 1 (id 8) 
  --machine id=0: error: there is no machine with the id 0; there are: 0 (id 7) 1 (id 8) 
  --where name=y --machine 1:  1 explain 1 1 move 1 9 explain 1 
  --where name=y --where pid=9 --where event=Test:  9 explain 0 9 explain 1 
  --where event=Timeout: note: none of 9 events is chosen by --where, --from and --to 
  --where nmae=y: note: no event has an attribute "nmae" 
  --from 9:  9 explain 0 9 explain 1 
  --from 7ms --to 7ms:  8 explain 0 8 explain 1 
  $ (beat 5 y 1; echo '{"event":"Test","uint64":{"u":7},"double":{"d":0.5},"bool":{"b":true}}'; beat 9 y 1) >kinds.jsonl
  $ for chosen in '--from 5ms --to 5ms' '--where u=7' '--where d=0.50' '--where b=true' '--where b=false'; do
  >   vig run near.json kinds.jsonl --explain=all $chosen 2>&1 | grep -oE '^ +[0-9]+ +explain|note.*' | tr -s ' \n' ' '; echo "with $chosen"
  > done
   1 explain 2 explain with --from 5ms --to 5ms
   2 explain with --where u=7
   2 explain with --where d=0.50
   2 explain with --where b=true
  note: none of 3 events is chosen by --where, --from and --to with --where b=false
  $ vig run two.json near.jsonl --machine 1 --from 2 --to 2 --format jsonl | cut -c1-40
  {"type":"log","event":0,"priority":"erro
  {"type":"move","event":2,"machine":1,"co
  {"type":"end","events":9,"triggers":0,"m

A line has 80 columns at most.

  $ for rules in "$VIG_SOURCE"/{examples/*[a-z],docs/tutorial/{camera,second}}.json near.json; do
  >   [[ $rules == *test.json ]] || vig run "$rules" "$VIG_SOURCE/examples/trace.jsonl" --explain=all --why-not
  > done | grep -E '.{81}'
  [1]

Explaining changes nothing of what happens, with draws on events and on entering states, in both kinds of filter,
and with functions that the registry does not have.

  $ half=$(filters 'double PseudoRandomDouble() < PseudoRandomDouble()' 'double PseudoRandomDouble() > =0.2' \
  >   'integer pid != absent')
  $ all=$(actions TriggerVelora LogZramHeartBeat)
  $ beat=ProcessMemoryHeartBeat
  $ document "$(config 1 "$(transition start a EnteringState "$half")" \
  >     "$(transition start a $beat "$(filters 'double =0.5 > PseudoRandomDouble()' 'string F() != processName')" "$all")" \
  >     "$(transition a start $beat "$half")")" \
  >   "$(config 2 "$(transition start start $beat \
  >       "$(filters 'double PseudoRandomDouble() <= PseudoRandomDouble()')" "$all")" \
  >     "$(transition start b Timeout)" "$(transition b b EnteringState)" \
  >     "$(transition start start ZramHeartBeat '[]' "$all")")" >random.json
  $ echo '{' >bad.json
  $ for rules in random.json "$VIG_SOURCE"/examples/{first-look,memory-budget,cpu-budget}.json bad.json; do
  >   for seed in 1 2 3; do
  >     told() { vig run "$rules" "$VIG_SOURCE/examples/trace.jsonl" --seed $seed --format jsonl "$@" 2>&1; echo $?; }
  >     cmp <(told) <(told --explain | grep -v '^{"type":"explain"')
  >   done
  > done
  $ vig run random.json "$VIG_SOURCE/examples/trace.jsonl" | grep -c 'trigger  '
  25
