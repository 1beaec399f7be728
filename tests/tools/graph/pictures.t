  $ . "$TESTDIR/../rules.sh"

Transitions are numbered within their state, and marked with what is wrong with them. What cannot be reached is grey.

  $ document "$(config 7 "$(transition a start Timeout)" "$(transition start a Test)" "$(transition lost a Test)" \
  >   "$(transition a a Test "$(filters 'integer pid > =3x')")" "$(transition a b Test)" \
  >   "$(transition a end ZramHeartBeat)")" \
  >   "$(config 7 "$(transition start start ZramHeartBeat '[]' "$(actions LogZramHeartBeat)")")" >rules.json
  $ vig graph rules.json --format mermaid
  stateDiagram-v2
      classDef final stroke-width:4px
      classDef unreachable fill:white,color:grey,stroke:grey
      state "configuration 7<br/>\xe2\x9a\xa0 no-action" as c0 { (esc)
      [*] --> c0s0
      state "start" as c0s0
      state "a" as c0s1
      state "lost<br/>\xe2\x9a\xa0 unreachable-state" as c0s2 (esc)
      state "b<br/>\xe2\x9a\xa0 no-way-out" as c0s3 (esc)
      state "end" as c0s4
      c0s0 --> c0s1 : 1. Test
      c0s1 --> c0s0 : 1. Timeout<br/>\xe2\x9a\xa0 unused-timeout (esc)
      c0s1 --> c0s1 : 2. Test<br/>pid > 3x<br/>\xe2\x9a\xa0 missing-falls-through<br/>\xe2\x9a\xa0 number-text (esc)
      c0s1 --> c0s3 : 3. Test
      c0s1 --> c0s4 : 4. ZramHeartBeat
      c0s2 --> c0s1 : 1. Test
      }
      state "configuration 7<br/>\xe2\x9a\xa0 duplicate-id" as c1 { (esc)
      [*] --> c1s0
      state "start" as c1s0
      c1s0 --> c1s0 : 1. ZramHeartBeat<br/>\xe2\x86\x92 LogZramHeartBeat (esc)
      }
      class c0s2 unreachable
      class c0s4 final
  $ vig graph rules.json --format dot | grep -o '[a-z0-9]* \[tooltip="[^ ].*label=<'
  c0s1 [tooltip="1: unused-timeout: nothing arms a timeout by itself: only a service that does so sends the event \xc2\xb7 2: missing-falls-through: `pid &gt; 3x` is false for a Test event without pid, which then fires a -&gt; b (transitions[4]) as if it were the opposite \xc2\xb7 number-text: &quot;3x&quot; is read as 3; &quot;x&quot; is ignored", label=< (esc)
  c0s2 [tooltip="unreachable-state: no chain of transitions leads from &quot;start&quot; to &quot;lost&quot;", label=<
  c0s3 [tooltip="no-way-out: once in &quot;b&quot;, the machine does nothing any more", label=<

Each transition says what a recording did. One arrow stands for the last of more than four that have the same ends and fate.

  $ for i in {0..11}; do
  >   event=$([ $i = 7 ] && echo Timeout || ([ $((i % 2)) = 0 ] && echo Test || echo ZramHeartBeat))
  >   all+=("$(transition start start "$event" "$(filters "integer pid == =$i$([ $i != 11 ] || echo x)")")")
  > done
  $ document_of "${all[@]}" >many.json
  $ printf '{"event":"%s","int64":{"pid":%s}}\n' Test 0 ZramHeartBeat 1 Test 2 ZramHeartBeat 3 Test 4 Test 99 >events
  $ vig graph many.json --events events --format mermaid | grep -o ' : .*'
   : 1. Test<br/>pid == 0<br/>1 of 4 tried
   : 2. ZramHeartBeat<br/>pid == 1<br/>1 of 2 tried<br/>\xe2\x9a\xa0 unknown-attribute (esc)
   : 3. Test<br/>pid == 2<br/>1 of 3 tried
   : 4\xe2\x80\xa65. 2 more<br/>Test \xc3\x971<br/>ZramHeartBeat \xc3\x971<br/>2 of 3 tried<br/>\xe2\x9a\xa0 unknown-attribute (esc)
   : 6. ZramHeartBeat<br/>pid == 5<br/>never tried<br/>\xe2\x9a\xa0 unknown-attribute (esc)
   : 7. Test<br/>pid == 6<br/>0 of 1 tried
   : 8. Timeout<br/>pid == 7<br/>never tried<br/>\xe2\x9a\xa0 unused-timeout (esc)
   : 9. Test<br/>pid == 8<br/>0 of 1 tried
   : 10. ZramHeartBeat<br/>pid == 9<br/>never tried<br/>\xe2\x9a\xa0 unknown-attribute (esc)
   : 11. Test<br/>pid == 10<br/>0 of 1 tried
   : 12. ZramHeartBeat<br/>pid == 11x<br/>never tried<br/>\xe2\x9a\xa0 unknown-attribute<br/>\xe2\x9a\xa0 number-text (esc)

A document is read once, or a pipe would be empty the second time.

  $ vig graph <(document_of "${all[0]}") --events events --format mermaid | grep -o ' : .*'
   : 1. Test<br/>pid == 0<br/>1 of 4 tried

What is no document, no events or no context is told, and nothing is drawn.

  $ echo '{}' >bad
  $ vig graph bad
  bad:1:1: error: the root must be an object whose "configs" is an array ("configs" is missing) [InvalidResponse]
      {}
      ^~
      hint: an array is needed; [] for none
  [1]
  $ vig graph none
  vig: error: none: No such file or directory
  [2]
  $ vig graph rules.json --events none
  vig: error: none: No such file or directory
  [2]
  $ vig graph rules.json --events bad
  bad:1: error: event: missing
  [2]
  $ vig graph rules.json --context none
  vig: error: none: No such file or directory
  [2]

Graphviz draws, if it is there and can.

  $ vig=$(command -v vig)
  $ mkdir empty fake
  $ PATH=$PWD/empty "$vig" graph rules.json --format svg
  vig: error: --format svg needs the program dot of Graphviz, which is not installed
  On Debian: apt install graphviz. Without it: --format dot, --format mermaid.
  [2]
  $ graphviz() { printf '#!/bin/sh\n%s\n' "$1" >fake/dot; chmod +x fake/dot; PATH=$PWD/fake "$vig" graph many.json --format svg; }
  $ graphviz "echo 'no $(printf '\e[1m')fonts' >&2; exit 3"
  vig: error: Graphviz failed: no \x1b[1mfonts\n
  [2]
  $ graphviz 'echo $1'
  -Tsvg
