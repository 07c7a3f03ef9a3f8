#!/bin/bash
# The library exports its entry alone: exports.sh NM LIBRARY
set -euo pipefail

exported=$("$1" -D --defined-only --format=posix "$2" | cut -d' ' -f1,2)
if [[ $exported != "_Z11RunTestCasev T" ]]; then
  printf '%s exports, instead of _Z11RunTestCasev alone:\n%s\n' "$2" "$exported" >&2
  exit 1
fi
