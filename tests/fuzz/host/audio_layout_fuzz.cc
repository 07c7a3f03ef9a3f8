// Where the host finds the samples of a file. The first byte of an input chooses what the file is
// said to be.

#include "files/audio_layout.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/wav_bytes.h"

extern const int kIterations = 20000;

namespace {

using host::Container;
using host::SampleType;

constexpr Container kContainers[] = {Container::kWave, Container::kRecording,
                                     Container::kHeaderless, Container::kOther};

void CheckHeaderless(const host::AudioLayout& layout, const host::FileUse& use, size_t size) {
  REQUIRE(layout.samples == use.samples && layout.rate == use.rate);
  REQUIRE(layout.offset == 0 && layout.bytes == size);
  REQUIRE(layout.frameBytes == use.channels * (use.samples == SampleType::kPcm16 ? 2 : 4));
}

void CheckWave(const host::AudioLayout& layout, size_t size) {
  REQUIRE(size >= 44 && layout.offset >= 28 && layout.offset + layout.bytes <= size);
  REQUIRE(layout.rate >= 1 && layout.rate <= 768000);
  REQUIRE(layout.channels >= 1 && layout.channels <= 64);
  if (layout.samples == SampleType::kPcm16) REQUIRE(layout.frameBytes == 2 * layout.channels);
  if (layout.samples == SampleType::kFloat32) REQUIRE(layout.frameBytes == 4 * layout.channels);
}

}  // namespace

std::vector<std::string> Seeds() {
  const std::string data = Chunk("data", SampleBytes(std::vector<short>(20, 5)));
  const std::vector<std::string> files = {
      WavBytes({}, {1, 2, 3}), Riff(PlainFormat({.channels = 2}) + Chunk("LIST", "odd") + data),
      Riff(ExtensibleFormat({.rate = 48000, .bits = 32}, 3) + data),
      Riff(PlainFormat({}) + Chunk("data", "abc", 0xFFFFFFFF)), std::string(40, 's')};
  std::vector<std::string> seeds = {""};
  for (char choice = 0; choice < 4; ++choice) {
    for (const std::string& file : files) seeds.push_back(choice + file);
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t choice = *data++;
  --size;
  const host::FileUse use = {
      .container = kContainers[choice % 4],
      .samples = (choice & 4) != 0 ? SampleType::kFloat32 : SampleType::kPcm16,
      .rate = 16000,
      .channels = 1 + choice / 8 % 2};
  WriteFile("fuzz", std::string(data, data + size));
  FILE* const file = fopen("fuzz", "rb");
  const auto layout = host::FindAudio(use, file, size);
  fclose(file);

  if (use.container == Container::kOther) REQUIRE(!layout);
  if (use.container == Container::kHeaderless) REQUIRE(layout);
  if (!layout) return 0;
  REQUIRE(layout->frameBytes >= 1);
  if (use.container == Container::kHeaderless) {
    CheckHeaderless(*layout, use, size);
  } else {
    CheckWave(*layout, size);
  }
  const uint64_t rest = layout->bytes % static_cast<uint64_t>(layout->frameBytes);
  REQUIRE(rest == 0 || !layout->flaw.empty());
  REQUIRE(layout->Seconds() >= 0 && layout->Seconds() <= static_cast<double>(size));
  return 0;
}
