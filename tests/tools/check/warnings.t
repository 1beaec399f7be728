  $ . "$TESTDIR/../rules.sh"
  $ memory='start end ProcessMemoryHeartBeat' cpu='start end ProcessCpuHeartBeat' test='start end Test'
  $ big='integer vmRssKB > =10' random='double PseudoRandomDouble() < =0.1' collect='| TriggerVelora'
  $ cat >catalogue.json <<'EOF'
  > {"extends":"built-in","context":{"int64":["limit"],"string":["mode"]},
  >  "events":{"ForegroundAppsStats":{"bool":["on"],"int64":["n"],"double":["n"]}}}
  > EOF

What is found in the machine of each line, counted from 0: names, each with the transition and the place in it. First
come states, then transitions behind others, and cycles that need no event.

  $ named() {
  >   machines >rules.json; vig check --allow no-action rules.json "$@" | awk '
  >     / \[[a-z-]*\]$/ { name = (/: error: / ? "error " : "") substr($NF, 2, length($NF) - 2) }
  >     sub(/^    path: configs\[/, "") { line = $0 + 0; sub(/: .* -> .* [(]line [0-9]*[)]$/, ""); sub(/^[0-9]*\]\.payload\.data\.transitions/, "")
  >       sub(/operand1\.value/, "left"); sub(/operand2\.value/, "right")
  >       found[line] = found[line] (found[line] ? ", " : line ": ") name " " $0; any = 1 }
  >     END { if (!any) print; for (line = 0; line < NR; ++line) if (line in found) print found[line] }'
  > }
  $ named <<EOF
  > start hto Test; hot end Test
  > a b Test; b a Test; end end Test
  > start a Test | $big; a end Test
  > start start Test
  > start a Test; a a Test || Test
  > start a Timeout; a start Test
  > EOF
  0: unreachable-state [1].from_state
  1: unreachable-state [0].from_state, unreachable-state [0].to_state, unreachable-state [2].from_state
  3: no-way-out [0].to_state
  5: unused-timeout [0].event
  $ named <<EOF
  > $memory | string processName == =a; $memory; $memory | $big
  > $memory | $big; $memory | integer =010 < vmRssKB & $big
  > $memory | integer vmRssKB > vmSwapKB; $memory | integer vmSwapKB < vmRssKB
  > $memory | $big; $memory | string processName == =a & $big; $memory
  > $memory | double =1 == =1; $memory
  > $memory | $big; $memory | integer vmRssKB >= =10; $memory | integer vmSwapKB > =10
  > $memory | $random; $memory | $random
  > $memory | $big & $random; $memory | $big
  > $memory | integer =1 == =2; $memory
  > $memory; start end SystemMemoryHeartBeat
  > start end EnteringState; start start EnteringState
  > EOF
  0: shadowed-transition [2]
  1: shadowed-transition [1]
  2: shadowed-transition [1]
  3: shadowed-transition [1]
  4: always-true [0].filters[0], shadowed-transition [1]
  8: never-true [0].filters[0]
  10: shadowed-transition [1]
  $ named <<EOF
  > start start EnteringState || Test
  > start a EnteringState; a b EnteringState; b a EnteringState
  > start a EnteringState | $random; a start EnteringState
  > start a EnteringState | $random; a b EnteringState; b a EnteringState
  > start end EnteringState | $random; start start EnteringState || Test
  > start a EnteringState; a b EnteringState; b a Test
  > start start EnteringState | double =1x == =1 | Test
  > EOF
  0: error endless-entering [0]
  1: error endless-entering [2]
  2: endless-entering [1]
  3: error endless-entering [2]
  4: endless-entering [1]
  6: error endless-entering [0], number-text [0].filters[0].left

A thousand states that nobody enters, whose long names might be near one another, take no time to speak of.

  $ awk 'BEGIN { srand(1); printf "{\"configs\":[{\"id\":1,\"payload\":{\"id\":1,\"data\":{\"transitions\":["
  >   for (count = 0; count < 2000; ++count) { name = ""
  >     while (length(name) < 60) name = name substr("abcdefgh", 1 + int(rand() * 8), 1)
  >     printf "%s{\"from_state\":\"%s\",\"to_state\":\"%s\",\"event\":\"Test\",\"filters\":[],\"actions\":[]}", count ? "," : "",
  >       count < 1000 ? last : name, count < 1000 ? name : "end"; last = name }
  >   print "]}}}]}" }' | sed 's/"from_state":""/"from_state":"start"/' >many.json
  $ timeout 20 vig check --allow no-action many.json | tail -n 1
  1001 warnings in 1 file

