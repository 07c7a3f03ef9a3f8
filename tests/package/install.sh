#!/bin/bash
# What is installed serves programs that know nothing of this folder, wherever it is moved to:
# install.sh CMAKE COMPILER BUILD_FOLDER SCRATCH_FOLDER
set -euo pipefail
trap 'echo "failed: $BASH_COMMAND" >&2' ERR

cmake=$1 compiler=$2 build=$3 scratch=$4
rm -rf "$scratch"
mkdir -p "$scratch/elsewhere"
"$cmake" --install "$build" --prefix "$scratch/first" >/dev/null
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
cd "$scratch/elsewhere"

# Every header compiles by itself, by the name that a user includes.
(cd "$prefix/include" && find audio_engine audio_measures -name '*.h' | sort) >headers
grep -qxF audio_engine/engine_api/common/wav_reader.h headers
grep -qxF audio_measures/compute.h headers
while read -r header; do
  printf '#include <%s>\n' "$header" >header.cc
  "$compiler" -std=c++20 -fsyntax-only -Wall -Wextra -Werror -I"$prefix/include" header.cc
done <headers

# man and bash find what they look for.
export MANPATH=$prefix/share/man
grep -q '^\.TH AUDIO_BENCH 1 ' "$MANPATH/man1/audio_bench.1"
completion=$prefix/share/bash-completion/completions/audio_bench
"$(dirname "$0")/completion.sh" "$prefix/bin/audio_bench" "$completion"

# A suite as a job array.
bash -n "$prefix/share/audio_engine/slurm/suite.sbatch"
[[ -x $prefix/share/audio_engine/slurm/suite.sbatch ]]

# runs PROGRAM: it calls the entry of the installed library.
runs() {
  LD_LIBRARY_PATH=$prefix/lib "$1" 2>log
  for line in 'TestHrtf\.\.start' 'TestHrtf\.\.end'; do
    if ! grep -q "$line\$" log; then
      echo "the log of RunTestCase has no line $line:" >&2
      cat log >&2
      exit 1
    fi
  done
}

# measures PROGRAM: it has the installed library measure half of full scale.
measures() {
  local told
  told=$(LD_LIBRARY_PATH=$prefix/lib "$1")
  [[ $told == 'peak -6.02 dBFS' ]] || { echo "$1 says $told" >&2; exit 1; }
}

cat >consumer.cc <<'SOURCE'
#include <audio_engine/catalogue/run_test_case.h>
int main() { RunTestCase(); }
SOURCE
cat >listener.cc <<'SOURCE'
#include <audio_measures/compute.h>
#include <audio_measures/measure.h>

#include <cstdio>
#include <vector>

int main() {
  const std::vector<float> samples(48000, 0.5F);
  const std::vector<std::string_view> names = {"peak"};
  for (const auto& figure : audio_measures::Compute({.output = {48000, {samples}}}, names)) {
    std::printf("%s %.2f %s\n", figure.name.data(), figure.figure.value.value_or(0),
                audio_measures::FindMeasure(figure.name)->unit.data());
  }
}
SOURCE

# With pkg-config; the program asks for the library by the name of its interface's version.
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs audio_engine)"
"$compiler" consumer.cc -o consumer "${flags[@]}"
runs ./consumer
readelf -d consumer >dynamic
grep -qE 'NEEDED.*\[libaudio_engine\.so\.[0-9]+\]' dynamic
read -ra flags <<<"$(pkg-config --cflags --libs audio_measures)"
"$compiler" -std=c++20 listener.cc -o listener "${flags[@]}"
measures ./listener
readelf -d listener >dynamic
grep -qE 'NEEDED.*\[libaudio_measures\.so\.[0-9]+\]' dynamic

# With CMake; what an engine of one's own needs comes with it.
cat >CMakeLists.txt <<'PROJECT'
cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES CXX)
find_package(audio_engine 0.2 REQUIRED)
find_package(audio_measures 0.2 REQUIRED)
add_executable(listener listener.cc)
target_link_libraries(listener PRIVATE audio_measures::audio_measures)
add_executable(consumer consumer.cc)
target_link_libraries(consumer PRIVATE audio_engine::audio_engine)
add_library(my_engine OBJECT my_engine.cc)
target_compile_features(my_engine PRIVATE cxx_std_20)
target_link_libraries(my_engine PRIVATE audio_engine::engine_api)
PROJECT
cat >my_engine.cc <<'SOURCE'
#include <audio_engine/engine_api/platform/clock.h>
void SleepMs(int) {}
SOURCE
"$cmake" -S . -B build -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$prefix" >log
"$cmake" --build build >log
runs build/consumer
measures build/listener

"$prefix/bin/audio_bench" list >catalogue
grep -q TestHRTF catalogue
