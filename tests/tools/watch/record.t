  $ . "$TESTDIR/../rules.sh"
  $ document_of >rules.json
  $ echo '{"event":"Test"}' >context.jsonl
  $ watch() { vig watch "$@" --context context.jsonl --duration 0ms; }

A recording is a new file, or may be overwritten, and is opened when the rules run.

  $ echo precious >record.jsonl
  $ ln -s record.jsonl link
  $ watch rules.json --record record.jsonl
  vig: error: record.jsonl: it exists already; --force overwrites it
  [2]
  $ watch rules.json --record link --force
  vig: error: link: it is a symbolic link
  [2]
  $ echo '{' >bad.json
  $ watch bad.json --record record.jsonl --force >out
  bad.json:1:2: error: the text ends, and the "{" in line 1, column 1 is still open [InvalidJson]
      {
       ^
      hint: write } at the end
  [1]
  $ watch bad.json --record new.jsonl >out
  bad.json:1:2: error: the text ends, and the "{" in line 1, column 1 is still open [InvalidJson]
      {
       ^
      hint: write } at the end
  [1]
  $ ls *.jsonl
  context.jsonl
  record.jsonl
  $ cat record.jsonl
  precious

It never takes the place of an input, whatever the name.

  $ mkdir folder
  $ for input in rules.json context.jsonl; do
  >   ln $input hard-$input
  >   ln -s $input soft-$input
  >   for record in $input {hard,soft}-$input folder/../$input; do
  >     cp $input before
  >     watch rules.json --record $record --force
  >     cmp before $input
  >   done
  > done
  vig: error: rules.json: it is an input of this very run
  vig: error: hard-rules.json: it is an input of this very run
  vig: error: soft-rules.json: it is an input of this very run
  vig: error: folder/../rules.json: it is an input of this very run
  vig: error: context.jsonl: it is an input of this very run
  vig: error: hard-context.jsonl: it is an input of this very run
  vig: error: soft-context.jsonl: it is an input of this very run
  vig: error: folder/../context.jsonl: it is an input of this very run
