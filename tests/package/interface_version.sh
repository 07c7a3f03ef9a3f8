#!/bin/bash
# The version of the engine's interface is raised with it: interface_version.sh PROJECT_FOLDER RECORD
# RECORD holds a version, and the SHA-256 of all that the headers declared then.
set -euo pipefail

cd "$1/audio_engine/core/engine_api"
version=$(sed -nE 's/^#define AUDIO_ENGINE_INTERFACE ([0-9]+)$/\1/p' common/interface_version.h)
# Without comments, and without the macros that say the version.
declared=$(find . -name '*.h' ! -path './common/interface_version.h' | LC_ALL=C sort | while read -r header; do
  echo "== $header"
  sed -E 's|[[:space:]]*//.*||' "$header" | grep -v '^[[:space:]]*$'
done)
now="$version $(sha256sum <<<"$declared" | cut -d' ' -f1)"
if [[ $now != "$(<"$2")" ]]; then
  echo "What engine_api declares has changed. Raise AUDIO_ENGINE_INTERFACE in" >&2
  echo "common/interface_version.h when an engine that was built before does not fit any more, and" >&2
  echo "write into $2: $now" >&2
  exit 1
fi
