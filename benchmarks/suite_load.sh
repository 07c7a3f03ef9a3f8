#!/bin/bash
# How much a suite costs beside its cases: suite_load.sh AUDIO_BENCH [CASES]
# Runs that many cases (400) of about 100 ms of CPU each, and says how long that took beside
# 1.15 x (sum of their CPU) / processors + 1 s. Measure that on a machine that does nothing else. How
# much CPU the whole suite takes, guards and all, for that of its routines is told as well: what else
# the machine does leaves that alone.
set -euo pipefail

bench=$(realpath "$1")
cases=${2:-400}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# Noise at 44.1 kHz, as long as a case of that cost needs.
make_input() {
  python3 - "$1" <<'PYTHON'
import random, struct, sys, wave
random.seed(1)
with wave.open("music.wav", "wb") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(44100)
    count = int(float(sys.argv[1]) * 44100)
    file.writeframes(struct.pack(f"<{count}h", *(random.randint(-8000, 8000) for _ in range(count))))
PYTHON
}

write_suite() {
  printf '[[case]]\nid = "drc"\nroutine = "TestDrc"\nrepeat = %d\nin = { "music.wav" = "music.wav" }\n' "$1" >suite.toml
}

# The sum of the CPU seconds of all cases of a suite.
cpu() {
  python3 -c 'import json, sys; print(sum(c["cpu"] for c in json.load(open(sys.argv[1]))["cases"]))' "$1"
}

make_input 10
write_suite 5
"$bench" suite suite.toml -j1 --out trial >/dev/null
seconds=$(python3 -c "print(10 * 0.1 * 5 / $(cpu trial/results.json))")
make_input "$seconds"
write_suite "$cases"
TIMEFORMAT='%R %U %S'
{ time "$bench" suite suite.toml --out load >/dev/null; } 2>times
read -r elapsed user system <times
python3 - "$(cpu load/results.json)" "$elapsed" "$user" "$system" "$(nproc)" "$cases" <<'PYTHON'
import sys
cpu, elapsed, user, system = (float(word) for word in sys.argv[1:5])
processors, cases = int(sys.argv[5]), int(sys.argv[6])
bound = 1.15 * cpu / processors + 1
print(f"{cases} cases, {cpu / cases * 1000:.0f} ms of CPU each: {elapsed:.1f} s on {processors} "
      f"processors, bound {bound:.1f} s, {'within' if elapsed <= bound else 'BEYOND'}; "
      f"CPU of the suite {(user + system) / cpu:.2f} x that of its routines")
PYTHON
