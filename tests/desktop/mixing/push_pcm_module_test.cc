#include "engine_api/mixing/push_pcm_module.h"

#include <gmock/gmock.h>

#include <cstring>

#include "support/captured_stderr.h"
#include "support/tone.h"

namespace {

std::string Bytes(const std::vector<short>& samples) {
  return std::string(reinterpret_cast<const char*>(samples.data()), samples.size() * 2);
}

std::vector<short> Samples(const std::string& bytes) {
  std::vector<short> samples(bytes.size() / 2);
  if (!samples.empty()) memcpy(samples.data(), bytes.data(), samples.size() * 2);
  return samples;
}

// Pushes one stream into a new module of `rate` Hz and `channels`; whether it took it.
bool Takes(unsigned rate, unsigned channels, unsigned precision, unsigned streamChannels,
           const std::string& bytes, std::string& out) {
  IPushPcmModule* const module = IPushPcmModule::CreatePuchPcmModule(rate, channels, 1);
  unsigned fs = 16000;
  auto length = static_cast<unsigned>(bytes.size());
  const bool takes = module->Process(
      IPushPcmModule::MakeStreamInfo(&fs, &streamChannels, &precision, &length, 1) + bytes, out);
  module->Destroy();
  return takes;
}

}  // namespace

TEST(IPushPcmModule, MakesAHeadThatCanBeReadBack) {
  unsigned fs[] = {44100, 8000};
  unsigned ch[] = {2, 1};
  unsigned precision[] = {2, 2};
  unsigned length[] = {3528, 320};
  const std::string head = IPushPcmModule::MakeStreamInfo(fs, ch, precision, length, 2);
  uint32_t words[10];
  ASSERT_EQ(head.size(), sizeof words);
  memcpy(words, head.data(), sizeof words);
  EXPECT_THAT(words, testing::ElementsAre(1, 2, 44100, 2, 2, 3528, 8000, 1, 2, 320));
  EXPECT_EQ(IPushPcmModule::MakeStreamInfo(nullptr, ch, precision, length, 1), "");
  EXPECT_EQ(IPushPcmModule::MakeStreamInfo(fs, nullptr, precision, length, 1), "");
  EXPECT_EQ(IPushPcmModule::MakeStreamInfo(fs, ch, nullptr, length, 1), "");
  EXPECT_EQ(IPushPcmModule::MakeStreamInfo(fs, ch, precision, nullptr, 1), "");
}

TEST(IPushPcmModule, LetsItsOwnFormatPassAndMixesAnother) {
  IPushPcmModule* const module = IPushPcmModule::CreatePuchPcmModule(16000, 1, 2);
  const std::vector<short> a = Tone(440, 8000, 16000, 16000);
  const std::vector<short> b = Tone(1000, 8000, 8000, 8000);
  unsigned fs[] = {16000, 8000};
  unsigned ch[] = {1, 1};
  unsigned precision[] = {2, 2};
  unsigned length[] = {32000, 16000};
  std::string out;

  const std::string one = IPushPcmModule::MakeStreamInfo(fs, ch, precision, length, 1);
  ASSERT_TRUE(module->Process(one + Bytes(a), out));
  EXPECT_EQ(Samples(out), a);
  const std::string two = IPushPcmModule::MakeStreamInfo(fs, ch, precision, length, 2);
  ASSERT_TRUE(module->Process(two + Bytes(a) + Bytes(b), out));
  EXPECT_NEAR(FitTone(Samples(out), 1000, 16000).amplitude, 8000, 40);
  module->Destroy();
}

TEST(IPushPcmModule, MixesLowRates) {
  for (const int rate : {100, 200, 2000}) {
    IPushPcmModule* const module = IPushPcmModule::CreatePuchPcmModule(48000, 1, 1);
    unsigned fs[] = {static_cast<unsigned>(rate)};
    unsigned ch[] = {1};
    unsigned precision[] = {2};
    unsigned length[] = {static_cast<unsigned>(4 * rate)};
    const std::string head = IPushPcmModule::MakeStreamInfo(fs, ch, precision, length, 1);
    std::string out;
    ASSERT_TRUE(module->Process(head + Bytes(Tone(rate / 8.0, 8000, rate, 2 * rate)), out));
    const std::vector<short> mixed = Samples(out);
    ASSERT_EQ(mixed.size(), 96000U);
    EXPECT_NEAR(*std::max_element(mixed.begin(), mixed.end()), 8000, 500) << rate;
    module->Destroy();
  }
}

