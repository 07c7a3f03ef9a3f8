#!/bin/bash
# How much a suite costs beside its cases: suite_load.sh AUDIO_BENCH [CASES]
# Runs that many cases (400) of about 100 ms of CPU each, and says how long that took beside
# 1.15 x (sum of their CPU) / processors + 1 s. Measure it on a machine that does nothing else.
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
start=$(date +%s.%N)
"$bench" suite suite.toml --out load >/dev/null
end=$(date +%s.%N)
python3 - "$(cpu load/results.json)" "$start" "$end" "$(nproc)" "$cases" <<'PYTHON'
import sys
cpu, start, end = (float(word) for word in sys.argv[1:4])
processors, cases = int(sys.argv[4]), int(sys.argv[5])
bound = 1.15 * cpu / processors + 1
print(f"{cases} cases, {cpu / cases * 1000:.0f} ms of CPU each: {end - start:.1f} s on {processors} "
      f"processors, bound {bound:.1f} s, {'within' if end - start <= bound else 'BEYOND'}")
PYTHON
