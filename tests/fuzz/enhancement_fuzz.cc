// Recordings and descriptions of any length and content through the enhancement routines that read
// them.

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "bench/enhancement/routines.h"
#include "catalogue/vad_files.h"
#include "engine_api/common/wav_reader.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"

extern const int kIterations = 300;

namespace {

std::string Wave(uint32_t rate, uint16_t channels, size_t bytes) {
  std::string wave = "RIFF....WAVEfmt \x10";
  wave.append("\0\0\0\1\0", 5);
  const auto append = [&](auto value) {
    wave.append(reinterpret_cast<const char*>(&value), sizeof value);
  };
  append(channels);
  append(rate);
  append(rate * channels * 2);
  append(static_cast<uint16_t>(channels * 2));
  append(uint16_t{16});
  wave += "data";
  append(static_cast<uint32_t>(bytes));
  for (size_t i = 0; i < bytes; ++i) wave += static_cast<char>(i * i);
  return wave;
}

}  // namespace

std::vector<std::string> Seeds() {
  return {"",
          "2\na.wav 2,1200,5000,9000,4000,\nb.wav 0,\n",
          Wave(16000, 1, 3200),
          Wave(8000, 1, 1601),
          Wave(22050, 2, 5000),
          Wave(48000, 6, 12000)};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(data, data + size);
  for (const char* const name : {"in.wav", "swb_ref_16kHz.wav", "ns_in.wav"}) {
    WriteFile(name, input);
  }
  TestVADProcess("in.wav", "gated.wav", "track.wav");
  const size_t header = std::min<size_t>(size, 44);
  REQUIRE(std::filesystem::file_size("track.wav") == header + (size - header) / 320 * 320);
  TestHPFProcess("in.wav", "filtered.wav");
  TestVadResult();
  TestDenoiseProcess();
  // Aborts unless the file is mono.
  if (zuwebrtc::WavReader("in.wav").num_channels() == 1) {
    TestVADProcessRefined("in.wav", "refined.wav", nullptr, 3);
  }
  harness::VadRecordings(input);
  return 0;
}
