// What a gate before the encoder does to the quality that a codec reaches: the same speech through
// the codec as it is and with everything silenced that the detector calls no speech. An outside
// tool scores both results against the reference; listen for onsets that only the second one lacks.

#include <string>

#include "bench/codec/routines.h"
#include "bench/effects/routines.h"
#include "bench/enhancement/routines.h"

// The names of all files are the reference's, extension included, and a suffix. The encoded and the
// decoded files stay beside the results.
// Deliberate: what a device's pre-processing makes of the resampled reference is expected to be
// there already, as ".preproc.wav". If it were made here, there would be nothing of a device in the
// comparison. Without it each step does what it does without an input.
void TestMockVADMos(const char* refFile, int codecId) {
  const std::string reference(refFile);
  const std::string resampleFile = reference + ".resample.wav";
  const std::string prePorcFile = reference + ".preproc.wav";
  const std::string codecFile = reference + ".codec.wav";
  const std::string vadFile = reference + ".vad.wav";
  const std::string vadResultFile = reference + ".vadresult.wav";
  const std::string vadCodec = reference + ".vadCodec.wav";

  TestAudioResamplerEx(refFile, resampleFile.c_str(), 16000, 1);
  TestZUCodecNew(prePorcFile.c_str(), codecFile.c_str(), codecId);
  TestVADProcess(prePorcFile.c_str(), vadFile.c_str(), vadResultFile.c_str());
  TestZUCodecNew(vadFile.c_str(), vadCodec.c_str(), codecId);
}
