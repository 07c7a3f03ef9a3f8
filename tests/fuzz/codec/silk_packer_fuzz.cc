// Packer streams as they come from broken cards, through the processor. The routine closes neither
// file and never releases the processor: that is done here, after each run.

#include "bench/codec/routines.h"
#include "engine_api/codec/audio_processor.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/left_behind.h"
#include "support/file_bytes.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

extern const int kIterations = 3000;

// AudioProcessor::Create, under the linker's name for it.
extern "C" {
void __real__ZN14AudioProcessor6CreateERK17AudioStreamFormatS2_RPS_(const AudioStreamFormat& in,
                                                                    const AudioStreamFormat& out,
                                                                    AudioProcessor*& processor);
void __wrap__ZN14AudioProcessor6CreateERK17AudioStreamFormatS2_RPS_(const AudioStreamFormat& in,
                                                                    const AudioStreamFormat& out,
                                                                    AudioProcessor*& processor);
}

namespace {

AudioProcessor* created = nullptr;

}  // namespace

void __wrap__ZN14AudioProcessor6CreateERK17AudioStreamFormatS2_RPS_(const AudioStreamFormat& in,
                                                                    const AudioStreamFormat& out,
                                                                    AudioProcessor*& processor) {
  __real__ZN14AudioProcessor6CreateERK17AudioStreamFormatS2_RPS_(in, out, processor);
  created = processor;
}

std::vector<std::string> Seeds() {
  WriteFile("tone.wav", WavBytes({.rate = 16000}, Tone(440, 9000, 16000, 3200)));
  TestZUEncode("tone.wav", "tone.enc", 2, false);
  const std::string stream = ReadFile("tone.enc");
  return {"", stream, stream + stream};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("packer.out", std::string(data, data + size));
  TestSilkPackerOut();
  CloseLeftStreams();
  REQUIRE(created != nullptr);
  AudioProcessor::Release(created);
  // Whole samples, and at most one frame of 60 ms for each byte.
  const size_t bytes = ReadFile("packer.pcm").size();
  REQUIRE(bytes % 2 == 0 && bytes <= size * 1920);
  return 0;
}
