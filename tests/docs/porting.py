#!/usr/bin/env python3
"""Fails unless docs/porting.md in the folder (the argument) lists what the headers of the minimal platform declare, each
in its place, and these are the headers that the library includes. The library is built on that platform, so what it has
come to need stands there first."""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])


def declared(header):
    """The public declarations, without bodies and without what the platform has for itself."""
    header = re.sub(r".*// of this platform alone.*|^#.*|//.*|__attribute__\(.*\)(?=;)", "", header, flags=re.M)
    header = re.sub(r"private:[^}]*", "", header)
    header = re.sub(r"(\)|const) \{(?:[^{}]|\{(?:[^{}]|\{[^{}]*\})*\})*\}", r"\1;", header)
    parts = (" ".join(part.split()) for part in re.split("[;{}]", header.replace("public:", "")))
    return [part.removesuffix(" = default") for part in parts if part and not part.startswith(("namespace", "enum"))]


def said(page):
    """The declarations that begin the rows of the page's tables, by header."""
    for section in re.split(r"^##", page, flags=re.M):
        if section.startswith("# `<"):
            yield section[4 : section.index(">")], re.findall(r"^\| `([^`]*)` \|", section, flags=re.M)


headers = root / "examples/minimal_platform/include"
there = {str(path.relative_to(headers)): declared(path.read_text()) for path in headers.rglob("*.h")}
page = dict(said((root / "docs/porting.md").read_text()))
sources = [path.read_text() for name in ("os", "rulesengine", "vig") for path in (root / name).rglob("*.[hc]*")]
included = set(re.findall(r"^#include <((?!fmt/|json/|sys/)\w+/.*)>", "\n".join(sources), flags=re.M))

failed = False
for name in sorted(included | set(there) | set(page)):
    if name not in included:
        print(f"the library does not include {name}")
    elif there.get(name) != page.get(name):
        print(f"{name}\n  declares {there.get(name)}\n  and docs/porting.md says {page.get(name)}")
    else:
        continue
    failed = True
sys.exit(failed)