Actions, attributes, and NULs.

  $ named <<EOF
  > start start ProcessMemoryHeartBeat | $big $collect; start end ZramHeartBeat
  > start start ProcessMemoryHeartBeat | $big & $random $collect; $memory | $random
  > start start ProcessMemoryHeartBeat | double PseudoRandomDouble() < =1 $collect; start end ZramHeartBeat
  > start start ZramHeartBeat || LogZramHeartBeat; $memory |$collect; $test |$collect
  > start start ProcessMemoryHeartBeat |$collect; start end EnteringState | $random
  > start end ZramHeartBeat |$collect; $memory || TriggerVeloraCpu; $cpu || LogZramHeartBeat
  > start end EnteringState |$collect
  > start end Timeout || TriggerVeloraCpu; start start SystemMemoryHeartBeat |$collect
  > EOF
  0: trigger-storm [0].actions[0]
  2: always-true [0].filters[0], trigger-storm [0].actions[0]
  5: missing-attribute [0].actions[0], missing-attribute [1].actions[0], missing-attribute [2].actions[0]
  6: missing-attribute [0].actions[0]
  7: unused-timeout [0].event, missing-attribute [0].actions[0], missing-attribute [1].actions[0]
  $ named --catalogue catalogue.json <<EOF
  > $memory | integer vmRsKB > =1 & double vmRssKB > =1 & integer limit < =1 & integer limit < vmRssKB
  > start end SystemMemoryHeartBeat | $big; start end ZramHeartBeat | integer memUsedMaxBytes > =1
  > start end ForegroundAppsStats | string on == =1 & double n > =1
  > $test | integer anything > =1 & string mode == anything; start end Timeout | integer anything > =1
  > start end EnteringState | integer limit > =1 & integer other > =1 & double limit > =1 & integer limit > limit2
  > $memory | integer vmRssKB > PseudoRandomDouble() & string processName == F() & integer vmSwapKB < vmRssKB
  > $cpu | double cpuAvgUtilization > PseudoRandomDoubl() & double cpuAvgUtilization > PseudoRandomDouble()
  > $test | string x ==\u0000= =a & integer x >\u0000= =1
  > $test | string x\u0000 == =a & string =a != y\u0000 & string y == =\u0000a & string =\u0000 == z
  > $test | integer x > =1\u0000 & double =1\u00005 < x & integer F\u0000() < x & string x == =a\u0001
  > start a\u0000 Test; a\u0000 end Test
  > EOF
  0: unknown-attribute [0].filters[0].left, wrong-kind [0].filters[1].left, context-ignored [0].filters[3].left
  1: unknown-attribute [0].filters[0].left, wrong-kind [1].filters[0].left
  2: wrong-kind [0].filters[0].left
  3: context-ignored [0].filters[1].left, unused-timeout [1].event
  4: unknown-attribute [0].filters[1].left, wrong-kind [0].filters[2].left, context-ignored [0].filters[3].left, context-ignored [0].filters[3].right
  5: function-fallback [0].filters[0].right, function-fallback [0].filters[1].right
  6: function-fallback [0].filters[0].right
  7: nul-character [0].filters[0].operator, nul-character [0].filters[1].operator
  8: nul-character [0].filters[0].left, nul-character [0].filters[1].right, nul-character [0].filters[2].right, nul-character [0].filters[3].left
  9: number-text [0].filters[0].right, number-text [0].filters[1].left, function-fallback [0].filters[2].left, invisible-character [0].filters[3].right
  10: nul-character [0].to_state, nul-character [1].from_state

Filters that can never hold, and that always do.

  $ named <<EOF
  > $memory | string =a == =b & integer =2 < =1 & double =nan == =nan & integer vmRssKB > =9223372036854775807
  > $memory | integer =-9223372036854775808 > vmRssKB & string processName < = & double PseudoRandomDouble() < =0
  > $memory | double PseudoRandomDouble() >= =1 & double =1 == PseudoRandomDouble()
  > $cpu | double cpuAvgUtilization == =nan & double cpuAvgUtilization > =inf & integer pid != pid
  > $cpu | double cpuAvgUtilization < cpuAvgUtilization
  > $memory | $big & integer vmRssKB < =5; $memory | integer vmRssKB == =1 & integer vmRssKB == =2
  > $memory | integer =10 < vmRssKB & integer =11 > vmRssKB
  > $memory | integer vmRssKB >= =1 & integer vmRssKB <= =2 & integer vmRssKB != =1 & integer vmRssKB != =2
  > $memory | string processName == =a & string processName == =b; $memory | string processName < =B & string processName > =a
  > $memory | string processName == =a & string processName != =a; $memory | string processName > =b & string processName < =a
  > $cpu | double cpuAvgUtilization >= =0 & double cpuAvgUtilization <= =-0.0 & double cpuAvgUtilization != =0
  > $memory | string =a != =b & double =nan != =nan & string processName >= = & double PseudoRandomDouble() < =1
  > $memory | double =-0.5 != PseudoRandomDouble() & string processName == processName
  > EOF
  0: never-true [0].filters[0], never-true [0].filters[1], never-true [0].filters[2], never-true [0].filters[3]
  1: never-true [0].filters[0], never-true [0].filters[1], never-true [0].filters[2]
  2: never-true [0].filters[0], never-true [0].filters[1]
  3: never-true [0].filters[0], never-true [0].filters[1], never-true [0].filters[2]
  4: never-true [0].filters[0]
  5: never-true [0].filters[1], never-true [1].filters[1]
  6: never-true [0].filters[1]
  7: never-true [0].filters[3]
  8: never-true [0].filters[1], never-true [1].filters[1]
  9: never-true [0].filters[1], never-true [1].filters[1]
  10: never-true [0].filters[2]
  11: always-true [0].filters[0], always-true [0].filters[1], always-true [0].filters[2], always-true [0].filters[3]
  12: always-true [0].filters[0], always-true [0].filters[1]