TEST(IPushPcmModule, RefusesDataThatAreNoneOrCutShort) {
  IPushPcmModule* const module = IPushPcmModule::CreatePuchPcmModule(16000, 1, 1);
  unsigned fs[] = {16000};
  unsigned ch[] = {1};
  unsigned precision[] = {2};
  unsigned length[] = {4};
  const std::string whole =
      IPushPcmModule::MakeStreamInfo(fs, ch, precision, length, 1) + Bytes({1, 2});
  std::string out = "before";
  for (size_t bytes = 0; bytes < whole.size(); ++bytes) {
    EXPECT_FALSE(module->Process(whole.substr(0, bytes), out)) << bytes;
    EXPECT_EQ(out, "");
  }
  std::string other = whole;
  other[0] = 2;  // Another version.
  EXPECT_FALSE(module->Process(other, out));
  EXPECT_FALSE(module->Process(whole + "x", out));  // More than it announces.
  EXPECT_EQ(out, "");
  EXPECT_TRUE(module->Process(whole, out));
  module->Destroy();
}

TEST(IPushPcmModule, RefusesFormatsThatAreNone) {
  const std::string bytes = Bytes({1, 2, 3, 4});
  std::string out;
  EXPECT_TRUE(Takes(16000, 1, 2, 1, bytes, out));
  EXPECT_EQ(out, bytes);
  EXPECT_FALSE(Takes(0, 1, 2, 1, bytes, out));
  EXPECT_EQ(out, "");
  EXPECT_FALSE(Takes(16000, 0, 2, 1, bytes, out));
  EXPECT_FALSE(Takes(16000, 1, 1, 1, bytes, out));
  EXPECT_FALSE(Takes(16000, 1, 3, 1, bytes, out));
  EXPECT_FALSE(Takes(16000, 1, 2, 0, bytes, out));
}

// 16 MiB of one stream in one push, and no sample more.
TEST(IPushPcmModule, TakesAStreamOfUpTo16MiB) {
  std::string out;
  EXPECT_TRUE(Takes(16000, 1, 2, 1, std::string(16 << 20, '\1'), out));
  EXPECT_EQ(out.size(), 16U << 20);
  EXPECT_FALSE(Takes(16000, 1, 2, 1, std::string((16 << 20) + 2, '\1'), out));
}

TEST(IPushPcmModule, MixesNothingWhereNoStreamHoldsASample) {
  std::string out = "before";
  EXPECT_TRUE(Takes(16000, 1, 2, 1, "", out));
  EXPECT_EQ(out, "");
}

TEST(IPushPcmModule, TakesUpTo64Streams) {
  for (const unsigned count : {64U, 65U}) {
    const CapturedStderr log;
    IPushPcmModule* const module = IPushPcmModule::CreatePuchPcmModule(16000, 1, count);
    std::vector<unsigned> fs(count, 16000);
    std::vector<unsigned> ones(count, 1);
    std::vector<unsigned> twos(count, 2);
    std::string data =
        IPushPcmModule::MakeStreamInfo(fs.data(), ones.data(), twos.data(), twos.data(), count);
    for (unsigned i = 0; i < count; ++i) data += Bytes({10});
    std::string out;
    EXPECT_EQ(module->Process(data, out), count == 64);
    EXPECT_EQ(Samples(out), count == 64 ? std::vector<short>{640} : std::vector<short>{});
    EXPECT_EQ(log.Lines().size(), count - 64);
    if (count > 64) {
      EXPECT_THAT(log.Text(), testing::HasSubstr(" Pushed PCM: 65 streams are more than 64\n"));
    }
    module->Destroy();
  }
}

// A stream that changes its format is converted from the new one.
TEST(IPushPcmModule, FollowsAStreamIntoAnotherFormat) {
  IPushPcmModule* const module = IPushPcmModule::CreatePuchPcmModule(16000, 1, 1);
  unsigned fs = 16000;
  unsigned precision = 2;
  unsigned length = 8;
  for (unsigned channels : {1U, 2U, 1U}) {
    std::string out;
    EXPECT_TRUE(
        module->Process(IPushPcmModule::MakeStreamInfo(&fs, &channels, &precision, &length, 1) +
                            Bytes({100, 100, 100, 100}),
                        out));
    EXPECT_EQ(Samples(out), std::vector<short>(4 / channels, 100));
  }
  module->Destroy();
}
