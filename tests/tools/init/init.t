What it can write is listed, with examples that it writes; they are formatted as the examples are.

  $ vig init --list | grep -o 'vig init.*' | while read -r command; do eval "$command --force" </dev/null | sed -n 's/^rules  //p'; done
  TriggerVelora when vmRssKB of camera is above 204800 kB; never anew
  TriggerVelora when vmRssKB of camera is above 204800 kB 3 times in a row; never anew
  TriggerVelora when vmRssKB of camera is above 204800 kB; anew once it has been at 143360 kB or less
  TriggerVelora when vmRssKB of camera is above 204800 kB; never anew; on 10 % of the devices
  TriggerVelora when vmRssKB of camera is above 204800 kB, and once more when it is above 1048576 kB; anew once it has been at 143360 kB or less
  $ vig init camera.json --attribute cpuAvgUtilization --process camera --limit 40% </dev/null
  wrote  camera.json
  wrote  camera.test.json
  rules  TriggerVeloraCpu when cpuAvgUtilization of camera is above 40 %; never anew
  next   vig check --strict camera.json; vig test --coverage --mutants camera.test.json
  $ head -22 camera.json | sed '4s/1/102/; s/"end"/"busy"/; s/">"/">="/' | cmp - <(head -22 "$VIG_SOURCE/examples/cpu-budget.json")
  $ cat camera.test.json
  {
    "rules": "camera.json",
    "tests": [
      {
        "name": "above the limit it acts, and never again",
        "series": {
          "event": "ProcessCpuHeartBeat",
          "processName": "camera",
          "cpuAvgUtilization": "40 40.5x2"
        },
        "expect": {
          "triggers": [ { "process": "camera", "event": 2 } ],
          "states": { "1": "end" },
          "moves": 1
        }
      },
      {
        "name": "another process changes nothing, whatever the state",
        "series": {
          "event": "ProcessCpuHeartBeat",
          "processName": "gallery camera",
          "cpuAvgUtilization": "40.5x2"
        },
        "expect": {
          "triggers": [ { "process": "camera", "event": 2 } ],
          "states": { "1": "end" },
          "moves": 1
        }
      }
    ]
  }

