  $ . "$TESTDIR/../rules.sh"
  $ cat >events.jsonl <<'EOF'
  > {"event":"Test","int64":{"x":1},"double":{"x":2,"é\"":0.5}}
  > {"device":"a","event":"ZramHeartBeat"}
  > {"device":"a","ended":true}
  > {"device":"b","event":"Test","int64":{"depth":1},"bool":{"b":true}}
  > EOF
  $ vig catalogue <events.jsonl | tee catalogue.json
  {
    "events": {
      "Test": {
        "int64": ["depth", "x"],
        "double": ["x", "\xc3\xa9\\""], (esc)
        "bool": ["b"]
      },
      "ZramHeartBeat": {}
    },
    "context": {}
  }
  $ printf '{"event":"Test"}\n{}\n' | vig catalogue
  <stdin>:2: error: event: missing
  [2]

A catalogue or a recording tells which attributes there are, in the place of those that the tool knows. Both add up.

  $ document_of "$(transition start end Test "$(filters 'integer depth > =1')" "$(actions Test)")" >rules.json
  $ echo '{"events":{"Test":{"int64":["level"]}},"context":{}}' >other.json
  $ vig check rules.json --strict --catalogue catalogue.json
  nothing found in 1 file
  $ vig check rules.json --strict --events events.jsonl
  nothing found in 1 file
  $ vig check rules.json --strict --catalogue other.json --events events.jsonl
  nothing found in 1 file
  $ document_of "$(transition start end ZramHeartBeat '[]' "$(actions LogZramHeartBeat)")" >zram.json
  $ vig check zram.json && vig check zram.json --events events.jsonl | grep hint
  nothing found in 1 file
      hint: without them it logs 0; listen for another event
  $ vig check rules.json --strict --catalogue other.json | grep hint
      hint: if the service gives it to them, name it in a file for --catalogue

Those that cannot be read, or say something else.

  $ echo '{' >broken
  $ vig check rules.json --catalogue absent
  vig: error: absent: No such file or directory
  [2]
  $ vig check rules.json --events absent
  vig: error: absent: No such file or directory
  [2]
  $ vig check rules.json --events broken
  broken:1: error: invalid JSON: a brace, comma, colon, key or value is missing or too many
  [2]
  $ while read -r text; do echo "$text" >broken; vig check rules.json --catalogue broken; done <<'EOF'
  > []
  > {"event":{}}
  > {"extends":"builtin"}
  > {"events":{"Tset":{}}}
  > {"events":{"Test":{"int":[]}}}
  > {"context":{"int64":"x"}}
  > {"context":{"int64":["x",1]}}
  > {
  > EOF
  broken:1:1: error: expected an object, got an array
  broken:1:10: error: unknown key "event"; did you mean "events"?
  broken:1:12: error: extends: expected "built-in"
  broken:1:19: error: events: unknown key "Tset"; did you mean "Test"?
  broken:1:26: error: events.Test: unknown key "int"; did you mean "int64"?
  broken:1:21: error: context.int64: expected an array, got a string
  broken:1:26: error: context.int64[1]: expected a string, got a number
  broken:1:2: error: the text ends, and the "{" in line 1, column 1 is still open; write } at the end
  [2]
