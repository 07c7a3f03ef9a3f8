#!/usr/bin/env python3
"""No source is compiled twice in a build: compiled_once.py COMPILE_COMMANDS"""
import collections
import json
import shlex
import sys

# Made on demand and of other objects than the build's: a header by itself, a fuzz target that is
# linked with the compiler's own driver.
ON_DEMAND = ("_verify_interface_header_sets.dir/", "_libfuzzer.dir/")

objects = collections.defaultdict(list)
with open(sys.argv[1], encoding="utf-8") as commands:
    for entry in json.load(commands):
        words = shlex.split(entry["command"])
        output = words[words.index("-o") + 1]
        if not any(name in output for name in ON_DEMAND):
            objects[entry["file"]].append(output)
if not objects:
    sys.exit(f"{sys.argv[1]} holds no command")
repeated = {source: outputs for source, outputs in objects.items() if len(outputs) > 1}
for source, outputs in sorted(repeated.items()):
    print(f"{source} is compiled {len(outputs)} times:", *outputs, sep="\n  ", file=sys.stderr)
sys.exit(1 if repeated else 0)
