#!/bin/bash
# What the tests of clusters have in common: a suite of quick cases, what one run leaves of it, and
# the comparison with what many have left. Sourced, with the probe program in $probe.

folder=$(mktemp -d)
# shellcheck disable=SC2034
shards=16

say() { echo "$*" >&2; }

# until_true SECONDS COMMAND...: waits for that; the time is only there to end a test that hangs.
until_true() {
  local end=$((SECONDS + $1))
  shift
  until "$@" >/dev/null 2>&1; do
    ((SECONDS < end)) || { say "waited in vain for: $*"; return 1; }
    sleep 0.1
  done
}

# The processes that were started with this text in their environment, and those that these have.
processes_of() {
  local each
  for each in /proc/[0-9]*; do
    [[ ${each#/proc/} != "$$" && ${each#/proc/} != "$BASHPID" ]] || continue
    if tr '\0' '\n' <"$each/environ" 2>/dev/null | grep -qxF -- "$1"; then echo "${each#/proc/}"; fi
  done 2>/dev/null
}

# kill_all TEXT: ends them, and what they start meanwhile.
kill_all() {
  local processes round
  for round in 1 2 3 4 5; do
    mapfile -t processes < <(processes_of "$1")
    ((${#processes[@]} > 0)) || return 0
    kill -KILL "${processes[@]}" 2>/dev/null || true
    sleep 0.1
  done
  say "round $round: ${processes[*]} are still there"
}

# Passes, warnings, failures, crashes, known failures, and cases that read what others leave.
write_suite() {
  python3 - "$folder/in.wav" <<'PYTHON'
import random, struct, sys, wave
random.seed(1)
with wave.open(sys.argv[1], "wb") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(8000)
    file.writeframes(struct.pack("<8000h", *(random.randint(-8000, 8000) for _ in range(8000))))
PYTHON
  cat >"$folder/cases.toml" <<'TOML'
[[case]]
id = "copy-{n}"
routine = "Copy"
arguments = ["in.pcm", "out.pcm"]
each.n = [NUMBERS]
in = { "in.pcm" = "in.wav" }
tags = ["quick"]

[[case]]
id = "again-{n}"
routine = "Copy"
arguments = ["out.pcm", "again.pcm"]
each.n = ["1", "2", "3", "4", "5", "6", "7", "8"]
after = ["copy-1"]

[[case]]
id = "loud-{n}"
routine = "WriteLoud"
each.n = ["1", "2", "3", "4", "5", "6", "7", "8"]

[[case]]
id = "crash-{n}"
routine = "Crash"
each.n = ["1", "2", "3", "4"]

[[case]]
id = "empty-{n}"
routine = "WriteEmpty"
each.n = ["1", "2", "3", "4"]
known = "leaves nothing yet"
TOML
  local numbers
  numbers=$(seq -s ', ' -f '"%g"' 1 48)
  sed -i "s/NUMBERS/$numbers/" "$folder/cases.toml"
}

# The program as the tasks run it. The process of shard 3 is killed once, after some of its cases
# and before the last; one task of a node that is to be stopped says so once, and stands still.
write_bench() {
  # shellcheck disable=SC2154
  cat >"$folder/bench" <<BENCH
#!/bin/bash
probe=$probe folder=$folder
BENCH
  cat >>"$folder/bench" <<'BENCH'
for ((i = 1; i < $#; ++i)); do
  [[ ${!i} != --out ]] || { next=$((i + 1)) out=${!next}; }
done
lines() { cat "$1" 2>/dev/null | wc -l; }
start_one() {
  "$probe" "$@" &
  suite=$!
  until (($(lines "$out/cases.jsonl") > 0)) || ! kill -0 $suite 2>/dev/null; do sleep 0.01; done
}
if [[ $* == *"--shard 3/"* ]] && mkdir "$folder/killed" 2>/dev/null; then
  while :; do
    start_one "$@"
    kill -KILL $suite
    wait $suite 2>/dev/null
    code=$?
    # Neither all of its cases nor none.
    if (($(lines "$out/cases.jsonl") + 1 < $(lines "$out/plan.jsonl"))); then
      touch "$folder/killed/done"
      exit $code
    fi
    rm -rf "$out"
  done
elif [[ ${SLURMD_NODENAME:-} == two && $* == *--shard* ]] && mkdir "$folder/held" 2>/dev/null; then
  start_one "$@"
  kill -STOP $suite
  # With this node the one to be killed may be lost, and then starts afresh.
  until [[ -e $folder/killed/done ]]; do sleep 0.01; done
  touch "$folder/held/shard"
  wait $suite
else
  # However quick one node is, the other one gets a task.
  [[ ${SLURMD_NODENAME:-} != one ]] || until [[ -e $folder/held ]]; do sleep 0.01; done
  exec "$probe" "$@"
fi
BENCH
  chmod +x "$folder/bench"
}

# What one run leaves, in $folder/whole.
run_whole() {
  local code=0
  (cd "$folder" && "$probe" suite cases.toml --out whole >whole.txt 2>&1) || code=$?
  ((code == 4)) || { say "the suite ends with $code"; cat "$folder/whole.txt" >&2; exit 1; }
}

# not_run DIR: how many cases have not run.
not_run() {
  python3 -c 'import json, sys; print(json.load(open(sys.argv[1]))["counts"]["not_run"])' \
    "$1/results.json"
}

# same_as_whole DIR: the results are those of one run, but for times and where the files are.
same_as_whole() {
  python3 - "$folder/whole" "$1" <<'PYTHON'
import csv, hashlib, json, os, re, sys

TIMES = ("elapsed", "cpu", "rtf", "rtf_cpu", "peak_memory")

def results(folder):
    found = json.load(open(folder + "/results.json"))
    for key in ("started", "command"):
        del found[key]
    for case in found["cases"]:
        for key in ("elapsed", "cpu", "rtf", "rtf_cpu"):
            del case[key]
        for figure in case["figures"]:
            if figure["name"] in TIMES:
                del figure["value"]
        for output in case["outputs"]:
            path = os.path.join(folder, output["path"])
            assert hashlib.sha256(open(path, "rb").read()).hexdigest() == output["sha256"], path
            output["path"] = output["path"].partition("cases/")[2]
        if case["report"]:
            report = json.load(open(os.path.join(folder, case["report"])))
            assert report["verdict"] in (case["verdict"], "warn"), case["id"]
        case["report"] = case["report"].partition("reports/")[2]
        # A crash says at which address.
        case["reason"] = re.sub("0x[0-9a-f]+", "0x", case["reason"])
    return found

def rows(folder):
    return [row[:6] if row[5] in TIMES else row for row in csv.reader(open(folder + "/results.csv"))]

one, many = (results(folder) for folder in sys.argv[1:3])
counts = {key: count for key, count in one["counts"].items() if count > 0}
assert counts == {"pass": 64, "error": 4, "known": 4}, counts
for first, second in zip(one["cases"], many["cases"]):
    assert first == second, f"\n{first}\nis in the shards\n{second}"
for key in one:
    assert one[key] == many[key], (key, one[key], many[key])
assert one.keys() == many.keys()
assert rows(sys.argv[1]) == rows(sys.argv[2])
PYTHON
}
