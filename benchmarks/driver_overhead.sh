#!/bin/bash
# What the drivers that encode and decode files add to the codec libraries, in instructions: all that
# run in a driver beside those in the library's own calls, over one file per raw codec id.
#
# usage: driver_overhead.sh BUILD [ID...]
# BUILD: a build with AUDIO_TESTER_BENCHMARKS. Needs valgrind. Ends with 1 when a driver adds more
# than 5 %.
set -euo pipefail

build=$(realpath "${1:?usage: driver_overhead.sh BUILD [ID...]}")
shift
(($#)) || set -- 1 2 22 35 36 37 38 39 40 41 42 43 44 45 46 50 51 53 55
limit=5  # Percent.

# The functions of the libraries that codecs call; none of them calls another.
library='aacEncOpen|aacEncEncode|aacEncClose|aacDecoder_Open|aacDecoder_ConfigRaw|aacDecoder_Fill'
library+='|aacDecoder_DecodeFrame|aacDecoder_Close|opus_encoder_create|opus_encode|opus_encoder_destroy'
library+='|opus_decoder_create|opus_decode|opus_packet_get_nb_samples|opus_decoder_destroy'

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# overhead BENCHMARK DRIVER ID
overhead() {
  valgrind --tool=callgrind --callgrind-out-file="$work/out" --toggle-collect="$2(*" \
    "$build/benchmarks/audio_benchmarks" --benchmark_filter="^$1/$3/" --benchmark_min_time=0 \
    >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
  callgrind_annotate --inclusive=yes --threshold=100 --show-percs=no "$work/out" |
    awk -v name="$2($3)" -v library="^($library)$" -v limit="$limit" '
      { count = $1; gsub(",", "", count) }
      /PROGRAM TOTALS/ { all = count }
      match($0, /:[A-Za-z_0-9]+/) && substr($0, RSTART + 1, RLENGTH - 1) ~ library { inside += count }
      END {
        if (inside == 0) { print name ": the library was not called"; exit 1 }
        percent = 100 * (all - inside) / inside
        printf "%-17s %13.0f instructions, %13.0f in the library: %.2f %% more\n", name, all, inside, percent
        exit percent > limit
      }'
}

code=0
for id; do
  overhead EncodeFile TestZUEncode "$id" || code=1
  overhead DecodeFile TestZUDecode "$id" || code=1
done
exit $code
