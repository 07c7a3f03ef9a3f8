#!/bin/bash
# The commands of docs/howto.md do what it says: howto.sh AUDIO_BENCH DOCUMENT SCRATCH_FOLDER [FOLDER]
# FOLDER holds the recordings that the page names; without one they are made of the demo.
set -euo pipefail

bench=$1 document=$2 scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch/bin" "$scratch/jobs" "$scratch/work"
ln -s "$bench" "$scratch/bin/audio_bench"
export PATH=$scratch/bin:$PATH PULSE_SERVER=unix:/nonexistent
failed=0

complain() {
  echo "$*" >&2
  failed=1
}

# from_demo FILE NAME: a recording of the demo, as FLAC.
from_demo() {
  ffmpeg -v error -y -i "$scratch/demo/$1" "$2.flac"
}

cd "$scratch/work"
if (($# > 3)); then
  cp -r "$4"/. .
else
  audio_bench demo --all --work "$scratch/demo" >/dev/null
  from_demo F/44100_2_new1.wav song
  from_demo voice_record.wav voice
  from_demo demo/near.wav mic
  from_demo demo/far.wav speaker
  from_demo ns_in.wav noisy
  mkdir songs
  for start in 1 2 3; do
    ffmpeg -v error -ss "$start" -t 2 -i song.flac "songs/$start.flac"
  done
  rm -r "$scratch/demo"
fi

# Each job is a block of its own.
awk -v folder="$scratch/jobs" '
  /^## / { number = $2 + 0 }
  /^```/ { on = $0 == "```sh"; next }
  on { print > (folder "/" number) }' "$document"
(($(find "$scratch/jobs" -type f | wc -l) == 10)) || complain "there are not ten jobs"

for number in {1..10}; do
  job=$scratch/jobs/$number
  commands=$(grep -cE '^(audio_bench|cat) ' "$job")
  ((commands <= 2)) || complain "job $number takes $commands commands"
  # A build without a codec skips what needs it.
  if ! bash -e "$job" >"$job.said" 2>&1; then
    grep -q '^skip ' "$job.said" || complain "job $number: $(tail -5 "$job.said")"
  fi
done

for file in heard.wav clean.wav codecs/results.csv codecs/cases/codec-50/out.wav.enc quiet.wav \
  checked/junit.xml table/results.csv; do
  [[ -s $file ]] || complain "$file is not there"
done
for name in songs/*; do
  name=${name#songs/}
  [[ -s folder/cases/${name%.*}/drc_out.wav ]] || complain "nothing was made of $name"
done
for said in '2 erle  .*[0-9]  dB' '4 noise_reduction .*[0-9]  dB' '6 result  tempo  ' '8 null device: no sound server'; do
  grep -q -- "${said#* }" "$scratch/jobs/${said%% *}.said" || complain "nowhere: ${said#* }"
done
exit $failed
