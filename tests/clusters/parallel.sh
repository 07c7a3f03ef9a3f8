#!/bin/bash
# Sixteen shards of a suite by GNU parallel, on this machine and over hosts, leave what one run
# leaves, also when the process of one was killed: parallel.sh AUDIO_BENCH_PROBE
set -euo pipefail

probe=$(realpath "$1")
command -v parallel >/dev/null || { echo "skipped: GNU parallel is not installed" >&2; exit 77; }
# shellcheck source=tests/clusters/cluster.sh
source "$(dirname "$0")/cluster.sh"
export AUDIO_BENCH_CLUSTER_TEST=$folder
trap 'kill_all "AUDIO_BENCH_CLUSTER_TEST=$folder"; rm -rf "$folder"' EXIT
trap 'exit 1' INT TERM

# What a host does with a command that ssh brings.
write_ssh() {
  # shellcheck disable=SC2016
  printf '#!/bin/bash\n# ssh HOST -- COMMAND...\necho "$1" >>"%s/hosts_used"\nshift 2\nexec bash -c "$*"\n' \
    "$folder" >"$folder/ssh"
  chmod +x "$folder/ssh"
}

# run_shards FOLDER OPTION...: whose exit code is how many shards did not end well.
run_shards() {
  local dir=$1
  shift
  timeout 600 parallel --will-cite "$@" "$folder/bench suite cases.toml --shard {}/$shards -j 1 \
    --resume --out $dir/{}" ::: $(seq $shards) >"$folder/parallel.txt" 2>&1 </dev/null || true
}

merge() {
  "$probe" merge $(seq -f "$1/%g" $shards) --out "$2" >"$folder/merge.txt" 2>&1 || true
  [[ -e $2/results.json ]] || { cat "$folder/parallel.txt" "$folder/merge.txt" >&2; exit 1; }
}

# As a login gives them: parallel asks the shell of its user how to quote for a host.
export HOME=$folder SHELL=/bin/bash
cd "$folder"
write_suite
write_bench
write_ssh
run_whole

mkdir here there
run_shards here -j 2
merge here once
(($(not_run once) > 0)) || { say "the killed shard has left nothing to run"; exit 1; }
run_shards here -j 2
merge here all
same_as_whole all

rm -r killed
run_shards there --ssh "$folder/ssh" --sshlogin 1/one,1/two --workdir "$folder"
run_shards there --ssh "$folder/ssh" --sshlogin 1/one,1/two --workdir "$folder"
merge there everywhere
same_as_whole everywhere
for host in one two; do
  grep -qx "$host" hosts_used || { say "no shard ran on $host"; exit 1; }
done
