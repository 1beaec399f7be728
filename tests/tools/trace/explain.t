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
  $ vig run rules.json events.jsonl --context context.jsonl --explain
      event  what     who            detail
          0  log      error          VIGManager: ViG device config is available now.
          1  explain  0 (id 7)       Test in state start
                                       configs[0].payload.data.transitions[0] -> end: stopped by filter 5 of 5
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
  $ vig run rules.json events.jsonl --explain | grep ' > 9' | uniq
                                         no    nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn\xe2\x80\xa6 > 9    missing > 9 (esc)

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
