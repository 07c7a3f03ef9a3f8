#!/bin/bash
# What bash answers to a press of the tab key: completion.sh AUDIO_BENCH [SCRIPT]
# SCRIPT is the completion as it was installed; without it that of the program.
set -euo pipefail

bench=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
mkdir folder
touch song.flac song.wav calls.toml
if (($# > 1)); then
  # shellcheck source=/dev/null
  source "$2"
else
  source <("$bench" completion bash)
fi
failed=0

# answers WORD...: what may stand in the place of the last word, sorted, in one line.
answers() {
  COMP_WORDS=("$bench" "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _audio_bench "$bench" "${*: -1}" "${COMP_WORDS[$# - 1]}"
  printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | tr '\n' ' '
}

# expect ANSWERS WORD...
expect() {
  local expected=$1 got
  shift
  got=$(answers "$@")
  if [[ $got != "$expected " ]]; then
    echo "audio_bench $*: [$got] and not [$expected ]" >&2
    failed=1
  fi
}

commands=$("$bench" help | awk '/^Subcommands:/ { on = 1; next } on && NF == 0 { exit } on { print $1 }' |
  LC_ALL=C sort | paste -sd ' ')
[[ $commands == *describe*suite* ]]
expect "$commands" ''
expect 'demo describe' de
expect '--help --version' -
expect 'demo describe' help de
expect 'bash' completion ''
expect '' nothing ''
expect '' demo ''

expect 'TestReverb TestReverbPreset' run TestRev
expect 'TestReverb TestReverbPreset' list TestRev
expect 'TestReverb TestReverbPreset' describe TestRev
expect 'TestReverb TestReverbPreset' run --strict --timeout-s 5 TestRev
expect '' describe TestReverb ''
expect 'MeasureSpeechSNR' describe MeasureSp
expect '' run Measure

expect '--start --strict' run --st
expect '--start --strict' run TestReverb --st
expect '--report --resume' suite --r
expect '--scratch --shard --strict' suite --s
expect '--all' demo --work folder --a

expect 'always auto never' run --color ''
expect 'always auto' list --color a
expect 'always auto' list --color = a
expect 'always auto never' suite --color =
expect 'first mean' run --channels ''
expect '' run --timeout-s ''
expect 'aec codec effects enhancement harness mixing' list --group ''
expect 'effects enhancement' suite --group e

expect 'song.flac song.wav' run --in song
expect 'calls.toml folder song.flac song.wav' stage TestDrc --in ''
expect 'folder' suite --out ''
expect 'folder' merge ''
expect "calls.toml folder song.flac song.wav" measure ""
expect "si_sdr" measure song.wav --measure si_
expect 'calls.toml' suite call
expect 'folder' suite fold
expect 'TestVAD TestVADCodecMosByVADResult TestVADProcess TestVADProcessRefined' suite calls.toml TestVAD

expect '2 22' run TestZUCodecNew song.wav out.wav 2
expect '2 22' run TestZUCodecNew --strict song.wav --timeout-s 3 out.wav 2
expect '2 22' run TestMockVADMos song.wav 2
expect 'false true' run TestZUAec near.wav far.wav out.wav ''
expect 'true' run TestZUAec near.wav far.wav out.wav -- t
expect 'song.flac song.wav' run TestZUCodecNew so
exit $failed