And filters that may hold or not.

  $ named <<EOF
  > $memory | integer vmRssKB >= =-9223372036854775808 & integer vmRssKB >= =9223372036854775807
  > $cpu | double cpuAvgUtilization != =nan & double PseudoRandomDouble() <= =0
  > $memory | string processName > = & double PseudoRandomDouble() < PseudoRandomDouble()
  > $cpu | double cpuAvgUtilization == cpuAvgUtilization
  > $memory | integer vmRssKB >= =10 & integer vmRssKB <= =10 & integer vmRssKB != =9
  > $memory | integer vmRssKB > =5 & integer vmRssKB > =3 & integer vmSwapKB < =1
  > $memory | string processName >= =a & string processName < =b & string processName != =a
  > $memory | $random & double PseudoRandomDouble() > =0.9
  > $cpu | double cpuAvgUtilization > =0 & double cpuAvgUtilization < =1e-300
  > $cpu | double cpuAvgUtilization != =nan & double cpuAvgUtilization != =1
  > EOF
  1: exact-draw [0].filters[1].operator
  7: repeated-draw [0].filters[1].left
  8: wrong-unit [0].filters[1].right

What no event does, by all that filters and transitions leave of it; and what some event does.

  $ named --catalogue catalogue.json <<EOF
  > $memory | integer vmRssKB <= =100; $memory | integer vmRssKB > =100; $memory | integer vmRssKB != =7
  > $memory | integer vmRssKB > =102400; $memory | integer vmRssKB > =204800; $memory | integer vmRssKB > =1024
  > $memory | integer pid < vmRssKB & integer vmRssKB < vmSwapKB & integer vmSwapKB < pid
  > $memory | integer pid < vmRssKB & integer vmRssKB <= vmSwapKB & integer vmSwapKB < =1
  > $memory | integer vmRssKB < pid; $memory | integer vmRssKB >= pid; $memory
  > $cpu | double cpuAvgUtilization >= =inf & double cpuAvgUtilization < =0; $cpu | double PseudoRandomDouble() > cpuAvgUtilization; $cpu | double cpuAvgUtilization != cpuAvgUtilization
  > $cpu | double cpuAvgUtilization > =1e308 & double cpuAvgUtilization > =1.7976931348623157e308
  > $cpu | double cpuAvgUtilization <= =5; $cpu | double cpuAvgUtilization > =5; $cpu | double cpuAvgUtilization != =7
  > start a EnteringState | integer limit > =5; start b EnteringState | integer limit > =3; start end EnteringState | integer limit > =4; a end Test; b end Test
  > start end EnteringState | integer limit > =5 & integer limit < =3
  > $memory | $random & $big; $memory | $random & $big; $memory | integer vmRssKB > =20
  > start a Test | integer n > =1 & integer n < =1; a b Test; a c EnteringState; b end Test; c end Test
  > start a Test; a b EnteringState; a c Test; b end Test; c end Test
  > start a Test; a b Test | integer n > =1 & integer n < =1; a end Test | integer n > =1 & integer n < =1
  > start hot Test; hot end Test | integer limit > =5; hot start Test
  > EOF
  0: shadowed-transition [2]
  1: shadowed-transition [1]
  2: never-true [0].filters[2]
  4: shadowed-transition [2]
  5: never-true [0].filters[0], never-true [2].filters[0]
  6: never-true [0].filters[1]
  7: shadowed-transition [2]
  8: shadowed-transition [2]
  9: never-true [0].filters[1]
  11: unreachable-state [0].to_state, never-true [0].filters[1], unreachable-state [1].to_state, unreachable-state [2].to_state
  12: unreachable-state [2].to_state
  13: no-way-out [0].to_state, unreachable-state [1].to_state, never-true [1].filters[1], never-true [2].filters[1]
  $ low='integer vmRssKB < =20' same='string processName == =a'
  $ named <<EOF
  > start hot ProcessMemoryHeartBeat | $big $collect; hot start ProcessMemoryHeartBeat | integer vmRssKB > =20
  > start hot ProcessMemoryHeartBeat | integer vmRssKB > =20 $collect; hot start ProcessMemoryHeartBeat | $low
  > start a ProcessMemoryHeartBeat | $same; a b ProcessMemoryHeartBeat | $same; b c ProcessMemoryHeartBeat | $same $collect; c start EnteringState
  > start a ProcessMemoryHeartBeat | $same; a b ProcessMemoryHeartBeat | $same $collect; b c ProcessMemoryHeartBeat | $same; c start EnteringState | $random; c start Test
  > start a ProcessMemoryHeartBeat | $big $collect; a b ProcessMemoryHeartBeat | $random; a start ProcessMemoryHeartBeat; b end Test
  > start a ProcessMemoryHeartBeat | $big $collect; a b ProcessMemoryHeartBeat | $low; a start ProcessMemoryHeartBeat; b end Test
  > start hot ProcessMemoryHeartBeat | $big; hot end ProcessMemoryHeartBeat | $big $collect; hot start ProcessMemoryHeartBeat | integer vmRssKB <= =10
  > start hot ProcessMemoryHeartBeat | $big & $same; hot end ProcessMemoryHeartBeat | $big $collect; hot start ProcessMemoryHeartBeat | integer vmRssKB <= =10
  > start hot ProcessMemoryHeartBeat | $big & $same; hot end ProcessMemoryHeartBeat | $big & $same $collect; hot start ProcessMemoryHeartBeat | integer vmRssKB <= =10
  > start hot ProcessMemoryHeartBeat | $same; hot end ProcessMemoryHeartBeat | string processName == =b $collect
  > start hot ProcessMemoryHeartBeat | string processName != =a; hot end ProcessMemoryHeartBeat | string processName >= =a & string processName <= =a $collect
  > start hot SystemMemoryHeartBeat; hot end ProcessMemoryHeartBeat |$collect
  > start hot ProcessMemoryHeartBeat | $same; hot end ProcessMemoryHeartBeat | $same $collect; hot hot ProcessMemoryHeartBeat
  > start hot ProcessMemoryHeartBeat | $big & $random $collect; hot start EnteringState
  > start hot Test; hot on ProcessMemoryHeartBeat | $big & $random $collect; on hot EnteringState
  > start hot ProcessMemoryHeartBeat | string processName == = ; hot end ProcessMemoryHeartBeat | $same $collect
  > EOF
  0: trigger-storm [0].actions[0]
  2: trigger-storm [2].actions[0]
  5: trigger-storm [0].actions[0]
  6: mixed-processes [1].actions[0]
  7: mixed-processes [1].actions[0]
  10: mixed-processes [1].actions[0]
  $ named <<EOF
  > start hot Test; hot end Test | integer n > =5; hot start Test
  > start hot Test; hot end Test | integer n > =5; hot hot Test
  > start hot Test; hot end Test | integer n > =5; hot start Test | integer n <= =5
  > start hot Test; hot end Test | integer n > =5 & string s == =a & integer m > =5; hot start Test | integer m < =9
  > start hot Test; hot end Test | integer n > =5 & $random; hot start Test
  > start hot Test; hot end ProcessMemoryHeartBeat | $big; hot start ProcessMemoryHeartBeat
  > start hot Test; hot end Test | integer n > =5; hot start Test | integer m > =5; hot hot Test
  > EOF
  0: missing-falls-through [1].filters[0]
  3: missing-falls-through [1].filters[0]

