#!/usr/bin/env python3
"""Fails unless Android.bp in the project's folder builds the library from what CMake builds it in another (the arguments):
the sources, their flags, the headers' folder, and what it exports."""

import json
import pathlib
import re
import shlex
import sys

root, build = (pathlib.Path(each).resolve() for each in sys.argv[1:])
text = re.sub(r"//.*", "", (root / "Android.bp").read_text())
text = re.sub(r",(\s*[\]}])", r"\1", re.sub(r"(\w+):", r'"\1":', text))
modules = {module["name"]: module for module in map(json.loads, re.findall(r"^\w+ (\{.*?^\})", text, flags=re.M | re.S))}
defaults, manager, library = (modules[name] for name in ("libvig_defaults", "libvig_manager", "libvig"))


def sources(module):
    found = {str(path.relative_to(root)) for glob in module["srcs"] for path in root.glob(glob)}
    return found - set(module.get("exclude_srcs", []))


commands = {}  # by source
for each in json.loads((build / "compile_commands.json").read_text()):
    source = pathlib.Path(each["file"])
    if any(source.is_relative_to(root / folder) for folder in ("os", "rulesengine", "vig")):
        commands[str(source.relative_to(root))] = shlex.split(each["command"])
flags = commands["vig/DeliveryGate.cpp"]
cmake = {name: (root / name / "CMakeLists.txt").read_text() for name in (".", "vig")}
device = next(each for each in json.loads((root / "CMakePresets.json").read_text())["configurePresets"] if each["name"] == "device")
exporting = root / library["version_script"]

failed = False
for what, here, there in (
    ("sources", sources(library), set(commands) - sources(manager)),
    ("sources with exceptions", sources(manager), {name for name, each in commands.items() if "-fexceptions" in each}),
    ("flags of these", manager.get("cppflags"), ["-fexceptions"]),
    (
        "flags",
        set(defaults["cppflags"]) | {f"-std={defaults['cpp_std']}"},
        set(re.search(r"^add_compile_options\((.*)\)", cmake["."], flags=re.M)[1].split())
        | {flag for flag in flags if flag.startswith(("-fvisibility", "-std="))},
    ),
    # Without exceptions is how a device builds everything.
    ("flags of a device", {"-fno-exceptions"} | ({"-fno-rtti"} if not defaults["rtti"] else set()), set(device["cacheVariables"]["CMAKE_CXX_FLAGS"].split())),
    (
        "flags of the linker",
        set(library["ldflags"]) | {"-Wl,--no-undefined", "-Wl,--version-script"},
        set(re.findall(r"-Wl,[\w-]+", cmake["vig"])),
    ),
    ("folder of the headers", library["export_include_dirs"], ["." if f"-I{root}" in flags else ""]),
    (f"{exporting}, for which there is a new text in {build}/vig", exporting.read_text(), (build / "vig/libvig.map").read_text()),
):
    if here != there:
        failed = True
        print(f"{what}: Android.bp {here}\nCMake {there}")
sys.exit(failed)
