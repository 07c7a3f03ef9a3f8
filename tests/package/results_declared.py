#!/usr/bin/env python3
"""Every line with a number that a routine prints, logs or writes has a figure in the catalogue:
results_declared.py PROJECT_FOLDER"""
import pathlib
import re
import sys

core = pathlib.Path(sys.argv[1]) / "audio_engine/core"
# Tables, whose cells are declared one by one, and a line whose count another line gives.
TABLES = {"%f ", "%s\\t\\t%04f\\t\\t%04f\\t\\t%04f\\t\\t%04f\\t\\t%04f\\t\\t%04f\\n"}
COUNTED = {"output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\\n"}

declared = (core / "catalogue/results.cc").read_text()
forms = {re.sub(r"[#?]", "*", form) for form in re.findall(r'"((?:[^"\\]|\\.)*)"', declared)}
call = re.compile(r'(?:OutputDebugInfo|f?printf|Print)\(\s*(?:\w+,\s*)?((?:"(?:[^"\\]|\\.)*"\s*)+)')
missing, found = [], 0
for source in sorted((core / "bench").rglob("*.cc")):
    for match in call.finditer(source.read_text()):
        text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', match[1]))
        if not re.search(r"%\w*[dufi]", text) or text in TABLES | COUNTED:
            continue
        found += 1
        if re.sub(r"%\d*[dufi]", "*", text).removesuffix("\\n") not in forms:
            missing.append(f"{source}: \"{text}\" has no figure in catalogue/results.cc")
if found < 20:
    missing.append(f"only {found} lines found in the routines")
print("\n".join(missing), file=sys.stderr, end="\n" if missing else "")
sys.exit(bool(missing))