Numbers that are read as others, and those that are not.

  $ said() {
  >   machines >rules.json; vig check --allow no-action rules.json "$@" | sed -nE 's/^[^ ]*: (warning|error)/\1/p; s/^    (hint:)/  \1/p'
  > }
  $ said <<EOF | grep -v hint
  > $test | integer x > =12kB & integer x > =0x10 & integer x > =1e3 & integer x > =12.9 & double x > =1,5
  > $test | double x > =1 000 & double x > =9007199254740993 & double x > =-0.10000000000000000001
  > $test | integer x > = +7 & double x > =0x10 & double x > =-00.10 & double x > =.5 & double x > =12. & double x > =0
  > $test | double x > =1e-310 & double x > =-inf & double x > =9007199254740992 & double x > =007 & integer x < =12\t
  > $test | integer x < =12\n & string x == =12kB
  > $test | integer =abc == =99999999999999999999
  > EOF
  warning: "12kB" is read as 12; "kB" is ignored [number-text]
  warning: "0x10" is read as 0; "x10" is ignored [number-text]
  warning: "1e3" is read as 1; "e3" is ignored [number-text]
  warning: "12.9" is read as 12; ".9" is ignored [number-text]
  warning: "1,5" is read as 1; ",5" is ignored [number-text]
  warning: "1 000" is read as 1; " 000" is ignored [number-text]
  warning: "9007199254740993" has more digits than a double holds, and is read as 9007199254740992 [number-text]
  warning: "-0.10000000000000000001" has more digits than a double holds, and is read as -0.10000000000000000555 [number-text]
  warning: "abc" is read as 0; "abc" is ignored [number-text]
  warning: "99999999999999999999" is no number within the range, and is read as 9223372036854775807 [number-text]

Draws: which share they let through, and what comes of those that are let through and of the others.

  $ most='double PseudoRandomDouble() > =0.1' half='double PseudoRandomDouble() < =0.5' camera='string processName == =camera'
  $ named <<EOF
  > $memory | $most $collect; $memory | double =0.25 <= PseudoRandomDouble() $collect
  > $memory | double PseudoRandomDouble() >= =0.9 $collect; $memory | double PseudoRandomDouble() < =0.9 $collect; $memory | double PseudoRandomDouble() > =0.5 $collect
  > start in EnteringState | $most; start end EnteringState; in end ProcessMemoryHeartBeat |$collect
  > start out EnteringState | $most; out start Timeout; $memory | $big $collect
  > start start ProcessMemoryHeartBeat | $most; $memory | $big $collect
  > start a Test | $most; start b Test; a end ProcessMemoryHeartBeat |$collect; b end ProcessMemoryHeartBeat | $big $collect
  > start start ZramHeartBeat | $most | LogZramHeartBeat; start end ZramHeartBeat || LogZramHeartBeat Test
  > $memory | $big & $most | LogZramHeartBeat; $memory | $big $collect; $memory | $most & $camera | Test
  > $memory | double PseudoRandomDouble() == =0.1 & double =0 != PseudoRandomDouble() & double PseudoRandomDouble() > =-0 $collect
  > $cpu | double cpuAvgUtilization == PseudoRandomDouble() & double PseudoRandomDouble() != PseudoRandomDouble() & double cpuAvgUtilization < PseudoRandomDouble()
  > $memory | $big & $random & $half & $most $collect
  > start a Test | $random; a b Test | $random; b end ProcessMemoryHeartBeat | double =0.1 > PseudoRandomDouble() $collect
  > start a Test | $random; a b Test | $half; b end ProcessMemoryHeartBeat |$collect
  > start a ProcessMemoryHeartBeat | $big & $random $collect; a end ProcessMemoryHeartBeat | $big & $random $collect
  > start a Test | $half; start b Test; a c Test | $half; a d Test; b end ProcessMemoryHeartBeat |$collect; c end ProcessMemoryHeartBeat |$collect; d end ProcessMemoryHeartBeat |$collect
  > start a Test | $random; start a Timeout; a end ProcessMemoryHeartBeat | $random $collect
  > start a Test | $random; a start Test; a b Timeout || Test; b end ProcessMemoryHeartBeat | $random $collect
  > start a ProcessMemoryHeartBeat | $camera & $big & $random; a start ProcessMemoryHeartBeat | $camera & integer vmRssKB <= =10; a end ProcessMemoryHeartBeat | $camera & $random $collect; a start ProcessMemoryHeartBeat | $camera
  > start a Test | $big & $random; start b Test | $big & $most; a end ProcessMemoryHeartBeat |$collect; b end ProcessMemoryHeartBeat |$collect
  > EOF
  0: inverted-share [0].filters[0].operator, inverted-share [1].filters[0].operator
  1: repeated-draw [1].filters[0].left
  2: inverted-share [0].filters[0].operator
  3: unused-timeout [1].event
  7: missing-attribute [0].actions[0], inverted-share [2].filters[0].operator
  8: exact-draw [0].filters[0].operator, exact-draw [0].filters[1].operator, exact-draw [0].filters[2].operator
  9: exact-draw [0].filters[0].operator, exact-draw [0].filters[1].operator
  10: repeated-draw [0].filters[2].left, repeated-draw [0].filters[3].left
  11: repeated-draw [1].filters[0].left, repeated-draw [2].filters[0].right
  13: mixed-processes [1].actions[0]
  15: unused-timeout [1].event
  16: unused-timeout [2].event
  17: repeated-draw [2].filters[1].left
  18: repeated-draw [1].filters[1].left

