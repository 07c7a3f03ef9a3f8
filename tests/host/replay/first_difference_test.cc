#include "replay/first_difference.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

class FirstDifferenceTest : public testing::Test {
 protected:
  static std::string Of(
      const std::string& before, const std::string& now, const FileUse& use,
      const std::function<bool()>& goOn = [] { return true; }) {
    WriteFile("before", before);
    WriteFile("now", now);
    return FirstDifference("before", "now", use, goOn);
  }

  template <typename T>
  static std::string Bytes(const std::vector<T>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
  }

  // A text of 20 lines.
  static std::string Lines() {
    std::string text;
    for (int i = 1; i <= 20; ++i) text += "delay " + std::to_string(7 * i) + " ms\n";
    return text;
  }

  TemporaryDirectory m_directory;
};

const FileUse kFloats = {.container = Container::kHeaderless,
                         .samples = SampleType::kFloat32,
                         .rate = 8000,
                         .channels = 2};
const FileUse kMono = {.container = Container::kHeaderless, .rate = 8000, .channels = 1};
const FileUse kWave = {.container = Container::kWave};
const FileUse kOther = {};

TEST_F(FirstDifferenceTest, TellsTimeChannelAndLevels) {
  std::vector<float> before(16000);
  std::vector<float> now = before;
  now[2 * 4000 + 1] = -0.001F;
  now[2 * 6000] = 0.5F;
  EXPECT_EQ(Of(Bytes(before), Bytes(now), kFloats),
            "first at 0.50 s (frame 4000), right, by -60.0 dBFS; at most by -6.0 dBFS");
  now[0] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(Of(Bytes(before), Bytes(now), kFloats),
            "first at 0.0 ms (frame 0), left, by what is not finite; at most by -6.0 dBFS");
}

TEST_F(FirstDifferenceTest, ComparesAlsoWhatIsBeyondTheFirstBlock) {
  std::vector<short> before(100000);
  std::vector<short> now = before;
  now[99999] = 1;
  EXPECT_EQ(Of(Bytes(before), Bytes(now), kMono),
            "first at 12.50 s (frame 99999), mono, by -90.3 dBFS; at most by -90.3 dBFS");
}

TEST_F(FirstDifferenceTest, TellsTheDifferenceInLength) {
  const std::vector<short> before(8000, 1);
  std::vector<short> now(12000, 1);
  EXPECT_EQ(Of(Bytes(before), Bytes(now), kMono), "the same as far as both go; 0.50 s longer");
  EXPECT_EQ(Of(Bytes(now), Bytes(before), kMono), "the same as far as both go; 0.50 s shorter");
  now[4000] = 0;
  EXPECT_EQ(Of(Bytes(before), Bytes(now), kMono),
            "first at 0.50 s (frame 4000), mono, by -90.3 dBFS; at most by -90.3 dBFS; "
            "0.50 s longer");
}

TEST_F(FirstDifferenceTest, TellsTimeAtTheLowestRateToo) {
  FileUse slow = kMono;
  slow.rate = 1;
  EXPECT_EQ(Of(Bytes<short>({1, 2}), Bytes<short>({1, 3, 4, 4}), slow),
            "first at 1.00 s (frame 1), mono, by -90.3 dBFS; at most by -90.3 dBFS; 2.00 s longer");
}

TEST_F(FirstDifferenceTest, TellsAnotherFormat) {
  const std::vector<short> samples(800, 1);
  EXPECT_EQ(Of(WavBytes({.channels = 2, .rate = 44100}, samples), WavBytes({.rate = 8000}, samples),
               kWave),
            "is 8000 Hz mono, 16-bit, was 44100 Hz stereo, 16-bit");
}

TEST_F(FirstDifferenceTest, TellsAnotherSampleType) {
  const std::string shorts = WavBytes({.rate = 8000}, std::vector<short>(800, 1));
  std::string floats =
      WavBytes({.tag = 3, .rate = 8000, .bits = 32, .blockAlign = 4}, std::vector<short>(1600, 1));
  EXPECT_EQ(Of(shorts, floats, kWave), "is 8000 Hz mono, 32-bit float, was 8000 Hz mono, 16-bit");
}

