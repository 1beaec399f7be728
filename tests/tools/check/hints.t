  $ . "$TESTDIR/../rules.sh"
  $ told() { machines >rules.json; vig check rules.json --allow no-action --allow copied-configuration | grep -E 'error:|warning:|hint:' | sed -E 's/^[^ ]*: (error|warning): //'; }

A hint mends, and never makes worse. What is ignored of a number was meant: in the unit of what it is compared with.

  $ of() { echo "start end Test | $1 $2 > =$3"; }
  $ { for text in 200MB '200 MiB' 1.5GB 200M 204800kB 204,800 1.234.567 "204'800" 2e5 0x32000 12,5 5s 300x; do
  >   of integer vmRssKB "$text"
  > done; of integer durationMs 5s; of integer waitSeconds 5m; of integer size 5MB
  > for text in 80% 0,8 1,234 1,234.5; do of double cpuAvgUtilization "$text"; done; } | told | grep -v 'known to\|catalogue'
  "200MB" is read as 200; "MB" is ignored [number-text]
      hint: write "204800": 200 MB is 204800 kB here
  "200 MiB" is read as 200; " MiB" is ignored [number-text]
      hint: write "204800": 200 MB is 204800 kB here
  "1.5GB" is read as 1; ".5GB" is ignored [number-text]
      hint: write "1572864": 1.5 GB is 1572864 kB here
  "200M" is read as 200; "M" is ignored [number-text]
      hint: write "204800": 200 MB is 204800 kB here
  "204800kB" is read as 204800; "kB" is ignored [number-text]
      hint: write "204800": the number is in kB here
  "204,800" is read as 204; ",800" is ignored [number-text]
      hint: write "204800"
  "1.234.567" is read as 1; ".234.567" is ignored [number-text]
      hint: write "1234567"
  "204'800" is read as 204; "'800" is ignored [number-text]
      hint: write "204800"
  "2e5" is read as 2; "e5" is ignored [number-text]
      hint: write "200000"
  "0x32000" is read as 0; "x32000" is ignored [number-text]
      hint: write "204800"
  "12,5" is read as 12; ",5" is ignored [number-text]
      hint: write "12" or "13": an integer has no decimals
  "5s" is read as 5; "s" is ignored [number-text]
      hint: write "5" if that is meant
  "300x" is read as 300; "x" is ignored [number-text]
      hint: write "300" if that is meant
  "5s" is read as 5; "s" is ignored [number-text]
      hint: write "5000": 5 s is 5000 ms here
  "5m" is read as 5; "m" is ignored [number-text]
      hint: write "300": 5 minutes is 300 s here
  "5MB" is read as 5; "MB" is ignored [number-text]
      hint: write "5" if that is meant
  "80%" is read as 80; "%" is ignored [number-text]
      hint: write "80": the number is in percent here
  "0,8" is read as 0; ",8" is ignored [number-text]
      hint: write "0.8"
  "1,234" is read as 1; ",234" is ignored [number-text]
      hint: write "1234", or "1.234" if the comma begins the decimals
  "1,234.5" is read as 1; ",234.5" is ignored [number-text]
      hint: write "1234.5"

