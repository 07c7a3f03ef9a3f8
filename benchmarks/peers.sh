#!/bin/bash
# The head-related rendering as a whole process beside public convolution programs on the same work:
# 16-bit stereo in, the left channel through the left ear's 512 taps and the right one through the
# right ear's, float stereo out. All run in turn; the figures are medians. "TestHRTF" is the
# routine's own process, as audio_bench reports it: the work that the peers do too. "audio_bench" is
# everything, the guards and measures over the finished output included.
#
# usage: peers.sh BUILD [SECONDS [RUNS]]
# BUILD: a build with AUDIO_TESTER_BENCHMARKS. Peers, where installed: ffmpeg, sox, fconvolver
# (Debian package jconvolver).
set -eu

build=$(realpath "${1:?usage: peers.sh BUILD [SECONDS [RUNS]]}")
seconds=${2:-600}
runs=${3:-5}
limit=1e-6  # Largest difference between two outputs, full scale at 1.

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

run_audio_bench() {
  "$build/host/audio_bench" run TestHRTF --work .
}

# What the report of audio_bench says of the routine, as the times of the other programs are kept.
routine_times() {
  awk '$2 == "TestHRTF" { line = $0 }
       function seconds(pattern) {
         match(line, pattern " [0-9.]+ m?s")
         split(substr(line, RSTART + length(pattern) + 1, RLENGTH), part, " ")
         return part[2] == "ms" ? part[1] / 1000 : part[1]
       }
       function kib() {
         match(line, /memory [0-9.]+ MB/)
         return substr(line, RSTART + 7) * 1000000 / 1024
       }
       END { print seconds("CPU"), 0, seconds("TestHRTF "), kib() }' audio_bench.log
}

# The filter doubles what it is given.
run_ffmpeg() {
  ffmpeg -v error -nostdin -y -f s16le -ar 44100 -ac 2 -i recording.pcm -i responses.wav \
    -lavfi '[0:a][1:a]afir=gtype=none:dry=0.5' -f f32le ffmpeg.raw
}

# One effect has one response for all channels: each channel goes through a sox of its own.
run_sox() {
  local raw='-t raw -r 44100 -e signed -b 16 -c 2 recording.pcm'
  sox -M "|sox $raw -p remix 1 fir left.txt" "|sox $raw -p remix 2 fir right.txt" \
    -t raw -e float -b 32 sox.raw
}

run_fconvolver() {
  fconvolver fconvolver.conf recording.wav fconvolver.wav
}

# Where each program leaves its output, and by how many frames it is ahead: sox takes away the delay
# of a symmetric response.
declare -A output=([audio_bench]=sdcard/ZUAudioDemo/44100_2_out_902.pcm [ffmpeg]=ffmpeg.raw
                   [sox]=sox.raw [fconvolver]=fconvolver.raw)
declare -A ahead=([ffmpeg]=0 [sox]=255 [fconvolver]=0)

"$build/benchmarks/write_peer_inputs" "$seconds"
mkdir -p sdcard/ZUAudioDemo
ln recording.pcm sdcard/ZUAudioDemo/44100_2.pcm
cat > fconvolver.conf <<'END'
/convolver/new 2 2 256 512
/impulse/read 1 1 1 0 0 0 1 responses.wav
/impulse/read 2 2 1 0 0 0 2 responses.wav
END

programs=(audio_bench)
for peer in ffmpeg sox fconvolver; do
  if command -v "$peer" > /dev/null; then
    programs+=("$peer")
  else
    echo "$peer is not installed: left out"
  fi
done

export -f run_audio_bench run_ffmpeg run_sox run_fconvolver
export build
for ((run = 1; run <= runs; ++run)); do
  for program in "${programs[@]}"; do
    /usr/bin/time -f '%U %S %e %M' -a -o "$program.times" \
      bash -c "run_$program" > "$program.log" 2>&1 || { cat "$program.log"; exit 1; }
    if [ "$program" = audio_bench ]; then routine_times >> TestHRTF.times; fi
  done
done

# Behind the header, which ends with the name and the length of the data.
if [ -e fconvolver.wav ]; then
  header=$(LC_ALL=C grep -abo -m 1 data fconvolver.wav | head -n 1 | cut -d : -f 1)
  tail -c +$((header + 9)) fconvolver.wav > fconvolver.raw
fi

# median FILE EXPRESSION: of an awk expression over the columns user, system, elapsed, memory.
median() {
  awk "{ print $2 }" "$1" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}

fastest=
for program in "${programs[@]:1}"; do
  cpu=$(median "$program.times" '$1 + $2')
  if [ -z "$fastest" ] || awk "BEGIN { exit !($cpu < $fastest) }"; then fastest=$cpu; fi
done

printf '%s s of 44.1 kHz stereo through 2 x 512 taps, medians of %s runs\n' "$seconds" "$runs"
printf '%-12s %8s %8s %11s  %s\n' program 'CPU s' 'wall s' 'memory MiB' 'CPU of the fastest peer'
for program in TestHRTF "${programs[@]}"; do
  cpu=$(median "$program.times" '$1 + $2')
  ratio=-
  if [ -n "$fastest" ]; then ratio=$(awk "BEGIN { printf \"%.2f\", $cpu / $fastest }"); fi
  printf '%-12s %8.2f %8.2f %11.1f  %s\n' "$program" "$cpu" "$(median "$program.times" '$3')" \
    "$(median "$program.times" '$4 / 1024')" "$ratio"
done

differ=0
for program in "${programs[@]:1}"; do
  printf 'output of audio_bench and of %s: ' "$program"
  "$build/benchmarks/compare_floats" "${output[audio_bench]}" "${output[$program]}" \
    "${ahead[$program]}" "$limit" || differ=1
done
exit $differ
