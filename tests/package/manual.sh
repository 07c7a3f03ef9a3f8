#!/bin/bash
# The manual page is without a fault and knows all that --help does: manual.sh AUDIO_BENCH
set -euo pipefail

bench=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
"$bench" manual >audio_bench.1
groff -man -Tutf8 -ww -rLL=300n -P-cbou audio_bench.1 >page 2>warnings
failed=0

complain() {
  echo "$*" >&2
  failed=1
}

[[ ! -s warnings ]] || complain "groff: $(head -3 warnings)"
if command -v mandoc >/dev/null; then
  # Without a date the page is the same whenever it is made.
  mandoc -T lint audio_bench.1 2>&1 | grep -vE 'missing date|unusual order' >lint || true
  [[ ! -s lint ]] || complain "mandoc: $(head -3 lint)"
fi

# Each command with its options, in its own words.
mapfile -t commands < <("$bench" help |
  awk '/^Subcommands:/ { on = 1; next } on && NF == 0 { exit } on { print $1 }')
((${#commands[@]} > 8)) || complain "there are ${#commands[@]} commands"
for command in "${commands[@]}"; do
  "$bench" help "$command" >help
  usage=$(sed -n 's/^Usage: //p' help)
  section=$(awk -v "usage=   $usage" '
    /^[A-Z]|^   audio_bench/ { on = $0 == usage }
    on { print }' page)
  [[ -n $section ]] || complain "no section \"$usage\""
  while read -r option; do
    grep -qE -- "(^| )$option( |\$)" <<<"$section" || complain "$command: $option is not there"
  done < <(grep -oE -- '^  (-[a-z],)?--[a-z-]+' help | grep -oE -- '--[a-z-]+' | grep -vx -- --help)
done
for heading in NAME SYNOPSIS DESCRIPTION COMMANDS 'EXIT STATUS' ENVIRONMENT FILES EXAMPLES; do
  grep -qx "$heading" page || complain "no heading $heading"
done
exit $failed
