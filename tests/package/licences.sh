#!/bin/bash
# Nothing is linked, by others neither, that may be used under the GPL alone: its terms and those of
# the AAC library do not go together. licences.sh BINARY
set -euo pipefail

gpl='^lib(aubio|avcodec|avfilter|avformat|faac|faad|fftw3|fftw3f|id3tag|mad|postproc|rubberband|x264|x265)[.-]'
linked=$(ldd "$1" | awk '/=>/ { print $1 }')
if [[ $linked != *libopus.so* ]]; then
  echo "$1 is not linked with what it is known to need" >&2
  exit 1
fi
if grep -E "$gpl" <<<"$linked" >&2; then
  echo "$1 is linked with the libraries above" >&2
  exit 1
fi
