#!/usr/bin/python3
"""Says of each line of JSON in the standard input whether the schema in the file named accepts it: 1 or 0, a line each."""

import json
import pathlib
import sys

import fastjsonschema

path = pathlib.Path(sys.argv[1]).resolve()
# A schema that this one refers to is beside it.
accept = fastjsonschema.compile({**json.loads(path.read_text()), "$id": path.as_uri()})
for line in sys.stdin:
    try:
        accept(json.loads(line))
        print(1)
    except fastjsonschema.JsonSchemaValueException:
        print(0)
