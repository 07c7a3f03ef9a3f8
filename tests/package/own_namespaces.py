#!/usr/bin/env python3
"""Own helpers stand in a namespace: own_namespaces.py PROJECT NM OBJECTS

Without one they have names that a library, or somebody else's engine, may have as well. Outside of
namespaces are what engine_api declares, the routines and the callback objects. OBJECTS is a file
that lists the objects of bench, engine and host.
"""
import pathlib
import re
import subprocess
import sys

NAMESPACES = {"audio_measures", "bench", "declared", "desktop", "harness", "host", "statistics",
              "wave"}
LIBRARIES = {"__gnu_cxx", "CLI", "hwy", "nlohmann", "pugi", "soundtouch", "toml", "webrtc"}
CALLBACK = re.compile(r"^class (\w+) : public I\w+Notify \{", re.M)
FUNCTION = re.compile(r"^(?:ROUTINE|HELPER)\([^,]+, (\w+)|^__attribute__.* (\w+)\(", re.M)
# A type, a template, a constant or an alias at the start of a line.
DEFINITION = re.compile(r"(class|struct|union|enum|template|inline|constexpr|using)\b.*[^;]$")
# The first name of a mangled one: of its namespace where it has one, otherwise its own.
MANGLED = re.compile(r"_Z(?:T[VTIS]|GV|Thn?\d+_)?Z?(?:N[rVK]*[RO]?)?(\d+)(\w+)")


def outside(text):
    """The lines of a header that are in no namespace."""
    depth = 0
    for line in text.splitlines():
        depth += line.startswith("namespace") - line.startswith("}  // namespace")
        if depth == 0:
            yield line


core = pathlib.Path(sys.argv[1], "audio_engine/core")
known = NAMESPACES | LIBRARIES
for header in core.glob("engine_api/*/*.h"):
    known.update(re.findall(r"\w+", re.sub("//.*", "", header.read_text(encoding="utf-8"))))
failed = []
own = [*core.glob("harness/*.h"), *core.glob("bench/*/*.h"), *core.glob("catalogue/*.h"),
       *core.glob("../desktop/**/*.h"), *core.glob("../wave/*.h"), *core.glob("../../host/**/*.h"),
       *core.glob("../../measures/**/*.h")]
for header in own:
    text = header.read_text(encoding="utf-8")
    known.update(CALLBACK.findall(text))
    known.update(name for names in FUNCTION.findall(text) for name in names if name)
    failed += [f"{header}: {line}" for line in outside(text)
               if DEFINITION.match(line) and not CALLBACK.match(line)]

objects = pathlib.Path(sys.argv[3]).read_text(encoding="utf-8").split("\n")
listing = subprocess.run([sys.argv[2], "--defined-only", "--extern-only", "--format=posix",
                          *filter(None, objects)], check=True, capture_output=True, text=True)
for symbol in sorted({line.split()[0] for line in listing.stdout.splitlines() if line}):
    if found := MANGLED.match(symbol):
        if found[2][:int(found[1])] not in known:
            failed.append(f"{symbol} is in no namespace")
if not own or "_Z11RunTestCasev" not in listing.stdout:
    failed.append("neither headers nor the entry were found")
print(*failed, sep="\n", file=sys.stderr)
sys.exit(1 if failed else 0)
