#!/bin/bash
# The document shows the catalogue as it is: catalogue_document.sh AUDIO_BENCH DOCUMENT
set -euo pipefail

if ! "$1" list --markdown | diff -u "$2" - >&2; then
  echo "Write the document anew: audio_bench list --markdown > docs/catalogue.md" >&2
  exit 1
fi
