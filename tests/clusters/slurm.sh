#!/bin/bash
# Sixteen shards of a suite as a job array of Slurm, with a controller and two nodes of its own on
# this machine, leave what one run leaves, also when a node is lost and a shard's process is killed
# on the way: slurm.sh AUDIO_BENCH_PROBE SUITE.SBATCH
set -Eeuo pipefail

probe=$(realpath "$1") script=$(realpath "$2")
skip() { echo "skipped: $*" >&2; exit 77; }
for program in munged slurmctld slurmd sbatch squeue sinfo python3; do
  PATH=$PATH:/usr/sbin command -v $program >/dev/null || skip "$program is not installed"
done
export PATH=$PATH:/usr/sbin
# shellcheck source=tests/clusters/cluster.sh
source "$(dirname "$0")/cluster.sh"
export AUDIO_BENCH_CLUSTER_TEST=$folder SLURM_CONF=$folder/slurm.conf
trap 'kill_all "AUDIO_BENCH_CLUSTER_TEST=$folder"; rm -rf "$folder"' EXIT
trap 'exit 1' INT TERM

write_config() {
  local host ports
  host=$(hostname -s)
  mapfile -t ports < <(python3 -c '
import socket
all = [socket.socket() for _ in range(3)]
for each in all:
    each.bind(("127.0.0.1", 0))
    print(each.getsockname()[1])')
  cat >"$SLURM_CONF" <<CONFIG
ClusterName=bench
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=${ports[0]}
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$folder/munge.socket,cred_expire=20
CredType=cred/munge
SlurmctldPidFile=$folder/controller.pid
SlurmctldLogFile=$folder/controller.log
SlurmdPidFile=$folder/%n.pid
SlurmdLogFile=$folder/%n.log
SlurmdSpoolDir=$folder/%n
StateSaveLocation=$folder/state
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SlurmdParameters=config_overrides
SlurmdTimeout=10
MessageTimeout=90
TCPTimeout=60
ReturnToService=2
MailProg=/bin/true
MpiDefault=none
SwitchType=switch/none
NodeName=one NodeHostname=$host NodeAddr=127.0.0.1 Port=${ports[1]} CPUs=2
NodeName=two NodeHostname=$host NodeAddr=127.0.0.1 Port=${ports[2]} CPUs=2
PartitionName=all Nodes=one,two Default=YES State=UP
CONFIG
  mkdir -p "$folder/state" "$folder/one" "$folder/two"
}

# node NAME: with a word in its environment by which all of it can be found.
node() { AUDIO_BENCH_CLUSTER_NODE=$1 slurmd -D -N "$1" </dev/null >"$folder/$1.out" 2>&1 & }

nodes_idle() { [[ $(timeout 60 sinfo -h -N -o %T | sort -u) == idle ]]; }

start() {
  (umask 077 && head -c 1024 /dev/urandom >"$folder/munge.key")
  munged --force --socket="$folder/munge.socket" --key-file="$folder/munge.key" \
    --pid-file="$folder/munge.pid" --log-file="$folder/munge.log" \
    --seed-file="$folder/munge.seed" </dev/null >"$folder/munge.out" 2>&1 ||
    skip "munged does not start: $(tail -1 "$folder/munge.out")"
  local try
  for try in 1 2 3; do
    write_config
    slurmctld -D </dev/null >"$folder/controller.out" 2>&1 &
    node one
    node two
    until_true 60 nodes_idle && return
    kill_all "SLURM_CONF=$SLURM_CONF"
  done
  skip "Slurm does not start here ($try times): $(tail -q -n 2 "$folder"/*.out "$folder"/*.log)"
}

# The node is gone from one moment to the next, with what runs on it.
lose_node() {
  mapfile -t on_it < <(processes_of "AUDIO_BENCH_CLUSTER_NODE=$1"; processes_of "SLURMD_NODENAME=$1")
  kill -KILL "${on_it[@]}" 2>/dev/null || true
  kill_all "AUDIO_BENCH_CLUSTER_NODE=$1"
}

queue_empty() { [[ -z $(timeout 60 squeue -h 2>&1) ]]; }

# Leaves the number of the last job in $last.
submit() {
  local said
  said=$(cd "$folder" && AUDIO_BENCH=$folder/bench "$script" $shards "$folder/results" cases.toml)
  [[ $said =~ ^"shards "[0-9]+", results "([0-9]+)": $folder/results/all"$ ]] ||
    { say "suite.sbatch says: $said"; exit 1; }
  last=${BASH_REMATCH[1]}
}

# ended_with CODE: so did the last job.
ended_with() {
  local job
  job=$(timeout 60 scontrol -o show job "$last")
  [[ " $job " == *" ExitCode=$1:0 "* ]] || { say "not with $1: $job"; exit 1; }
}

# The results were compared, and are the same.
compared() {
  python3 - "$folder/results/compare.json" <<'PYTHON'
import json, sys
verdict = json.load(open(sys.argv[1]))["verdict"]
assert verdict == "same", verdict
PYTHON
}

# Something ran in this folder, and has taken all of it along.
was_scratch() {
  [[ $(stat -c %Y "$1") -gt $(date -d "$long_ago" +%s) ]] || { say "$1 was not used"; exit 1; }
  [[ -z $(ls -A "$1") ]] || { say "$1 is not empty"; exit 1; }
}

explain() {
  say "failed: $BASH_COMMAND"
  tail -q -n 5 "$folder"/*.out "$folder"/*.log "$folder"/results/logs/* >&2 || true
}

write_suite
write_bench
run_whole
start
trap explain ERR

submit
until_true 200 test -e "$folder/held/shard"
lose_node two
until_true 400 queue_empty
(($(not_run "$folder/results/all") > 0)) || { say "the killed shard has left nothing to run"; exit 1; }
ended_with 4
[[ ! -e $folder/results/compare.json ]] || { say "compared with nothing"; exit 1; }

long_ago='2001-02-03 04:05:06 UTC'
mkdir "$folder/scratch"
touch -d "$long_ago" "$folder/scratch"
AUDIO_BENCH_SCRATCH=$folder/scratch AUDIO_BENCH_AGAINST=$folder/whole submit
until_true 200 queue_empty
same_as_whole "$folder/results/all"
was_scratch "$folder/scratch"
compared
# Of the comparison: that of the suite, in which routines crash, is another one.
ended_with 0
