#!/bin/bash
# A user's first suite is all green: demo_suite.sh AUDIO_BENCH SCRATCH_FOLDER
# Of the catalogue on its demo recordings these run without devices and without the long corpora.
set -euo pipefail

bench=$1 scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"
failed=0
for choice in "--group effects" "TestZU*" "Test*Aec"; do
  read -ra words <<<"$choice"
  if ! "$bench" suite "${words[@]}" --strict >said 2>&1; then
    grep -vE '^(pass|skip) ' said >&2
    failed=1
  fi
done
exit $failed
