#!/bin/bash
# The engine's C functions have names that a library it is linked with exports, too, for others of
# its own. Neither side may call the other's: own_symbols.sh NM BINARY
set -euo pipefail

nm=$1 binary=$2
names='^(WebRtcAec|WebRtcAgc|WebRtcVad|WebRtcSpl|AecMobile|Ns)_'
library=$(ldd "$binary" | awk '/libwebrtc_audio_processing/ { print $3 }')

# Without these the checks below could not fail.
defined() { "$nm" -D --defined-only --format=posix "$1" | cut -d' ' -f1 | sort -u; }
theirs=$(defined "$library" | grep -cE "$names" || true)
ours=$("$nm" --defined-only --format=posix "$binary" | grep -c '^audio_engine_WebRtc' || true)
if ((theirs == 0 || ours == 0)); then
  echo "$theirs such functions in the library, $ours in $binary" >&2
  exit 1
fi

# A call of ours that ends in the library.
if "$nm" -D --undefined-only --format=posix "$binary" | grep -E "$names" >&2; then
  echo "$binary calls the functions above in $library" >&2
  exit 1
fi
# A function of ours that the library would call in place of its own.
if comm -12 <(defined "$binary") <(defined "$library") | grep -E "$names" >&2; then
  echo "$binary offers the functions above to $library" >&2
  exit 1
fi
