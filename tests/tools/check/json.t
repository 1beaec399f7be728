What stands in the place of JSON is named, with the mend. A line is what is edited in a good text, where "~" is a line end.

  $ good='{ "configs": [ { "id": 7, "payload": { "id": 1, "data": {~  "transitions": [] } } } ] }~'
  $ told() {
  >   while IFS= read -r edit; do
  >     printf '%b' "$(tr '~' '\n' <<<"$good" | sed -z "$edit")" >rules.json
  >     vig check rules.json --format json | sed -nE 's/.*"line":(.*),"column":(.*),"end_line".*"name":"(.*)","path":.*"message":"(.*)","hint":"(.*)"\},?$/\1:\2 \4 [\3]: \5/; T; s/\\"/"/g; s/\\\\/\\/g; p'
  >   done
  > }
  $ told <<'EOF'
  > s/"id"/“id”/
  > s/"id"/"id”/
  > s/"id"/'id'/; s/"payload"/'payload'/; s/"data"/'data'/; s/"configs"/'configs'/
  > s/"id"/id/
  > s/"id"/id"/
  > s/"id"/"id/
  > s/7/"a"b"/
  > s/7/"a\\\\q"/
  > s/7/"\\\\u12G"/
  > s/7/"\\\\ud800"/
  > s/7/app server/
  > s/7/True/
  > s/7/None/
  > s/7/NaN/
  > s/7/yes/
  > s/7/${ID}/
  > s/7/{{ id }}/
  > s/"data": {/&{/
  > s/7/<id>/
  > s/7/0x1F/
  > s/7/.5/
  > s/7/30O/
  > s/7/12kB/
  > s/7/1e/
  > s/7/1e999/
  > s/7/1,000/
  > s/7/1 000/
  > s/7/3*100/
  > s/7/"a" + "b"/
  > s/7/7;/; s/;,/;/
  > s/:/：/
  > s/:/ =>/
  > s/,/,,/
  > s/7,/7/
  > s/"id":/"id"/
  > s/"id": 7/"id"/
  > s/"id": 7/"id":/
  > s/: 7/:: 7/
  > s/"id": 7/: 7/
  > s/"id": 7/"id": 7 x/
  > s/\[\]/[ ... ]/
  > s/\[\]/[ \/\/ none\n]/
  > s/\[\]/[ 1, \/\/ one\n]/
  > s/\[\]/[ , 1 ]/
  > s/\[\]/[ "a": 1 ]/
  > s/\[\]/(]/
  > s/7/7 # seven/; s/, "payload"/\n&/
  > s/7/7 \/ seven/; s/, "payload"/\n&/
  > s/7/7 \/* seven/
  > s/ "id"/\xc2\xa0"id"/
  > s/ "id"/\xe2\x80\x8b\xe2\x80\x8b"id"/
  > s/ "id"/\x01"id"/
  > s/ "id"/\xe4"id"/
  > s/ "id": 7,/\n<<<<<<< mine\n"id": 7,\n=======\n"id": 8,\n>>>>>>> yours\n/
  > s/\[\]/[/
  > s/\[\]/]/
  > s/\[\] }/[] ]/
  > s/\[\]/[] ]/
  > s/\[\]/{} ], {/
  > s/ \]/ ] ]/
  > s/\[\].*//
  > s/\[\].*/"end/
  > s/\[\].*/"end”/
  > s/ "id"/ { "id"/
  > s/{/{ "a": 1, {/
  > s/^/configs: /
  > s/.*/configs:\n  - id: 7\n/
  > s/^/const rules = /
  > s/.*/configs = 1/
  > s/^/<!-- rules -->\n/
  > s/^/```json\n/
  > s/.*//
  > s/.*/  \n/
  > s/.*/\/\/ rules\n/
  > EOF
  1:18 a text stands in " (U+0022), not in \xe2\x80\x9c (U+201C) [InvalidJson]: write "id" (esc)
  1:21 a text ends with " (U+0022), and not with \xe2\x80\x9d (U+201D) [InvalidJson]: write "id" (esc)
  1:3 a text stands in " (U+0022), not in ' (U+0027) [InvalidJson]: write "configs"
  1:18 a text stands in " (U+0022), not in ' (U+0027) [InvalidJson]: write "id"
  1:27 a text stands in " (U+0022), not in ' (U+0027); 1 more like it follow [InvalidJson]: write "payload"
  1:18 the key id lacks its quotes [InvalidJson]: write "id"
  1:18 a quote is missing before id [InvalidJson]: write "id"
  1:18 the text that begins here is not closed [InvalidJson]: write " where it ends
  1:26 the text ends at this quote, and goes on behind it [InvalidJson]: write \" for a quote inside of a text, or a comma between two texts
  1:26 \q means nothing in a text [InvalidJson]: write \\ for a backslash
  1:25 \u12 lacks digits: \u has four, from 0 to F [InvalidJson]: write all four, or \\ for a backslash
  1:25 \ud800 is the first half of a character [InvalidJson]: write its second half behind it, or the character itself
  1:24 the text app server lacks its quotes [InvalidJson]: write "app server"
  1:24 True is written in small letters [InvalidJson]: write true
  1:24 None is no value of JSON [InvalidJson]: JSON has numbers, texts in quotes, true, false and null
  1:24 NaN is no number of JSON [InvalidJson]: write a number, or leave it out
  1:24 yes is no value of JSON [InvalidJson]: write true, or "yes" if a text is meant
  1:24 ${ID} is a placeholder that was not filled in [InvalidJson]: write the value in its place
  1:24 {{ id }} is a placeholder that was not filled in [InvalidJson]: write the value in its place
  1:58 this "{" is one too many [InvalidJson]: remove it
  1:24 <id> is a placeholder that was not filled in [InvalidJson]: write the value in its place
  1:24 0x1F is not written as JSON writes numbers [InvalidJson]: write 31
  1:24 .5 is not written as JSON writes numbers [InvalidJson]: write 0.5
  1:24 30O is not written as JSON writes numbers [InvalidJson]: write 300
  1:24 12kB is no number of JSON [InvalidJson]: write the number alone, or "12kB" if a text is meant
  1:24 1e is a number that ends too early [InvalidJson]: write the digits that are missing
  1:24 1e999 is too large for a number [InvalidJson]: write a smaller number
  1:24 a number has no commas between its digits [InvalidJson]: write 1000
  1:24 a number has no spaces between its digits [InvalidJson]: write 1000
  1:24 3*100 is not computed: JSON has numbers alone [InvalidJson]: write the result
  1:28 + puts nothing together: JSON does not compute [InvalidJson]: write what comes of it
  1:25 ; (U+003B) is no comma of JSON [InvalidJson]: write ","
  1:12 \xef\xbc\x9a (U+FF1A) is no colon of JSON [InvalidJson]: write ":" (esc)
  1:13 => stands where a colon should [InvalidJson]: write ":"
  1:26 a comma stands behind a comma [InvalidJson]: remove it, or write what is missing before it
  1:25 a comma is missing between 7 and "payload" [InvalidJson]: write "," behind 7
  1:22 a colon is missing behind the key "id" [InvalidJson]: write ":" between the key and its value
  1:22 the key "id" has no value [InvalidJson]: write ":" and the value; a list stands in [ ]
  1:23 the key "id" has no value [InvalidJson]: write the value behind the colon
  1:23 a colon stands behind a colon [InvalidJson]: remove it
  1:18 a colon stands here without a key before it [InvalidJson]: write the key in quotes before the colon
  1:26 x means nothing here [InvalidJson]: remove it
  2:20 ... means nothing here [InvalidJson]: write what is meant, or remove it
  2:20 a comment stands alone in a list, which is not read [InvalidJson]: write it before the "["
  2:23 a comment stands between the last comma and the "]", which is not read [InvalidJson]: remove the comma, or the comment
  2:20 a comma stands before the first value [InvalidJson]: remove it, or write what is missing before it
  2:23 a key with a colon stands outside of an object [InvalidJson]: put { } around keys and their values
  2:18 ( (U+0028) is no bracket of JSON [InvalidJson]: write "["
  1:26 # (U+0023) begins no comment [InvalidJson]: begin the comment with //
  1:26 / (U+002F) begins no comment [InvalidJson]: begin the comment with //
  1:26 the comment that begins here is not closed [InvalidJson]: write */ where it ends
  1:17 U+00A0 (no-break space) is no white space of JSON [InvalidJson]: write a plain space
  1:17 U+200B (zero-width space) is no white space of JSON [InvalidJson]: remove it
  1:17 U+0001 (control character) is no white space of JSON [InvalidJson]: remove it
  1:17 the byte 0xE4, which is no UTF-8, stands outside of a text [InvalidJson]: remove it, and save the file as UTF-8
  2:1 a conflict of a merge is left here [InvalidJson]: keep one of its sides, and remove the lines that begin with <<<<<<<, ======= and >>>>>>>
  2:20 the "[" of "transitions" in line 2, column 18 is not closed before this "}" [InvalidJson]: write "]" before it, or where it is missing further up
  2:18 this "]" is one too many [InvalidJson]: remove it
  2:21 "]" closes the "{" of "data" in line 1, column 57 [InvalidJson]: write "}" instead
  2:21 this "]" is one too many [InvalidJson]: remove it
  2:21 "]" closes the "{" of "data" in line 1, column 57 [InvalidJson]: write "}" instead
  2:29 this "]" is one too many [InvalidJson]: remove it
  2:17 the text ends, and the "{" of "data" in line 1, column 57 is still open, and 4 more around it [InvalidJson]: write }}}]} at the end
  2:18 the text that begins here is not closed [InvalidJson]: write " where it ends
  2:22 a text ends with " (U+0022), and not with \xe2\x80\x9d (U+201D) [InvalidJson]: write "end" (esc)
  1:18 the "{" in line 1, column 16 is not closed before this one [InvalidJson]: write "}" before it, or where it is missing further up
  1:11 "{" stands where a key should, in the "{" in line 1, column 1 [InvalidJson]: write the key and ":" before it; a list of objects stands in [ ]
  1:1 the file looks like YAML [InvalidJson]: write it as JSON, which begins with "{"
  1:1 the file looks like YAML [InvalidJson]: write it as JSON, which begins with "{"
  1:1 JSON begins with "{", and not with const [InvalidJson]: remove what stands before the "{"
  1:1 JSON begins with "{", and not with configs [InvalidJson]: write it as JSON, which begins with "{"
  1:1 the file looks like XML or HTML [InvalidJson]: write it as JSON, which begins with "{"
  1:1 ``` is a mark of Markdown [InvalidJson]: remove the lines that begin with ```
  1:1 the file is empty [InvalidJson]: JSON begins with "{"
  1:1 the file has nothing but white space [InvalidJson]: JSON begins with "{"
  1:1 the file has nothing but comments [InvalidJson]: JSON begins with "{"

What is in another form is named by its first bytes.

  $ for code in UTF-16 UTF-16LE UTF-16BE UTF-32LE UTF-32BE; do
  >   tr '~' '\n' <<<"$good" | iconv -t $code >rules.json; vig check rules.json | head -1
  > done
  rules.json:1:1: error: the file is in UTF-16 (little endian), and not in UTF-8 [InvalidJson]
  rules.json:1:1: error: the file is in UTF-16 (little endian), and not in UTF-8 [InvalidJson]
  rules.json:1:1: error: the file is in UTF-16 (big endian), and not in UTF-8 [InvalidJson]
  rules.json:1:1: error: the file is in UTF-32 (little endian), and not in UTF-8 [InvalidJson]
  rules.json:1:1: error: the file is in UTF-32 (big endian), and not in UTF-8 [InvalidJson]
  $ tr '~' '\n' <<<"$good" | gzip >rules.json; vig check rules.json | head -1
  rules.json:1:1: error: the file is compressed [InvalidJson]

What stands behind the end is ignored by the library, and told. White space and comments are none of it.

  $ told <<'EOF'
  > s/$/ \t\r\n\/\/ the end\n\/* of it *\//
  > s/$/}/
  > s/\[\] }/[] } }/
  > s/$/done/
  > s/$/\xef\xbb\xbf/
  > s/$/\/* the end/
  > s/.*/&&/
  > s/.*/&=======\n&/
  > s/\[/[] }, &/
  > EOF
  4:1 the document ends before this, and what follows is ignored [trailing-text]: remove it, or the bracket further up that closes too early
  2:27 this "}" is one too many [InvalidJson]: remove it
  4:1 the document ends before this, and what follows is ignored [trailing-text]: remove it
  4:1 the document ends before this, and what follows is ignored: U+FEFF (byte order mark) [trailing-text]: remove it
  4:1 the document ends before this, and what follows is ignored [trailing-text]: remove it
  4:1 the document ends before this, and what follows is ignored: it is another one [trailing-text]: keep one of the two, or put all configurations into one "configs"
  4:1 the document ends before this, and what follows is ignored: it is left of a conflict of a merge [trailing-text]: keep one of its sides, and remove the other one and the marks
  1:18 the document ends before this, and what follows is ignored [trailing-text]: remove it, or the bracket further up that closes too early

The line around a place is cut between characters, and the mark stands below, however wide they are.

  $ wide=$(printf '日本é\xcc\x81%.0s' {1..30})
  $ printf '{"%s": “a”\xe2\x80\x8b, "%s": 1}' "$wide" "$wide" >rules.json; vig check rules.json
  rules.json:1:306: error: a text stands in " (U+0022), not in \xe2\x80\x9c (U+201C) [InvalidJson] (esc)
      \xe2\x80\xa6\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81": \xe2\x80\x9ca\xe2\x80\x9d\xe2\x80\x8b, "\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xe2\x80\xa6 (esc)
                            ^~~
      hint: write "a"
  rules.json:1:313: error: U+200B (zero-width space) is no white space of JSON [InvalidJson]
      \xe2\x80\xa6\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81": \xe2\x80\x9ca\xe2\x80\x9d\\u200b, "\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe6\x9c\xac\xc3\xa9\xcc\x81\xe6\x97\xa5\xe2\x80\xa6 (esc)
                            ^~~~~~
      hint: remove it
  2 errors in 1 file
  [1]
  $ printf '{"日é": 1 x}' >rules.json; vig check rules.json
  rules.json:1:13: error: x means nothing here [InvalidJson]
      {"\xe6\x97\xa5\xc3\xa9": 1 x} (esc)
                ^
      hint: remove it
  1 error in 1 file
  [1]

Where nothing may be ignored, comments and commas at the end are mistakes as well.

  $ for text in '{ "events": {}, }' '{ "events": /* none */ {} }' '{} {}' '{} // none' '{ "a": 1, "a": 1 }' '{ "x": 1, "events": 1, "a": 1 }' '{ "events": /* none */ {}, }'; do
  >   echo "$text" >catalogue.json; vig check rules.json --catalogue catalogue.json
  > done
  catalogue.json:1:15: error: the last comma has nothing behind it; remove it
  catalogue.json:1:13: error: a comment stands here, which is no JSON; remove it
  catalogue.json:1:4: error: the text ends before this: it is another one; keep one of the two
  catalogue.json:1:4: error: the text ends before this; remove it
  catalogue.json:1:11: error: Duplicate key: 'a'
  catalogue.json:1:8: error: unknown key "x"
  catalogue.json:1:21: error: events: expected an object, got a number
  catalogue.json:1:29: error: unknown key "a"
  catalogue.json:1:13: error: a comment stands here, which is no JSON; remove it
  catalogue.json:1:26: error: the last comma has nothing behind it; remove it
  [2]

A long line takes no longer than other texts of its size, whatever stands in it.

  $ blanks=$(printf '%200000s')
  $ long() { yes -- "$1" | head -n 50000 | tr -d '\n'; }
  $ for text in "$blanks[$(long '[],')x" "$blanks[1 $(long '<<<<<<< ')" "[1 $(long '--,')"; do
  >   printf '%s' "$text" >rules.json; timeout 20 vig check rules.json | tail -1
  > done
  1 error in 1 file
  1 error in 1 file
  4 errors in 1 file

A mark stays under its place behind characters of no width and of two, and where a line is cut; a quote inside of a key
is blamed.

  $ printf '{"a\xcc\x81\xe4\xb8\xad": 1, x: 2}' >rules.json; vig check rules.json | sed -n 2,3p
      {"a\xcc\x81\xe4\xb8\xad": 1, x: 2} (esc)
                 ^
  $ printf '{"%s": x}' "$(printf 'e\xcc\x81%.0s' {1..80})" >rules.json; vig check rules.json | sed -n 2,3p
      \xe2\x80\xa6e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81e\xcc\x81": x} (esc)
                       ^
  $ printf '{"a"b": 1}' >rules.json; vig check rules.json
  rules.json:1:4: error: the text ends at this quote, and goes on behind it [InvalidJson]
      {"a"b": 1}
         ^
      hint: write \" for a quote inside of a text, or a comma between two texts
  1 error in 1 file
  [1]

