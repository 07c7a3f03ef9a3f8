#!/bin/bash
# Includes point one way: layering.sh PROJECT_FOLDER
#   host -> harness <- bench, and both of these -> engine_api <- an engine
set -euo pipefail

cd "$1"
failed=0

# allow FOLDER PATTERN: every #include in FOLDER matches the extended regular expression.
allow() {
  local includes
  includes=$(grep -rnE --include='*.h' --include='*.cc' '^[[:space:]]*#[[:space:]]*include' "$1")
  if grep -vE "include[[:space:]]*($2)[[:space:]]*(//.*)?\$" <<<"$includes" >&2; then
    echo "  ^ not for $1 to include" >&2
    failed=1
  fi
}

standard='<[a-z_0-9]+>'
library='<[^>]+>'
beside='"[a-z_0-9]+\.h"'  # In the folder of the file itself.

allow audio_engine/core/engine_api "$standard|\"engine_api/[a-z_0-9]+\.h\""
allow audio_engine/core/harness "$library|\"(engine_api|harness)/[a-z_0-9]+\.h\""
allow audio_engine/core/bench "$library|\"(engine_api|harness|bench/[a-z]+)/[a-z_0-9]+\.h\""
allow audio_engine/desktop "$library|$beside|\"(engine_api|desktop/[a-z]+)/[a-z_0-9]+\.h\""
allow host "$library|$beside|\"harness/[a-z_0-9]+\.h\""
allow tests/fake_engine "$library|\"(engine_api|fake_engine)/[a-z_0-9]+\.h\""

# Angle brackets are for the headers of others.
if grep -rnE --include='*.h' --include='*.cc' \
  'include[[:space:]]*<(engine_api|harness|bench|desktop|host|fake_engine)/' \
  audio_engine host tests >&2; then failed=1; fi
exit $failed
