#!/bin/bash
# The names of all tests can be typed: test_names.sh CTEST BUILD_FOLDER
set -euo pipefail

names=$("$1" --test-dir "$2" -N | sed -n 's/^ *Test *#[0-9]*: //p')
[[ -n $names ]]
if LC_ALL=C grep -vxE '[A-Za-z0-9_./-]+' <<<"$names" >&2; then
  echo "  ^ not a name of letters, digits and ._/-" >&2
  exit 1
fi