Types of operands, units, and what cannot be seen.

  $ named --catalogue catalogue.json <<EOF
  > start end ForegroundAppsStats | integer n > 5 & string =a == on & double 1e3 > =1
  > EOF
  0: operand-type [0].filters[0].operand2.type, wrong-kind [0].filters[1].right, operand-type [0].filters[2].operand1.type
  $ named <<EOF
  > $memory | integer vmRssKB > 204800 & string processName == camera & string =processName == music & double PseudoRandomDouble < =0.1
  > $memory | string proccessName == processName & string processName == =vmRssKB & integer vmRssKB > vmSwap & string 5 == =a
  > $memory | integer =vmRssKB > =5 & double =PseudoRandomDouble < =0.1 & integer =5 < =vmSwapKb
  > $test | string a == b & integer 17 < =1 & string PseudoRandomDouble == =a
  > $memory | integer vmRssKB > =67108864 & integer vmRssKB > =67108865 & integer vmRssKB < =68719476736 & integer vmRssKB < =68719476737
  > $cpu | double cpuAvgUtilization > =0.4 & double =1 < cpuAvgUtilization & double cpuAvgUtilization > =0 & double cpuAvgUtilization > =-0.5
  > $test | double aShare > =1 & double aShare > =40 & integer ramMB < =65536 & integer ramMB < =4194304 & integer sizeBytes > =99999999999 & string sizeKB > =9999999999
  > start \u00a0a Test; \u00a0a b\ufeff Test || Test; b\ufeff c\u200d Test; c\u200d d\u2764\ufe0f Test; d\u2764\ufe0f e\u200df\u200b Test; e\u200df\u200b g\u00adh Test; g\u00adh i\tj Test; i\tj end Test
  > $memory | string processName\u3000 == =a\t & string processName != =\u2009 & string processName >= =a\u00a0 & integer \u200bpid > =7
  > start a ProcessMemoryHeartBeat | integer vmRssKB > =204800 & integer vmSwapKB < =15360 $collect; a start ProcessMemoryHeartBeat | integer vmRssKB < =200 & integer vmSwapKB > =15
  > $memory | integer vmRssKB > =204800 & integer vmRssKB > =200MB
  > start col\u200b Test; col end Test
  > start a\u200b ProcessMemoryHeartBeat | $big; start a ProcessMemoryHeartBeat; a end Test
  > EOF
  0: operand-type [0].filters[0].operand2.type, operand-type [0].filters[1].operand2.type, operand-type [0].filters[2].operand1.type, operand-type [0].filters[2].operand2.type, operand-type [0].filters[3].operand1.type
  1: unknown-attribute [0].filters[0].left, unknown-attribute [0].filters[2].right, operand-type [0].filters[3].operand1.type
  2: operand-type [0].filters[0].operand1.type, operand-type [0].filters[1].operand1.type, number-text [0].filters[2].right
  3: operand-type [0].filters[1].operand1.type
  4: wrong-unit [0].filters[1].right, wrong-unit [0].filters[2].right
  5: wrong-unit [0].filters[0].right
  6: wrong-unit [0].filters[1].right, wrong-unit [0].filters[3].right
  7: invisible-character [0].to_state, invisible-character [1].from_state, invisible-character [1].to_state, invisible-character [2].from_state, invisible-character [2].to_state, invisible-character [3].from_state, invisible-character [4].to_state, invisible-character [5].from_state, invisible-character [5].to_state, invisible-character [6].from_state, invisible-character [6].to_state, invisible-character [7].from_state
  8: invisible-character [0].filters[0].left, invisible-character [0].filters[0].right, invisible-character [0].filters[1].right, invisible-character [0].filters[3].left
  9: wrong-unit [1].filters[0].right
  10: number-text [0].filters[1].right
  11: invisible-character [0].to_state
  12: invisible-character [0].to_state
  $ cat >events.jsonl <<'EOF'
  > {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":8000,"vmSwapKB":0},"double":{"aMs":40.5},"string":{"processName":"a"}}
  > {"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":400000,"vmSwapKB":20},"double":{"aMs":2000},"string":{"processName":"a"}}
  > EOF
  $ ways() { echo "start a ProcessMemoryHeartBeat | $1; a b ProcessMemoryHeartBeat | $2; b c ProcessMemoryHeartBeat | $3; c end ProcessMemoryHeartBeat | $4"; }
  $ named --events events.jsonl <<EOF
  > $(ways 'integer vmRssKB > =300' 'integer vmRssKB > =900' 'integer vmRssKB < =1' 'integer vmRssKB < =200')
  > $(ways 'integer vmRssKB > =10000000' 'integer vmRssKB > =300000000' 'integer vmRssKB <= =16000000' 'integer vmRssKB < =400001')
  > $(ways 'integer vmSwapKB > =1' 'integer vmSwapKB > =0' 'integer vmSwapKB > =20480' 'integer vmSwapKB > =5000')
  > $(ways 'double aMs > =2' 'double aMs > =5' 'double aMs > =2000000' 'double =40 == aMs')
  > EOF
  0: wrong-unit [0].filters[0].right, wrong-unit [3].filters[0].right
  1: wrong-unit [1].filters[0].right, wrong-unit [2].filters[0].right
  2: wrong-unit [2].filters[0].right
  3: wrong-unit [0].filters[0].right

