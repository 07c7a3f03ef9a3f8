// Recordings of any format, length and content through the echo-cancellation and gain-control
// routines that take names.

#include <algorithm>
#include <filesystem>

#include "bench/aec/routines.h"
#include "bench/enhancement/routines.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/wav_bytes.h"

extern const int kIterations = 100;

namespace {

std::string Wave(uint32_t rate, uint16_t channels, size_t samples) {
  std::vector<short> ramp(samples);
  for (size_t i = 0; i < samples; ++i) ramp[i] = static_cast<short>(i * i);
  return WavBytes({.channels = channels, .rate = rate}, ramp);
}

}  // namespace

std::vector<std::string> Seeds() {
  return {"",
          Wave(16000, 1, 800),
          Wave(8000, 1, 401),
          Wave(22050, 2, 2000),
          Wave(48000, 2, 4800),
          Wave(300, 6, 100)};
}

// The input is the near end; the far end has half its samples, or another format.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(data, data + size);
  const std::string half = input.substr(0, std::min(size, 44 + size / 2));
  WriteFile("near", input);
  WriteFile("far", half);
  WriteFile("other", Wave(16000, 1, 320));
  std::filesystem::create_directory("music_delay");
  for (const char* const name : {"noise_in.wav", "music.wav", "niannujiao_44100_1.wav",
                                 "music_delay/findcap.wav", "wrpcmin.pcm"}) {
    WriteFile(name, input);
  }
  WriteFile("music_delay/findreceive.wav", half);

  TestEchoDelayEst("far", "near");
  TestEchoDelayEstAndAEC("far", "near", "out");
  TestAECProcess("far", "near", "out", static_cast<int>(size) * 1000 - 20000);
  REQUIRE(std::filesystem::file_size("out") == half.size() / 320 * 320);
  TestZUAECProcess("other", "near", "out", 0);
  TestZUAECProcess(nullptr, "near", "out", 0);
  const size_t header = std::min<size_t>(size, 44);
  REQUIRE(std::filesystem::file_size("out") == header + (size - header) / 320 * 320);
  for (const bool software : {true, false}) {
    TestZUAec("near", "far", "out", software);
    TestZUAec("near", "other", "out", software);
  }
  TestSoftAec();
  TestHardwareAec();
  TestTemp();
  REQUIRE(std::filesystem::file_size("NSout.pcm") == size / 160 * 160);
  TestAecDenoiseInternal("near", "out");
  TestZUAudioProcessing("far", "near", "out");
  TestAGCProcess("near", "out");
  TestSpeexAgc();
  TestWebrtcAgc();
  return 0;
}
