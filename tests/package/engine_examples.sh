#!/bin/bash
# The engines of docs/examples build against what is installed, wherever that is moved to, and run:
# engine_examples.sh CMAKE COMPILER BUILD_FOLDER EXAMPLES SCRATCH_FOLDER
set -euo pipefail
trap 'echo "failed: $BASH_COMMAND" >&2' ERR

cmake=$1 compiler=$2 build=$3 examples=$4 scratch=$5
rm -rf "$scratch"
mkdir -p "$scratch/work"
"$cmake" --install "$build" --prefix "$scratch/first" >/dev/null
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
cd "$scratch/work"
bench=$prefix/bin/audio_bench

# answers LIBRARY FACILITY OUTPUT WORD...: the run passes, says who answered for what, and its output
# differs from that of the desktop engine.
answers() {
  local library=$1 facility=$2 output=$3
  shift 3
  "$bench" run "$@" >own
  mv "$output" own_output
  "$bench" run "$@" --engine "$library" >with_library
  grep -qxF "  engine  $library for $facility" with_library
  ! cmp -s "$output" own_output
}

for name in my_engine my_echo_canceller; do
  "$cmake" -S "$examples/$name" -B "$scratch/$name" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wconversion -Werror" >log
  "$cmake" --build "$scratch/$name" >>log || { cat log >&2; false; }
done
"$bench" demo --all >log
answers "$scratch/my_engine/libmy_engine.so" effects/drc bench_work/drc_out.wav TestDrc
answers "$scratch/my_echo_canceller/libmy_echo_canceller.so" aec/webrtc_aec bench_work/demo/out.wav \
  TestEchoDelayEstAndAEC demo/far.wav demo/near.wav demo/out.wav
