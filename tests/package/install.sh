#!/bin/bash
# What is installed serves a program that knows nothing of this folder:
# install.sh CMAKE COMPILER BUILD_FOLDER SCRATCH_FOLDER
set -euo pipefail
trap 'echo "failed: $BASH_COMMAND" >&2' ERR

cmake=$1 compiler=$2 build=$3 scratch=$4
rm -rf "$scratch"
mkdir -p "$scratch/elsewhere"
prefix=$scratch/prefix
"$cmake" --install "$build" --prefix "$prefix" >/dev/null

[[ -f $prefix/include/audio_engine/engine_api/common/wav_reader.h ]]

cd "$scratch/elsewhere"
cat >consumer.cc <<'SOURCE'
#include "harness/catalogue/run_test_case.h"
int main() { RunTestCase(); }
SOURCE
"$compiler" consumer.cc -o consumer -I"$prefix/include/audio_engine" \
  -L"$prefix/lib" -laudio_engine -Wl,-rpath,"$prefix/lib"
./consumer 2>log
for line in 'TestHrtf\.\.start' 'TestHrtf\.\.end'; do
  if ! grep -q "$line\$" log; then
    echo "the log of RunTestCase has no line $line:" >&2
    cat log >&2
    exit 1
  fi
done

"$prefix/bin/audio_bench" list >catalogue
grep -q TestHRTF catalogue
