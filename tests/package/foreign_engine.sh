#!/bin/bash
# The bench builds and runs on an engine library that is not the desktop engine:
# foreign_engine.sh CMAKE COMPILER NM ENGINE_SOURCES BUILD_FOLDER SCRATCH_FOLDER [CMAKE_ARGUMENT...]
set -euo pipefail
trap 'echo "failed: $BASH_COMMAND" >&2' ERR

cmake=$1 compiler=$2 nm=$3 sources=$4 outer=$5 scratch=$6
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$scratch/build
rm -rf "$scratch/prefix" "$scratch/workspace"
"$here/keep_packages.sh" "$outer" "$build"

"$cmake" -S "$here/foreign_engine" -B "$scratch/engine" -G Ninja \
  -DCMAKE_CXX_COMPILER="$compiler" -DENGINE_SOURCES="$sources" >&2
"$cmake" --build "$scratch/engine" >&2
library=$scratch/engine/libforeign_engine.so
"$cmake" -S "$here/../.." -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
  "${@:7}" -DBUILD_TESTING=OFF -DAUDIO_ENGINE_LIBRARY="$library" >&2
"$cmake" --build "$build" >&2
"$cmake" --install "$build" --prefix "$scratch/prefix" >/dev/null

# The desktop engine's libraries are not even looked for.
if grep -i mysofa "$build/CMakeCache.txt" >&2; then exit 1; fi
"$here/exports.sh" "$nm" "$build/audio_engine/libaudio_engine.so"

# 10 chunks of 441 frames and half a frame more: 441 frames of two floats come out for each chunk.
folder=$scratch/workspace/sdcard/ZUAudioDemo
mkdir -p "$folder"
head -c 17642 /dev/zero | tr '\0' 'x' >"$folder/44100_2.pcm"
for bench in "$build/host/audio_bench" "$scratch/prefix/bin/audio_bench"; do
  rm -f "$folder/44100_2_out_902.pcm"
  "$bench" run TestHRTF --work "$scratch/workspace" >&2
  bytes=$(stat -c %s "$folder/44100_2_out_902.pcm")
  if ((bytes != 35280)); then
    echo "$bench wrote $bytes bytes instead of 35280" >&2
    exit 1
  fi
done
