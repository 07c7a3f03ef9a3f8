#!/bin/bash
# No source of the desktop engine needs another one that needs it: circles.sh NM OBJECTS
# PROJECT_FOLDER
# A source needs another one whose header it includes, or that defines what its object refers to. A
# header of engine_api counts as the header of the source that defines what it declares.
set -euo pipefail

nm=$1
objects=$2
cd "$3/audio_engine"

# "from to" for each include, without endings: files/file_sink files/file_writer.
includes() {
  grep -rEo --include='*.h' --include='*.cc' \
    '^[[:space:]]*#[[:space:]]*include "(desktop|engine_api)/[a-z_0-9/]+\.h"' desktop |
    sed -E 's|^desktop/([^:]*)\.[a-z]+:.*"([a-z_]+)/(.*)\.h"$|\1 \2 \3|' |
    while read -r from side to; do
      [[ $side == desktop || -e desktop/$to.cc ]] && echo "$from $to"
    done
}

# "D source symbol" for what an object defines, "U source symbol" for what it refers to. What is in
# a header as well (W, V) belongs to nobody.
symbols() {
  grep -o '.*/desktop_engine\.dir/.*\.o$' "$objects" | while read -r object; do
    source=${object##*/desktop_engine.dir/}
    "$nm" --format=posix "$object" | awk -v source="${source%.cc.o}" '
      $2 == "U" { print "U", source, $1 }
      $2 ~ /^[A-TX-Z]$/ { print "D", source, $1 }'
  done
}

references() {
  symbols | sort | awk '
    $1 == "D" { definer[$3] = $2 }
    $1 == "U" && $3 in definer { print $2, definer[$3] }'
}

needs=$({ includes; references; } | awk '$1 != $2' | sort -u)
# Three that are surely there, so that an empty list does not pass.
for known in 'live/microphone live/play_feed' 'files/file_sink files/wave_writer' \
  'platform/callback_scope platform/log'; do
  grep -qx "$known" <<<"$needs" || { echo "not found: $known" >&2; exit 1; }
done
if ! tsort <<<"$needs" >/dev/null; then
  echo "  ^ these sources of the desktop engine need each other" >&2
  exit 1
fi
