#!/bin/bash
# The library exports what stands in its namespace alone: measures_exports.sh NM LIBRARY
set -euo pipefail

exported=$("$1" -D --defined-only --demangle "$2" | cut -d' ' -f3-)
grep -qF 'audio_measures::Compute(' <<<"$exported"
if grep -vE '^((vtable|typeinfo|typeinfo name) for )?audio_measures::' <<<"$exported" >&2; then
  echo "$2 exports the above as well" >&2
  exit 1
fi
