#!/bin/bash
# How often the guards speak up where nothing is wrong: each WAVE file of a folder beside itself, and
# beside what sound processors and codecs make of it. One line for each treatment.
#
# usage: guard_alarms.sh BUILD FOLDER [TREATMENT...]
# BUILD: a build with AUDIO_TESTER_BENCHMARKS. Needs ffmpeg. Returns 1 when a guard fails.
set -eu

build=$(realpath "${1:?usage: guard_alarms.sh BUILD FOLDER [TREATMENT...]}")
folder=$(realpath "${2:?usage: guard_alarms.sh BUILD FOLDER [TREATMENT...]}")
shift 2
if (($# == 0)); then
  set -- untouched gain rate_8k rate_44k rate_48k stereo delay compressor limiter equalizer treble \
    highpass echo denoise mp3_64k mp3_24k opus_32k opus_8k vorbis
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
quiet=(ffmpeg -nostdin -v error -y)

# filtered FILE FILTER; coded FILE ENDING OPTION...: the result is in $work/out.wav.
filtered() { "${quiet[@]}" -i "$1" -af "$2" "$work/out.wav"; }
coded() {
  local file=$1 coded=$work/coded.$2
  shift 2
  "${quiet[@]}" -i "$file" "$@" "$coded"
  "${quiet[@]}" -i "$coded" "$work/out.wav"
}

# What raises the level leaves room for it first: clipping is no false alarm.
treat() {
  case $2 in
    untouched) cp "$1" "$work/out.wav" ;;
    gain) filtered "$1" volume=-6dB ;;
    rate_8k) "${quiet[@]}" -i "$1" -ar 8000 "$work/out.wav" ;;
    rate_44k) "${quiet[@]}" -i "$1" -ar 44100 "$work/out.wav" ;;
    rate_48k) "${quiet[@]}" -i "$1" -ar 48000 "$work/out.wav" ;;
    stereo) "${quiet[@]}" -i "$1" -ac 2 "$work/out.wav" ;;
    delay) filtered "$1" adelay=130:all=1 ;;
    compressor) filtered "$1" volume=-6dB,acompressor=threshold=0.05:ratio=4:makeup=1.5 ;;
    limiter) filtered "$1" alimiter=limit=0.3:level=false ;;
    equalizer) filtered "$1" volume=-9dB,equalizer=f=1000:t=q:w=1:g=8,equalizer=f=200:t=q:w=1:g=-8 ;;
    treble) filtered "$1" volume=-9dB,treble=g=9:f=2500 ;;
    highpass) filtered "$1" volume=-3dB,highpass=f=150 ;;
    echo) filtered "$1" aecho=0.5:0.6:120:0.5 ;;
    denoise) filtered "$1" afftdn ;;
    mp3_64k) coded "$1" mp3 -b:a 64k ;;
    mp3_24k) coded "$1" mp3 -b:a 24k -ac 1 ;;
    opus_32k) coded "$1" opus -c:a libopus -b:a 32k ;;
    opus_8k) coded "$1" opus -c:a libopus -b:a 8k -application voip ;;
    vorbis) coded "$1" ogg -c:a libvorbis -q:a 1 ;;
    *) echo "guard_alarms: no such treatment: $2" >&2; exit 2 ;;
  esac
}

failed=0
for treatment; do
  pairs=()
  while IFS= read -r file; do
    treat "$file" "$treatment"
    made=$work/$treatment.${#pairs[@]}.wav
    mv "$work/out.wav" "$made"
    pairs+=("$file" "$made")
  done < <(find "$folder" -name '*.wav' | sort)
  "$build/benchmarks/guard_pairs" "${pairs[@]}" >"$work/said" || failed=1
  grep FAILS "$work/said" >&2 || true
  hit=$(sed -nE 's/^[^:]*: (FAILS|warns) ([a-z_]+) at .*/\1 \2/p' "$work/said" | sort | uniq -c |
    tr -s ' \n' ' ,')
  echo "$treatment: $(tail -n 1 "$work/said");${hit:- nothing}"
  rm -f "$work/$treatment".*.wav
done
exit $failed
