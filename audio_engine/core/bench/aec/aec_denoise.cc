// The noise suppressor of the echo-cancellation chain over WAVE files; the outputs of each revision
// of the engine go into a folder of its own. Listen for musical noise and for clipped word onsets.

#include <cstdint>
#include <string>

#include "bench/aec/routines.h"
#include "engine_api/aec/ns.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "harness/format_name.h"
#include "harness/noizeus_cases.h"
#include "harness/read_block.h"

using harness::FormatName;

// Cleans one file of any format, 10 ms at a time, from one buffer into another.
void TestAecDenoiseInternal(const char* in, const char* out) {
  zuwebrtc::WavReader reader(in);
  const int sampleRate = reader.sample_rate();
  const int channels = reader.num_channels();
  zuwebrtc::WavWriter writer(out, sampleRate, channels);
  const auto readSamples = static_cast<uint16_t>(sampleRate * channels / 100);
  void* ns = nullptr;
  Ns_Create(&ns);
  Ns_Init(ns, static_cast<unsigned>(sampleRate));
  Ns_set_policy(ns, 2);

  short Buffer[8192];
  short OutBuffer[8192] = {};
  while (harness::ReadBlock(reader, Buffer, readSamples)) {
    Ns_Process2(ns, Buffer, OutBuffer, static_cast<int16_t>(channels));
    writer.WriteSamples(OutBuffer, readSamples);
  }

  Ns_Free(ns);
}  // Closes the writer, then the reader.

// The whole NOIZEUS corpus.
void TestAecDenoiseNOIZEUS() {
  // Deliberate: the folder's name is made and not used: the folder has to be there. Created here, a
  // run without it would not fail.
  const std::string folder = FormatName("NOIZEUS//out//%s", "rev3.2.50");
  for (const char* noise : harness::kNoizeusNoises) {
    for (const int level : harness::kNoizeusLevels) {
      for (int sentence = 1; sentence <= harness::kNoizeusSentences; ++sentence) {
        const std::string in = FormatName("NOIZEUS/in/%s/%ddB/sp%02d_%s_sn%d.wav", noise, level,
                                          sentence, noise, level);
        const std::string out = FormatName("NOIZEUS/out/%s/sp%02d_%s_sn%d_denoise.wav", "rev3.2.50",
                                           sentence, noise, level);
        TestAecDenoiseInternal(in.c_str(), out.c_str());
      }
    }
  }
}

// Ten recordings.
void TestAecDenoise() {
  const char* const recordings[] = {
      "ns_in_32000",    "ns_step_32000", "sp01_airport_sn5", "sp22_street_sn10", "sp22_train_sn10",
      "sp22_train_sn5", "mirela_ns_off", "wrpcmin32000",     "wrpcmin_ka",       "after_aec"};
  // Deliberate: made and not used, as above.
  const std::string folder = FormatName("out//%s", "rev3.2.250");
  for (const char* recording : recordings) {
    const std::string in = FormatName("in/%s.wav", recording);
    const std::string out =
        FormatName("out/%s/%s_out_%s.wav", "rev3.2.250", recording, "rev3.2.250");
    TestAecDenoiseInternal(in.c_str(), out.c_str());
  }
}
