#!/bin/bash
# The list of the facilities and their functions is whole: facilities.sh NM ENGINE_CALLS UNIT_OBJECTS
# FAKE_OBJECTS DESKTOP_OBJECTS
# ENGINE_CALLS is the source that was made of the desktop engine; the others are files of object names.
set -euo pipefail

nm=$1 calls=$2 unit=$3 fake=$4 desktop=$5
failed=0
listed=$(sed -nE 's|^ *\{"([a-z_/]+)", "([^"]+)"\},$|\1 \2|p' "$calls" | sort)

# symbols KIND LIST: "object symbol" for each symbol of these kinds.
symbols() {
  mapfile -t objects <"$2"
  "$nm" -A --extern-only --format=posix "${objects[@]}" |
    awk -v kind="^[$1]\$" '$3 ~ kind { sub(/:$/, "", $1); print $1, $2 }'
}

# All of it is what another engine defines, too.
facilities=$(cut -d' ' -f1 <<<"$listed" | sort -u)
if (($(grep -c . <<<"$facilities") < 40)); then
  echo "only $(grep -c . <<<"$facilities") facilities" >&2
  failed=1
fi
names=$(cut -d' ' -f2 <<<"$listed" | sort -u)
if lacking=$(comm -23 <(echo "$names") <(symbols TW "$fake" | cut -d' ' -f2 | sort -u) | grep .); then
  printf 'listed, but not declared by the interface:\n%s\n' "$lacking" >&2
  failed=1
fi

# What the unit calls, and the desktop engine has.
called=$(comm -12 <(symbols U "$unit" | cut -d' ' -f2 | sort -u) \
  <(symbols T "$desktop" | cut -d' ' -f2 | sort -u))
if (($(grep -c . <<<"$called") < 100)); then
  echo "the unit calls only $(grep -c . <<<"$called") functions of the engine" >&2
  failed=1
fi
if unlisted=$(comm -23 <(echo "$called") <(echo "$names") | grep .); then
  printf 'called, but in no facility:\n%s\n' "$unlisted" >&2
  failed=1
fi
exit $failed
