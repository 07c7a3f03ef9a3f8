#!/bin/bash
# How much a suite costs beside its cases: suite_load.sh AUDIO_BENCH [CASES [ROUTINE INPUT]...]
# Runs that many cases (400) of about 100 ms of CPU each of routines that read one WAVE file, and
# says for each how long that took beside 1.15 x (sum of their CPU) / processors + 1 s. Measure that
# on a machine that does nothing else.
# The CPU of a case is that of its routine's process: staging, hashing, guards and figures come on
# top, by the case and by the second of audio, so that they are most beside a routine that needs
# little for a second. Without routines there are three: one of the quickest, one in between, and
# the slowest. How much comes on top is told as the CPU of the whole suite for that of its routines,
# which what else the machine does hardly changes; and how long the suite took beside the same bound
# of the CPU of all its processes, which tells how well it keeps the processors busy.
set -euo pipefail

bench=$(realpath "$1")
cases=${2:-400}
routines=("${@:3}")
((${#routines[@]} > 0)) || routines=(
  TestDrc music.wav
  TestEqReverb voice_record.wav
  TestReverbPreset lumo.wav)
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

# Of so many cases of a routine with its input.
write_suite() {
  printf '[[case]]\nid = "case"\nroutine = "%s"\nrepeat = %d\nin = { "%s" = "noise.wav" }\n' \
    "$2" "$1" "$3" >suite.toml
}

# The sum of the CPU seconds of all cases of a suite.
cpu() {
  python3 -c 'import json, sys; print(sum(c["cpu"] for c in json.load(open(sys.argv[1]))["cases"]))' "$1"
}

measure() {
  local seconds elapsed user system
  rm -rf trial load
  make_input 10
  write_suite 5 "$1" "$2"
  "$bench" suite suite.toml -j1 --out trial >/dev/null
  seconds=$(python3 -c "print(10 * 0.1 * 5 / $(cpu trial/results.json))")
  make_input "$seconds"
  write_suite "$cases" "$1" "$2"
  { time "$bench" suite suite.toml --out load >/dev/null; } 2>times.txt
  read -r elapsed user system <times.txt
  say "$(cpu load/results.json)" "$elapsed" "$user" "$system" "$(nproc)" "$cases" "$1" "$seconds"
}

say() {
  python3 - "$@" <<'PYTHON'
import sys
cpu, elapsed, user, system = (float(word) for word in sys.argv[1:5])
processors, cases, routine = int(sys.argv[5]), int(sys.argv[6]), sys.argv[7]
seconds = float(sys.argv[8])
whole = user + system
print(f"{cases} cases of {routine} on {seconds:.1f} s, {cpu / cases * 1000:.0f} ms of CPU each: "
      f"{elapsed:.1f} s on {processors} processors; CPU of the suite {whole / cpu:.2f} x that of its "
      f"routines, {(whole - cpu) / cases * 1000:.0f} ms more a case")
for name, seconds in (("the routines", cpu), ("all its processes", whole)):
    bound = 1.15 * seconds / processors + 1
    print(f"bound by the CPU of {name}: {bound:.1f} s, {'within' if elapsed <= bound else 'BEYOND'}")
PYTHON
}

TIMEFORMAT='%R %U %S'
for ((i = 0; i < ${#routines[@]}; i += 2)); do
  measure "${routines[i]}" "${routines[i + 1]}"
done