A share lies between 0 and 1.

  $ for text in '< =10' '<= =12.5' '> =90' '> =10' '== =10' '< =100' '< =-1' '< =1' '>= =1' '< =10%' '< =0,1' '< =1/10'; do
  >   echo "start end Test | double PseudoRandomDouble() $text | Test"
  > done | told
  `PseudoRandomDouble() < 10` is always true, whatever the event [always-true]
      hint: a share lies between 0 and 1: write "0.1" to let 10 % through
  `PseudoRandomDouble() <= 12.5` is always true, whatever the event [always-true]
      hint: a share lies between 0 and 1: write "0.125" to let 12.5 % through
  `PseudoRandomDouble() > 90` is never true, whatever the event [never-true]
      hint: a share lies between 0 and 1: write "0.9" to let 10 % through
  `PseudoRandomDouble() > 10` is never true, whatever the event [never-true]
      hint: a share lies between 0 and 1: write PseudoRandomDouble() < 0.1 to let 10 % through
  `PseudoRandomDouble() == 10` is never true, whatever the event [never-true]
      hint: a share lies between 0 and 1: write PseudoRandomDouble() < 0.1 to let 10 % through
  `PseudoRandomDouble() < 100` is always true, whatever the event [always-true]
      hint: a share lies between 0 and 1: write such a number, or leave the filter out
  `PseudoRandomDouble() < -1` is never true, whatever the event [never-true]
      hint: a share lies between 0 and 1: write such a number, or leave the filter out
  `PseudoRandomDouble() < 1` is always true, whatever the event [always-true]
      hint: leave the filter out; or write "0.01" to let 1 % through
  `PseudoRandomDouble() >= 1` is never true, whatever the event [never-true]
      hint: mend the filter, or leave the transition out; or write PseudoRandomDouble() < 0.01 to let 1 % through
  "10%" is read as 10; "%" is ignored [number-text]
      hint: write "0.1": 10 % is 0.1 here
  "0,1" is read as 0; ",1" is ignored [number-text]
      hint: write "0.1"
  "1/10" is read as 1; "/10" is ignored [number-text]
      hint: write "0.1"

A name that is written in two ways is told once, with both places, and what follows from it is not. Which of them is
meant says the one that occurs more often. Names that differ in numbers are meant.

  $ told <<'EOF'
  > start Hot Test | integer n > =3; hot warm Test; warm start Test
  > start veryHot Test | integer n > =3; very_hot end Test; very_hot start Test | integer n < =3
  > start hot Test | integer n > =3; hot end Test; hott end Test
  > start hott Test | integer n > =3; start hot Test; hot end Test
  > Start end Test
  > start End Test
  > start a1 Test; a2 end Test
  > start one Test; two end Test
  > start hto Test; hot end Test
  > EOF
  "hot" is left here and never entered, and "Hot" is entered by start -> Hot (transitions[0]) and never left [unreachable-state]
      hint: write the same name in both places
  "very_hot" is left here and never entered, and "veryHot" is entered by start -> veryHot (transitions[0]) and never left [unreachable-state]
      hint: did you mean "very_hot" in both places?
  this never fires: before it comes very_hot -> end (transitions[1]) on Test, which always fires [shadowed-transition]
      hint: put this one before it
  no chain of transitions leads from "start" to "hott" [unreachable-state]
      hint: did you mean "hot"?
  once in "hott", the machine does nothing any more [no-way-out]
      hint: did you mean "hot"? Or call the state "end" if the machine is to stay there
  `n > 3` is false for a Test event without n, which then fires start -> hot (transitions[1]) as if it were the opposite [missing-falls-through]
      hint: add the filter `n <= 3` there, or name the attribute in a file for --catalogue if all these events have it
  no chain of transitions leads from "start" to "Start" [unreachable-state]
      hint: did you mean "start"?
  once in "End", the machine does nothing any more [no-way-out]
      hint: did you mean "end"?
  once in "a1", the machine does nothing any more [no-way-out]
      hint: if that is meant, call the state "end"
  no chain of transitions leads from "start" to "a2" [unreachable-state]
      hint: lead a transition there, or leave it out
  once in "one", the machine does nothing any more [no-way-out]
      hint: if that is meant, call the state "end"
  no chain of transitions leads from "start" to "two" [unreachable-state]
      hint: lead a transition there, or leave it out
  "hot" is left here and never entered, and "hto" is entered by start -> hto (transitions[0]) and never left [unreachable-state]
      hint: write the same name in both places