Nothing is overwritten unless that is wanted, and what is wrong is told at once.

  $ mkdir new; touch new/b.test.json; ln -s nowhere c.json
  $ while read -r arguments; do eval "vig init $arguments" </dev/null; done <<'END'
  > camera.json --attribute vmRssKB --process camera --limit 1
  > new/b.json --attribute vmRssKB --process camera --limit 1
  > c.json --attribute vmRssKB --process camera --limit 1
  > absent/b.json --attribute vmRssKB --process camera --limit 1
  > b.json
  > b.test.json --attribute vmRsKB --process '' --limit x --times 21 --release x --share 10
  > b.json --attribute pid --times 3x
  > b.json --attribute memUsedMaxBytes --share 0
  > b.json --attribute memFreeKB --process camera --limit 2000B --share 0.1.
  > b.json --attribute vmRssKB --process ' a' --limit 200W --trigger TriggerVeloraCpu
  > b.json --attribute vmRssKB --process a --limit 9999999999MB
  > b.json --attribute vmRssKB --process a --limit 1.5 --second-limit 1
  > b.json --attribute vmRssKB --process a --limit 1MB --release 2MB --second-limit 1024 --share 1e-3
  > b.json --attribute cpuAvgUtilization --process a --limit 40KB
  > new --force --attribute rss
  > b.json --attribute vmRssKB --process a --limit 204,800 --share 0,1
  > b.json --attribute vmRssKB --process a --limit 0.123456GB
  > b.json --attribute vmRssKB --process a --limit 99999999999
  > b.json --attribute vmRssKB --process $'camera\xe2\x80\x8b' --limit 1
  > b.json --attribute vmRssKB --process a --limit 100GB
  > b.json --attribute vmRssKB --process a --limit 200 --second-limit 200MB
  > b.json --attribute cpuAvgUtilization --process a --limit 0.4
  > END
  vig: error: camera.json and camera.test.json exist already; --force overwrites them
  Try: vig init --help
  vig: error: new/b.test.json exists already; --force overwrites it
  Try: vig init --help
  vig: error: c.json exists already; --force overwrites it
  Try: vig init --help
  vig: error: absent/b.json: the folder cannot be written to: No such file or directory
  Try: vig init --help
  vig: error: --attribute is required
  vig: error: --process is required
  vig: error: --limit is required
  Try: vig init --help
  vig: error: --attribute: expected the name of an attribute that is a number, got "vmRsKB"; did you mean "vmRssKB"?
  vig: error: --times: expected a whole number from 1 to 20, got "21"
  vig: error: --share: expected a share above 0 and up to 1, such as 0.1, or the same in percent, 10%, got "10"
  vig: error: b.test.json: that is how a file of tests is called; name the rule document
  Try: vig init --help
  vig: error: --attribute: "pid" tells one process from another, and has no limit
  vig: error: --times: expected a whole number from 1 to 20, got "3x"
  vig: error: --process is required
  vig: error: --limit is required
  Try: vig init --help
  vig: error: --attribute: "memUsedMaxBytes" is a uint64, which rules cannot compare with a limit
  vig: error: --share: expected a share above 0 and up to 1, such as 0.1, or the same in percent, 10%, got "0"
  vig: error: --process is required
  vig: error: --limit is required
  Try: vig init --help
  vig: error: --process: the events with memFreeKB are of no process
  vig: error: --limit: "2000B" is no whole number of kB; the nearest one is 2
  vig: error: --share: expected a share above 0 and up to 1, such as 0.1, or the same in percent, 10%, got "0.1."
  vig: error: --trigger is required: no collection can be asked for with SystemMemoryHeartBeat events, and Test does nothing
  Try: vig init --help
  vig: error: --process: " a" has a space at its beginning; write "a"
  vig: error: --limit: expected a number of kB such as 204800, or one with its unit such as 200MB, got "200W"
  vig: error: --trigger: expected one of TriggerVelora, Test, for which ProcessMemoryHeartBeat events have what it needs, got "TriggerVeloraCpu"
  Try: vig init --help
  vig: error: --limit: "9999999999MB" is too large
  Try: vig init --help
  vig: error: --limit: "1.5" is no whole number of kB; the nearest one is 2
  Try: vig init --help
  vig: error: --release: expected a release limit that is not above the limit, which is 1024, got "2MB"
  vig: error: --second-limit: expected a second limit that is above the first one, which is 1024, got "1024"
  vig: error: --share: expected a share above 0 and up to 1, such as 0.1, or the same in percent, 10%, got "1e-3"; write "0.001"
  Try: vig init --help
  vig: error: --limit: expected a number of percent such as 40, got "40KB"
  Try: vig init --help
  vig: error: --attribute: expected the name of an attribute that is a number, got "rss"; there are vmRssKB, vmSwapKB, anonPagesKB, buffersKB, cachedKB, dirtyKB, mappedKB, memAvailableKB, memFreeKB, memTotalKB and 12 more
  vig: error: new: not a regular file
  vig: error: --process is required
  vig: error: --limit is required
  Try: vig init --help
  vig: error: --limit: expected a number of kB such as 204800, or one with its unit such as 200MB, got "204,800"; write "204800"
  vig: error: --share: expected a share above 0 and up to 1, such as 0.1, or the same in percent, 10%, got "0,1"; write "0.1"
  Try: vig init --help
  vig: error: --limit: "0.123456GB" is no whole number of kB; the nearest one is 129453
  Try: vig init --help
  vig: error: --limit: "99999999999" is too large
  Try: vig init --help
  vig: error: --process: "camera\xe2\x80\x8b" has U+200B (zero-width space) at its end; write "camera" (esc)
  Try: vig init --help
  vig: error: --limit: vmRssKB is in kB, so that 104857600 is 100 GB; write 102400 if 100 MB is meant
  Try: vig init --help
  vig: error: --second-limit: vmRssKB is in kB, and another limit of this machine is 200 MB; write 204800 if 200 MB is meant
  Try: vig init --help
  vig: error: --limit: cpuAvgUtilization is in percent, so that 0.4 is less than one percent; write 40 if 40 % is meant
  Try: vig init --help
  [2]
  $ ls
  c.json
  camera.json
  camera.test.json
  new
  rules.json
  rules.test.json

A path can be copied into a shell as it is told.

  $ mkdir "a b"; for path in "a b/it's.json" -a.json; do vig init --attribute vmRssKB --process a --limit 9 -- "$path" </dev/null | grep next; done
  next   vig check --strict 'a b/it'\''s.json'; vig test --coverage --mutants 'a b/it'\''s.test.json'
  next   vig check --strict ./-a.json; vig test --coverage --mutants ./-a.test.json