TEST_F(FirstDifferenceTest, TellsTheZerosApart) {
  const std::vector<float> before(16, 0.0F);
  std::vector<float> now = before;
  now[3] = -0.0F;
  EXPECT_EQ(Of(Bytes(before), Bytes(now), kFloats),
            "first at 0.1 ms (frame 1), right, by the sign of a zero; at most by the sign of a "
            "zero");
}

TEST_F(FirstDifferenceTest, ComparesByByteWhatIsAudioOnlyOnce) {
  const std::string wave = WavBytes({.rate = 8000}, std::vector<short>(8, 1));
  std::string none = wave;
  none[1] = 'x';
  EXPECT_EQ(Of(wave, none, kWave), "first at byte 1");
  EXPECT_EQ(Of(none, wave, kWave), "first at byte 1");
}

TEST_F(FirstDifferenceTest, ComparesByByteWhatIsTextOnlyOnce) {
  const std::string text = Lines();
  std::string none = text;
  none.replace(3, 40, 40, '\0');
  EXPECT_EQ(Of(text, none, kOther), "first at byte 3");
  EXPECT_EQ(Of(none, text, kOther), "first at byte 3");
}

TEST_F(FirstDifferenceTest, SaysThatAFileCannotBeReadAgain) {
  WriteFile("now", "text");
  for (const auto& [before, now] : {std::pair("missing", "now"), std::pair("now", "missing")}) {
    EXPECT_EQ(FirstDifference(before, now, kOther, [] { return true; }),
              "differs, and cannot be read again");
  }
}

TEST_F(FirstDifferenceTest, TellsThatOnlyTheHeaderDiffers) {
  const std::string before = WavBytes({.rate = 8000}, std::vector<short>(800, 1));
  std::string now = before;
  now[28] = 'x';  // Bytes per second, which nobody counts on.
  EXPECT_EQ(Of(before, now, kWave),
            "the samples are the same, the bytes are not: first at byte 28");
}

TEST_F(FirstDifferenceTest, ComparesTextsByLine) {
  const std::string before = Lines();
  std::string now = before;
  now.replace(now.find("21 ms"), 2, "22");
  EXPECT_EQ(Of(before, now, kOther), "line 3 is \"delay 22 ms\", was \"delay 21 ms\"");
  EXPECT_EQ(Of(before, before + "end\n", kOther), "line 21 is \"end\", was no line");
  EXPECT_EQ(Of(before + "end\n", before, kOther), "line 21 is no line, was \"end\"");
  EXPECT_EQ(Of(before + "a\n\nb\n", before + "a\n\nc", kOther), "line 23 is \"c\", was \"b\"");
  EXPECT_EQ(Of(before + "b\n", before + "b", kOther),
            "first at byte " + std::to_string(before.size() + 1) + "; 1 byte shorter")
      << "the lines are the same";
}

TEST_F(FirstDifferenceTest, CutsLongLines) {
  const std::string most = Lines() + std::string(60, 'a');
  EXPECT_EQ(Of(most + "\n", most + "b\n", kOther),
            "line 21 is \"" + std::string(60, 'a') + "...\", was \"" + std::string(60, 'a') + "\"");
}

TEST_F(FirstDifferenceTest, ComparesOtherFilesByByte) {
  EXPECT_EQ(Of(std::string("\0\1\2\3", 4), std::string("\0\1\3\3\4\5", 6), kOther),
            "first at byte 2; 2 bytes longer");
  EXPECT_EQ(Of(std::string("\0\1\2\3", 4), std::string("\0\1", 2), kOther),
            "first at byte 2; 2 bytes shorter");
}

TEST_F(FirstDifferenceTest, SaysThatItWasEndedBefore) {
  EXPECT_EQ(Of("a", "b", kOther, [] { return false; }),
            "differs; the run was ended before that could be looked at");
}

}  // namespace
}  // namespace host
