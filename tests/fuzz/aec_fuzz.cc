// Recordings of any format, length and content through the echo-cancellation and gain-control
// routines that take names. The first byte of an input chooses the routine; what it leaves alive is
// deleted after it.

#include <algorithm>
#include <filesystem>

#include "bench/aec/routines.h"
#include "bench/enhancement/routines.h"
#include "engine_api/aec/aec_module.h"
#include "engine_api/aec/audio_buffer.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/left_behind.h"
#include "support/file_bytes.h"
#include "support/wav_bytes.h"

extern const int kIterations = 1500;

namespace {

constexpr int kRoutines = 14;

std::string Wave(uint32_t rate, uint16_t channels, size_t samples) {
  std::vector<short> ramp(samples);
  for (size_t i = 0; i < samples; ++i) ramp[i] = static_cast<short>(i * i);
  return WavBytes({.channels = channels, .rate = rate}, ramp);
}

// Runs a routine that has its input, the file "near", under a name of its own.
void RunOn(const char* name, void (*routine)()) {
  std::filesystem::rename("near", name);
  routine();
}

// How many bytes of a file of this size whole blocks have, and the header.
size_t HeaderAndBlocks(size_t size, size_t block) {
  const size_t header = std::min<size_t>(size, 44);
  return header + (size - header) / block * block;
}

void RunMobile(const char* far, size_t size) {
  TestZUAECProcess(far, "near", "out", 0);
  DeleteLeft<zuwebrtc::AudioBuffer>();
  REQUIRE(std::filesystem::file_size("out") == HeaderAndBlocks(size, 320));
}

void RunModule(const char* far, bool software) {
  TestZUAec("near", far, "out", software);
  DeleteLeft<AecModule>();
}

void RunSoftAec() {
  std::filesystem::create_directory("music_delay");
  std::filesystem::rename("far", "music_delay/findreceive.wav");
  RunOn("music_delay/findcap.wav", TestSoftAec);
}

// The echo cancellers; `half` is the far end's size.
void RunAec(int routine, size_t size, size_t half) {
  switch (routine) {
    case 0:
      return TestEchoDelayEst("far", "near");
    case 1:
      return TestEchoDelayEstAndAEC("far", "near", "out");
    case 2:
      TestAECProcess("far", "near", "out", static_cast<int>(size) * 1000 - 20000);
      REQUIRE(std::filesystem::file_size("out") == half / 320 * 320);
      return;
    case 3:
      return RunMobile("far", size);
    case 4:
      return RunMobile(nullptr, size);
    case 5:
      return RunModule("far", true);
    case 6:
      return RunModule("far", false);
    default:
      RunOn("noise_in.wav", TestHardwareAec);
      return DeleteLeft<AecModule>();
  }
}

// Noise suppression and gain control.
void RunEnhancement(int routine, size_t size) {
  switch (routine) {
    case 8:
      RunOn("wrpcmin.pcm", TestTemp);
      DeleteLeft<zuwebrtc::AudioBuffer>();
      REQUIRE(std::filesystem::file_size("NSout.pcm") == size / 160 * 160);
      return;
    case 9:
      return TestAecDenoiseInternal("near", "out");
    case 10:
      return TestZUAudioProcessing("far", "near", "out");
    case 11:
      return TestAGCProcess("near", "out");
    case 12:
      return RunOn("music.wav", TestSpeexAgc);
    default:
      return RunOn("niannujiao_44100_1.wav", TestWebrtcAgc);
  }
}

}  // namespace

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds;
  for (int routine = 0; routine <= kRoutines; ++routine) {
    for (const std::string& wave :
         {std::string(), Wave(16000, 1, 800), Wave(8000, 1, 401), Wave(22050, 2, 1000),
          Wave(48000, 2, 2000), Wave(300, 6, 100)}) {
      seeds.push_back(static_cast<char>(routine) + wave);
    }
  }
  return seeds;
}

// The input is the near end; the far end has half its samples. In the last routine it has another
// format, at which the module ends at once.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int routine = data[0] % (kRoutines + 1);
  const std::string input(data + 1, data + size);
  const std::string half = input.substr(0, std::min(input.size(), 44 + input.size() / 2));
  WriteFile("near", input);
  WriteFile("far", routine == kRoutines ? Wave(16000, 1, 320) : half);
  if (routine == kRoutines) {
    RunModule("far", size % 2 == 0);
    RunSoftAec();
  } else if (routine < 8) {
    RunAec(routine, input.size(), half.size());
  } else {
    RunEnhancement(routine, input.size());
  }
  REQUIRE(TakeLeftObjects().empty());
  return 0;
}