Of names that are near, those come first that fit the filters beside them.

  $ told <<'EOF'
  > start end SystemMemoryHeartBeat | integer memFree > =1 & double psiAvg10 > =3 & integer MEM_FREE_KB > =1
  > start end MemoryHeartBeat | integer memFreeKB > =1
  > start end MemoryHeartBeat | integer vmRssKB > =1
  > EOF
  SystemMemoryHeartBeat events are not known to have an attribute "memFree" [unknown-attribute]
      hint: did you mean "memFreeKB"?
  SystemMemoryHeartBeat events are not known to have an attribute "psiAvg10" [unknown-attribute]
      hint: did you mean "psiFullAvg10" or "psiSomeAvg10"?
  SystemMemoryHeartBeat events are not known to have an attribute "MEM_FREE_KB" [unknown-attribute]
      hint: did you mean "memFreeKB"?
  FSM Event not found! [InvalidFsm]
      hint: there is no event "MemoryHeartBeat"; did you mean "SystemMemoryHeartBeat" or "ProcessMemoryHeartBeat"?
  FSM Event not found! [InvalidFsm]
      hint: there is no event "MemoryHeartBeat"; did you mean "ProcessMemoryHeartBeat" or "SystemMemoryHeartBeat"?

What is refused may be of another type of operand, or have characters that nobody sees.

  $ told <<'EOF'
  > start end Test | integer x > =vmRssKB & integer =memFreeKB < 5 & double x < PseudoRandomDouble() & double =0.1 > cpuAvgUtilization() & double =7 < 5e1()
  > start end Test | double x > =PseudoRandomDouble & integer x > =99999999999999999999 & double =1 < Other()
  > start end Test\u00a0 | string x == y | \u200bTest
  > start a\u200d Test | string x == y; a\u200d \u200c\u2009b\u00a0\u00a0c Test || Test\u2060
  > EOF
  Invalid constant of value type integer: vmRssKB. [InvalidFsm]
      hint: "vmRssKB" is an attribute: write "type": "envvar"
  Invalid constant of value type integer: memFreeKB. [InvalidFsm]
      hint: "memFreeKB" is an attribute: write "type": "envvar"
  Failed to find function: cpuAvgUtilization [InvalidFsm]
      hint: "cpuAvgUtilization" is an attribute: write "type": "envvar"
  Failed to find function: 5e1 [InvalidFsm]
      hint: "5e1" is a number: write "type": "constant"
  Invalid constant of value type double: PseudoRandomDouble. [InvalidFsm]
      hint: "PseudoRandomDouble" is a function: write "type": "function"
  Invalid constant of value type integer: 99999999999999999999. [InvalidFsm]
      hint: a whole number within the range is needed, such as "80"
  Failed to find function: Other [InvalidFsm]
      hint: one of "PseudoRandomDouble"
  FSM Event not found! [InvalidFsm]
      hint: there is no event "Test\xc2\xa0", which has U+00A0 (no-break space) at its end; did you mean "Test"? (esc)
  FSM Action (\xe2\x80\x8bTest) not found! [InvalidFsm] (esc)
      hint: there is no action "\xe2\x80\x8bTest", which has U+200B (zero-width space) at its beginning; did you mean "Test"? (esc)
  "a\xe2\x80\x8d" has U+200D (zero-width joiner) at its end [invisible-character] (esc)
      hint: write "a"
  "a\xe2\x80\x8d" has U+200D (zero-width joiner) at its end [invisible-character] (esc)
      hint: write "a"
  "\xe2\x80\x8c\xe2\x80\x89b\xc2\xa0\xc2\xa0c" has U+200C (zero-width non-joiner) at its beginning [invisible-character] (esc)
      hint: write "b c"
  once in "\xe2\x80\x8c\xe2\x80\x89b\xc2\xa0\xc2\xa0c", the machine does nothing any more [no-way-out] (esc)
      hint: if that is meant, call the state "end"
  FSM Action (Test\xe2\x81\xa0) not found! [InvalidFsm] (esc)
      hint: there is no action "Test\xe2\x81\xa0", which has U+2060 (word joiner) at its end; did you mean "Test"? (esc)
