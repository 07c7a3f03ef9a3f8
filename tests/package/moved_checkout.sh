#!/bin/bash
# A checkout configures without the packages of the tests, and again after it was moved together
# with its build folder: moved_checkout.sh CMAKE COMPILER PROJECT_FOLDER BUILD_FOLDER SCRATCH_FOLDER
set -euo pipefail
trap 'echo "failed: $BASH_COMMAND" >&2' ERR

cmake=$1 compiler=$2 project=$3 outer=$4 scratch=$5
rm -rf "$scratch"
mkdir -p "$scratch/first"
PATH=$(dirname "$cmake"):$PATH
(cd "$project" && tar -cf - --exclude=./build --exclude=./.git .) | tar -xf - -C "$scratch/first"
"$project/tests/package/keep_packages.sh" "$outer" "$scratch/first/build/release"

# The recipe of the README, on a machine without the packages of the tests.
cd "$scratch/first"
cmake --preset release -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON >log
grep -q 'Tests: left out' log
cmake --build build/release --target wave >log

mv "$scratch/first" "$scratch/moved"
cd "$scratch/moved"
scripts/configure --once release -DCMAKE_CXX_COMPILER="$compiler" -DBUILD_TESTING=OFF >log 2>&1
cmake --build build/release --target wave >log

# Where nothing has moved there is nothing to do.
before=$(stat -c %y build/release/build.ninja)
scripts/configure --once release
[[ $(stat -c %y build/release/build.ninja) == "$before" ]]
