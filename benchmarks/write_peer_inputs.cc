// Writes into the current directory what the programs of peers.sh read: the recording, headerless
// and as a WAVE, and the responses of both ears, as a WAVE and as lists of numbers.

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/mit_hrtf.h"
#include "recording.h"

namespace {

bool WriteNumbers(const char* name, const short* taps, unsigned count) {
  FILE* const file = fopen(name, "w");
  if (file == nullptr) return false;
  for (unsigned i = 0; i < count; ++i) fprintf(file, "%.17g\n", taps[i] / 32768.0);
  return fclose(file) == 0;
}

void WriteRecordingAsWave(int seconds) {
  zuwebrtc::WavWriter writer("recording.wav", kRecordingRate, 2);
  Noise noise(1);
  std::vector<short> second(2 * kRecordingRate);
  for (int i = 0; i < seconds; ++i) {
    FillRecording(noise, second.data(), second.size());
    writer.WriteSamples(second.data(), static_cast<unsigned>(second.size()));
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int seconds = argc == 2 ? std::atoi(argv[1]) : 0;
  if (seconds <= 0) {
    fprintf(stderr, "usage: write_peer_inputs SECONDS\n");
    return 2;
  }
  short left[8192];
  short right[8192];
  int azimuth = 90;
  int elevation = 0;
  const unsigned taps = mit_hrtf_get(&azimuth, &elevation, kRecordingRate, 0, left, right);
  if (taps == 0 || !WriteNumbers("left.txt", left, taps) ||
      !WriteNumbers("right.txt", right, taps) || !WriteRecording("recording.pcm", seconds)) {
    fprintf(stderr, "write_peer_inputs: no responses, or they cannot be written\n");
    return 1;
  }
  std::vector<short> stereo;
  for (unsigned i = 0; i < taps; ++i) {
    stereo.push_back(left[i]);
    stereo.push_back(right[i]);
  }
  zuwebrtc::WavWriter("responses.wav", kRecordingRate, 2)
      .WriteSamples(stereo.data(), static_cast<unsigned>(stereo.size()));
  WriteRecordingAsWave(seconds);
}
