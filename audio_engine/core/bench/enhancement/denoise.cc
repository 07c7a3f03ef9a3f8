// Noise suppression over recorded speech. Listen for musical noise and for clipped word onsets.

#include "bench/enhancement/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/enhancement/audio_denoise.h"
#include "harness/block_samples.h"
#include "harness/format_name.h"
#include "harness/noizeus_cases.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::FormatName;
using harness::ReadBlock;
using harness::StdioFile;

namespace {

// Cleans one noisy sentence of the corpus with a suppressor of its own, so that none starts with
// what the sentence before left. `mode` is the end of the output's name.
void CleanSentence(const char* noise, int level, int sentence, const char* mode, bool light) {
  StdioFile in(
      FormatName("NOIZEUS/in/%s/%ddB/sp%02d_%s_sn%d.pcm", noise, level, sentence, noise, level)
          .c_str(),
      "rb");
  StdioFile out(
      FormatName("NOIZEUS/out/sp%02d_%s_sn%d_%s.pcm", sentence, noise, level, mode).c_str(), "wb");
  CAudioDenoise denoise(8000, 1);
  denoise.EnableLightDenoise(light);

  const unsigned sample = 80;
  short inData[8192];
  while (in.Read(inData, sizeof(short), sample) == sample) {
    denoise.Process(inData);
    out.Write(inData, sizeof(short), sample);
  }
  in.Close();
  out.Close();
}

void CleanCorpus(const char* mode, bool light) {
  for (const char* const noise : harness::kNoizeusNoises) {
    for (const int level : harness::kNoizeusLevels) {
      for (int i = 1; i <= harness::kNoizeusSentences; ++i) {
        CleanSentence(noise, level, i, mode, light);
      }
    }
  }
}

}  // namespace

// Cleans one WAVE file in the suppressor's normal mode, in place, 10 ms at a time.
void TestDenoiseProcess() {
  zuwebrtc::WavReader reader("ns_in.wav");
  const int src_fs = reader.sample_rate();
  const int src_ch = reader.num_channels();
  const int time_ms = 10;
  const unsigned read_samples = harness::BlockSamples(src_fs, src_ch, time_ms);

  CAudioDenoise denoise(src_fs, src_ch);
  zuwebrtc::WavWriter writer("ns_out.wav", src_fs, src_ch);
  denoise.EnableLightDenoise(false);

  short inData[8192];
  while (ReadBlock(reader, inData, read_samples)) {
    denoise.Process(inData);
    writer.WriteSamples(inData, read_samples);
  }
}  // Closes the writer, then destroys the suppressor, then closes the reader.

// Cleans the noisy corpus in the normal mode, then again in the light one.
void TestDenoiseProcessNoizeus() {
  CleanCorpus("denoise", false);
  CleanCorpus("denoise_light", true);
}