Whole machines, which are the same whatever their states are called, and with no action.

  $ machines >rules.json <<EOF
  > start a Test; a end Test || Test
  > start b Test; b end Test || Test
  > start end Test; end a Test || Test
  > start b Test; b end Test | string a == =1:b | Test
  > start b Test; b end Test | string a == =1:c | Test
  > start b Test; b end Test | integer a == =1 | Test
  > start b Test; b end Test | integer a == 1 | Test
  > start c Test; c end Test | integer a == =1 | Test
  > start a Test
  > EOF
  $ vig check rules.json | grep -A3 -E '(copied-configuration|no-action)'
  rules.json:1:243: warning: this machine does the same as that of configs[0], whose id is 0 [copied-configuration]
      \xe2\x80\xa6,"actions":[{"name":"Test"}]}]}}},{"id":1,"payload":{"id":1,"data":{"transitions":[{"from_state":"st\xe2\x80\xa6 (esc)
                                               ^
      path: configs[1].id
  --
  rules.json:1:2085: warning: this machine does the same as that of configs[5], whose id is 5 [copied-configuration]
      \xe2\x80\xa6,"actions":[{"name":"Test"}]}]}}},{"id":7,"payload":{"id":1,"data":{"transitions":[{"from_state":"st\xe2\x80\xa6 (esc)
                                               ^
      path: configs[7].id
  --
  rules.json:1:2433: warning: no transition of this machine has an action, so that nothing comes of whatever happens [no-action]
      \xe2\x80\xa6,"actions":[{"name":"Test"}]}]}}},{"id":8,"payload":{"id":1,"data":{"transitions":[{"from_state":"st\xe2\x80\xa6 (esc)
                                               ^
      path: configs[8].id
  $ document "$(config 7)" "$(config 8)" >rules.json; vig check rules.json
  nothing found in 1 file

The whole of what is said.

  $ said --catalogue catalogue.json <<EOF
  > start hto Test; hot end Test
  > $memory | $big; $memory | $random & $big; $memory; $memory
  > start a EnteringState | $random; a b EnteringState; b a EnteringState
  > start a EnteringState; a b EnteringState; b c EnteringState; c d EnteringState; d e EnteringState | $random; e f EnteringState; f a EnteringState
  > start start ProcessMemoryHeartBeat | $big $collect
  > start end ZramHeartBeat |$collect; $cpu || LogZramHeartBeat
  > $test | string x ==\u0000= =a & integer x > =12kB & double x > =1,5 & double x > =9007199254740993
  > $memory | integer vmRsKB > =1 & double vmRssKB > =1 & integer limit < vmSwapKB
  > start end SystemMemoryHeartBeat | $big; start end ZramHeartBeat | integer memUsedMaxBytes > =1
  > $memory | integer vmRssKB > PseudoRandomDouble() & string processName == F() & double a > PseudoRandomDoubl()
  > $memory | $big & integer =5 > vmRssKB
  > $memory | integer vmRssKB >= =1 & integer vmRssKB <= =2 & integer vmRssKB != =1 & integer vmRssKB != =2
  > $memory | integer =2 < =1 & string processName >= =
  > $memory | integer vmRssKB <= =1; $memory | integer vmRssKB == =2; $memory | integer vmRssKB == =3; $memory | integer vmRssKB > =3; $memory | integer vmRssKB != =0
  > $cpu | double cpuAvgUtilization <= =5; $cpu | double cpuAvgUtilization > =5; $cpu | double cpuAvgUtilization != =7
  > $cpu | double cpuAvgUtilization >= =inf; $cpu | double cpuAvgUtilization > =1e308 & double cpuAvgUtilization > =1.7976931348623157e308
  > $cpu | double cpuAvgUtilization == cpuAvgUtilization; $cpu | double cpuAvgUtilization > =5
  > start a Test | integer =2 < =1; a b Test; start c Test; c d EnteringState; c e Test; d d Test | integer =2 < =1 | Test; b end Test; e end Test
  > start hot ProcessMemoryHeartBeat | $big $collect; hot start ProcessMemoryHeartBeat
  > start hot ProcessMemoryHeartBeat; hot end ProcessMemoryHeartBeat | $big $collect
  > start hot Test; hot end Test | integer =5 < n; hot start Test
  > start s1 EnteringState $(for n in {1..1005}; do echo "; s$n s$((n + 1)) EnteringState"; done | tr -d '\n')
  > $memory | $most $collect
  > start in EnteringState | $random; in a Test | $random; a end ProcessMemoryHeartBeat | $random & double PseudoRandomDouble() >= =0.2 & double PseudoRandomDouble() < =0.3 $collect
  > $cpu | double PseudoRandomDouble() == =0.1 & double cpuAvgUtilization != PseudoRandomDouble() & double PseudoRandomDouble() > =0 & double cpuAvgUtilization > =0.4
  > $memory | integer vmRssKB > 204800 & string =processName == camera & double =PseudoRandomDouble < =0.1 & integer vmRssKB > =314572800
  > $test | double aShare > =40 & string a\u00a0 == =\u200b & string a == =b\u0020
  > EOF
  warning: "hot" is left here and never entered, and "hto" is entered by start -> hto (transitions[0]) and never left [unreachable-state]
    hint: write the same name in both places
  warning: this never fires: before it comes start -> end (transitions[0]) on ProcessMemoryHeartBeat, which fires whenever this one could [shadowed-transition]
    hint: put this one before it, or give that one another filter
  warning: this never fires: before it comes start -> end (transitions[2]) on ProcessMemoryHeartBeat, which always fires [shadowed-transition]
    hint: put this one before it
  error: EnteringState transitions lead from "a" to "b" to "a", without end: one event makes up to 1000 moves [endless-entering]
    hint: let one of them listen for another event
  warning: EnteringState transitions lead from "a" to "b" to "c" to "d" to "e" to \xe2\x80\xa6 to "a", unless filters say otherwise: one event makes up to 1000 moves [endless-entering] (esc)
    hint: let one of them listen for another event
  warning: "TriggerVelora" asks for a collection at every ProcessMemoryHeartBeat event that fulfils the filters, and the machine stays in "start" [trigger-storm]
    hint: move to another state, or add the filter PseudoRandomDouble() < 0.1
  warning: "TriggerVelora" needs attributes that ZramHeartBeat events are not known to have: processName (string), vmRssKB (int64), vmSwapKB (int64) [missing-attribute]
    hint: without them it only logs; listen for another event
  warning: "LogZramHeartBeat" needs attributes that ProcessCpuHeartBeat events are not known to have: memUsedMaxBytes (uint64), numCompressedDataBytes (uint64) [missing-attribute]
    hint: without them it logs 0; listen for another event
  warning: "==\u0000=" is read as "==": what follows the NUL is ignored [nul-character]
    hint: write "==" if that is meant
  warning: "12kB" is read as 12; "kB" is ignored [number-text]
    hint: write "12" if that is meant
  warning: "1,5" is read as 1; ",5" is ignored [number-text]
    hint: write "1.5"
  warning: "9007199254740993" has more digits than a double holds, and is read as 9007199254740992 [number-text]
    hint: write fewer digits, or compare an int64 attribute as "integer"
  warning: ProcessMemoryHeartBeat events are not known to have an attribute "vmRsKB" [unknown-attribute]
    hint: did you mean "vmRssKB"?
  warning: "vmRssKB" is known as int64, which a comparison as "double" never finds [wrong-kind]
    hint: write "value_type": "integer"
  warning: "limit" is looked for in the event alone, where it is not, and reads as 0: only a comparison with a constant looks at the context [context-ignored]
    hint: compare it with a constant
  warning: SystemMemoryHeartBeat events are not known to have an attribute "vmRssKB" [unknown-attribute]
    hint: ProcessMemoryHeartBeat events have it
  warning: "memUsedMaxBytes" is known as uint64, which a comparison as "integer" never finds [wrong-kind]
    hint: attributes of the kinds uint64 and bool cannot be compared at all
  warning: there is no function "PseudoRandomDouble" that gives the type "integer": it reads as 0 [function-fallback]
    hint: write "value_type": "double"
  warning: there is no function "F" that gives the type "string": it reads as the empty text [function-fallback]
  warning: ProcessMemoryHeartBeat events are not known to have an attribute "a" [unknown-attribute]
    hint: if the service gives it to them, name it in a file for --catalogue
  warning: there is no function "PseudoRandomDoubl" that gives the type "double": it reads as 0 [function-fallback]
    hint: did you mean "PseudoRandomDouble"?
  warning: `5 > vmRssKB` contradicts `vmRssKB > 10` in the same transition [never-true]
    hint: a transition fires only if all its filters hold: make two transitions for two cases
  warning: `vmRssKB != 2` contradicts `vmRssKB >= 1`, `vmRssKB <= 2` and `vmRssKB != 1`, taken together, in the same transition [never-true]
    hint: a transition fires only if all its filters hold: make two transitions for two cases
  warning: `2 < 1` is never true, being a comparison of two constants [never-true]
    hint: mend the filter, or leave the transition out
  warning: `processName >= ""` is always true, whatever the event [always-true]
    hint: leave the filter out
  warning: this never fires: before it come start -> end (transitions[0]), start -> end (transitions[1]), start -> end (transitions[2]) and 1 more on ProcessMemoryHeartBeat, one of which fires whenever this one could [shadowed-transition]
    hint: put this one before them, or give one of them another filter
  warning: only an infinity, NaN or a text that is no UTF-8 fires this: before it come start -> end (transitions[0]) and start -> end (transitions[1]) on ProcessCpuHeartBeat, one of which fires whenever this one could [shadowed-transition]
    hint: put this one before them, or give one of them another filter
  warning: only an infinity or NaN fulfils `cpuAvgUtilization >= inf` [never-true]
    hint: mend the filter, or leave the transition out
  warning: this never fires: before it comes start -> end (transitions[0]) on ProcessCpuHeartBeat, which fires whenever this one could [shadowed-transition]
    hint: put this one before it, or give that one another filter
  warning: only an infinity or NaN fulfils `cpuAvgUtilization > 1.7976931348623157e308` [never-true]
    hint: mend the filter, or leave the transition out
  warning: this never fires: before it comes start -> end (transitions[0]) on ProcessCpuHeartBeat, which fires whenever this one could [shadowed-transition]
    hint: put this one before it, or give that one another filter
  warning: the machine never comes to "a": none of the transitions that could lead there ever fires [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: `2 < 1` is never true, being a comparison of two constants [never-true]
    hint: mend the filter, or leave the transition out
  warning: the machine never comes to "b", nor to "a" before it [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: once in "d", the machine does nothing any more: none of the transitions from there ever fires [no-way-out]
    hint: mend their filters
  warning: the machine never comes to "e": EnteringState transitions always leave "c" at once, before an event leads on [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: `2 < 1` is never true, being a comparison of two constants [never-true]
    hint: mend the filter, or leave the transition out
  warning: "TriggerVelora" asks for a collection once in 2 ProcessMemoryHeartBeat events as long as their values stay the same: they lead from "start" to "hot" to "start" [trigger-storm]
    hint: the same event must not fulfil the filters of both start -> hot (transitions[0]) and hot -> start (transitions[1]); or add the filter PseudoRandomDouble() < 0.1
  warning: the events that lead to "TriggerVelora" may come from different processes: start -> hot (transitions[0]) fires for one, and hot -> end (transitions[1]) for another [mixed-processes]
    hint: add the same filter on processName to both of them
  warning: `5 < n` is false for a Test event without n, which then fires hot -> start (transitions[2]) as if it were the opposite [missing-falls-through]
    hint: add the filter `5 >= n` there, or name the attribute in a file for --catalogue if all these events have it
  warning: the machine never comes to "s1001": EnteringState transitions end after 1000 moves, in "s1000" [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: the machine never comes to "s1002", nor to "s1001" before it [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: the machine never comes to "s1003", nor to "s1002" before it [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: the machine never comes to "s1004", nor to "s1003" before it; likewise 2 more behind these [unreachable-state]
    hint: mend what leads there, or leave it out
  warning: `PseudoRandomDouble() > 0.1` lets 90 % through, not 10 % [inverted-share]
    hint: write PseudoRandomDouble() < 0.1 if 10 % is meant, otherwise write PseudoRandomDouble() < 0.9
  warning: `PseudoRandomDouble() < 0.1` draws anew, after start -> in (transitions[0]) on the way here: both together let 1 % through [repeated-draw]
    hint: leave the filter out here, or there
  warning: `PseudoRandomDouble() < 0.1` draws anew, after in -> a (transitions[1]) on the way here: all together let 0.1 % through [repeated-draw]
    hint: leave the filter out here, or there
  warning: `PseudoRandomDouble() >= 0.2` draws anew, after `PseudoRandomDouble() < 0.1`: both together let 8 % through [repeated-draw]
    hint: leave one of them out
  warning: `PseudoRandomDouble() < 0.3` draws anew, after `PseudoRandomDouble() >= 0.2`: all together let 2.4 % through [repeated-draw]
    hint: leave one of them out
  warning: `PseudoRandomDouble() == 0.1` is as good as never true: a draw is hardly ever just one number [exact-draw]
    hint: write PseudoRandomDouble() < 0.1 to let that share through
  warning: `cpuAvgUtilization != PseudoRandomDouble()` is as good as always true: a draw is hardly ever just one number [exact-draw]
    hint: compare by "<"
  warning: `PseudoRandomDouble() > 0` is as good as always true: a draw is hardly ever just one number [exact-draw]
    hint: write PseudoRandomDouble() < 0.1 to let 10 % through
  warning: cpuAvgUtilization is in percent, so that 0.4 is less than one percent [wrong-unit]
    hint: write 40 if 40 % is meant
  warning: "204800" is a number, but is looked for as an attribute [operand-type]
    hint: write "type": "constant" if the value itself is meant
  warning: "processName" is the text itself here, not the attribute of that name [operand-type]
    hint: write "type": "envvar" if the attribute is meant
  warning: "camera" is looked for as an attribute, which ProcessMemoryHeartBeat events are not known to have [operand-type]
    hint: write "type": "constant" if the value itself is meant
  warning: "PseudoRandomDouble" is the text itself here, not the function of that name [operand-type]
    hint: write "type": "function" if the function is meant
  warning: vmRssKB is in kB, so that 314572800 is 300 GB [wrong-unit]
    hint: write 307200 if 300 MB is meant
  warning: aShare is a share from 0 to 1, and 40 is none [wrong-unit]
    hint: write 0.4 if 40 % is meant
  warning: "a\xc2\xa0" has U+00A0 (no-break space) at its end [invisible-character] (esc)
    hint: write "a"
  warning: "\xe2\x80\x8b" has U+200B (zero-width space) at its beginning [invisible-character] (esc)
    hint: write a name that can be seen
  warning: "b " has a space at its end [invisible-character]
    hint: write "b"
