#!/bin/bash
# Includes point one way: layering.sh PROJECT_FOLDER
#   host -> catalogue -> bench -> harness -> engine_api <- an engine; all may use wave
#   host/guards, host/measure, host/compare, host/controls, host/report_page, host/selftest -> measures,
#   which know nothing of either
set -euo pipefail

cd "$1"
failed=0

# allow FOLDER PATTERN [GREP_OPTION...]: every #include in FOLDER matches the regular expression.
allow() {
  local includes folder=$1 pattern=$2
  shift 2
  includes=$(grep -rnE "$@" --include='*.h' --include='*.cc' '^[[:space:]]*#[[:space:]]*include' \
    "$folder")
  if grep -vE "include[[:space:]]*($pattern)[[:space:]]*(//.*)?\$" <<<"$includes" >&2; then
    echo "  ^ not for $folder to include" >&2
    failed=1
  fi
}

standard='<[a-z_0-9]+>'
library='<[^>]+>'
name='[a-z_0-9]+\.h'
beside="\"$name\""  # In the folder of the file itself.
api="engine_api/[a-z]+"

allow audio_engine/core/engine_api "$standard|\"(\.\./[a-z]+/)?$name\""
allow audio_engine/wave "$standard|$beside"
allow measures "$library|\"audio_measures/$name\""
allow audio_engine/core/harness "$library|\"($api|harness)/$name\""
# The routines of a group stand by themselves. Codec quality is measured on what routines of others
# have resampled and gated.
others='"bench/(effects|enhancement)/routines\.h"'
for group in aec enhancement codec effects mixing; do
  of_others=$([[ $group != codec ]] || echo "|$others")
  allow "audio_engine/core/bench/$group" "$library|\"($api|harness|bench/$group)/$name\"$of_others"
done
allow audio_engine/core/catalogue "$library|\"($api|harness|catalogue|bench/[a-z]+)/$name\""
# Of the desktop engine, each folder may include itself and the ones named before it.
below='platform'
for folder in platform common devices dsp enhancement aec codec files live effects mixing; do
  below+="|$folder"
  allow "audio_engine/desktop/$folder" \
    "$library|<webrtc/[a-z/_]+>|$beside|\"($api|desktop/($below)(/[a-z]+)?|wave)/$name\""
done
# A door is a source that defines what a header of engine_api at the same group and name declares; all
# else of the desktop engine are workshops. A workshop includes no door's header that declares a
# class, neither for the class nor for what is declared beside it.
doors=$(cd audio_engine/core/engine_api && find . -name '*.h' -printf '%P\n' | sed 's/\.h$//')
while read -r door; do
  [[ -e audio_engine/desktop/$door.cc ]] || continue
  if grep -rn --include='*.h' --include='*.cc' "include \"engine_api/$door\\.h\"" \
    audio_engine/desktop | grep -vE "^audio_engine/desktop/$door\\.[a-z]+:" |
    grep -vf <(sed 's|.*|^audio_engine/desktop/&\\.cc:|' <<<"$doors") >&2; then
    echo "  ^ not for a workshop to include: a door makes what it declares" >&2
    failed=1
  fi
done < <(cd audio_engine/core/engine_api && grep -rlE --include='*.h' '^class ENGINE_API' * |
  sed 's/\.h$//')

# Of the host, each folder may include itself and the ones named before it; only one file of it
# knows the desktop engine.
allow host/statistics "$standard|\"statistics/$name\""
allow host/engine "$standard|\"(engine/engine_work|facilities/engine_calls|desktop/(devices/(audio_device|background)|files/refused_files|platform/log))\.h\""
below='base|engine|statistics'
for folder in base guards files engines recording tables process catalogue results report selftest measure demo run replay suite compare controls report_page cli; do
  below+="|$folder"
  core='harness/(format_name|noizeus_cases)'
  # What a file is; the rows are for those above.
  [[ $folder == base ]] || core+='|catalogue/files'
  # Only these know by which names the engine is called.
  [[ $folder != engines ]] || core+='|facilities/engine_calls|engine_api/common/interface_version'
  measures='audio_measures'
  [[ $folder =~ ^(guards|measure|suite|compare|controls|report_page|selftest)$ ]] || measures=wave
  allow "host/$folder" "$library|\"($below|wave|$measures)/$name\"|\"($core)\.h\""
done
allow audio_engine/facilities "$standard|\"facilities/$name\"|\"routine_uses\.inc\""
allow audio_engine/controls "$standard|\"($api|controls)/$name\""
allow tests/fake_engine "$library|\"($api|fake_engine|fake_engine/[a-z]+|wave)/$name\""

# Angle brackets are for the headers of others.
if grep -rnE --include='*.h' --include='*.cc' \
  'include[[:space:]]*<(engine_api|harness|bench|desktop|host|fake_engine|audio_measures)/' \
  audio_engine host measures tests >&2; then failed=1; fi
exit $failed
