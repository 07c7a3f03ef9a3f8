#!/bin/bash
# How much a suite costs beside its cases: suite_load.sh AUDIO_BENCH [CASES [ROUTINE INPUT]]
# Runs that many cases (400) of about 100 ms of CPU each of a routine that reads one WAVE file
# (TestDrc music.wav, one of the quickest), and says how long that took beside
# 1.15 x (sum of their CPU) / processors + 1 s. Measure that on a machine that does nothing else.
# The CPU of a case is that of its routine's process: staging, hashing, guards and figures come on
# top. How much that is, is told as the CPU of the whole suite for that of its routines, which what
# else the machine does hardly changes; and how long the suite took beside the same bound of the CPU
# of all its processes, which tells how well it keeps the processors busy.
set -euo pipefail

bench=$(realpath "$1")
cases=${2:-400}
routine=${3:-TestDrc}
input=${4:-music.wav}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# Noise at 44.1 kHz, as long as a case of that cost needs.
make_input() {
  python3 - "$1" <<'PYTHON'
import random, struct, sys, wave
random.seed(1)
with wave.open("noise.wav", "wb") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(44100)
    count = int(float(sys.argv[1]) * 44100)
    file.writeframes(struct.pack(f"<{count}h", *(random.randint(-8000, 8000) for _ in range(count))))
PYTHON
}

write_suite() {
  printf '[[case]]\nid = "case"\nroutine = "%s"\nrepeat = %d\nin = { "%s" = "noise.wav" }\n' \
    "$routine" "$1" "$input" >suite.toml
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
python3 - "$(cpu load/results.json)" "$elapsed" "$user" "$system" "$(nproc)" "$cases" "$routine" <<'PYTHON'
import sys
cpu, elapsed, user, system = (float(word) for word in sys.argv[1:5])
processors, cases, routine = int(sys.argv[5]), int(sys.argv[6]), sys.argv[7]
whole = user + system
print(f"{cases} cases of {routine}, {cpu / cases * 1000:.0f} ms of CPU each: {elapsed:.1f} s on "
      f"{processors} processors; CPU of the suite {whole / cpu:.2f} x that of its routines")
for name, seconds in (("the routines", cpu), ("all its processes", whole)):
    bound = 1.15 * seconds / processors + 1
    print(f"bound by the CPU of {name}: {bound:.1f} s, {'within' if elapsed <= bound else 'BEYOND'}")
PYTHON
