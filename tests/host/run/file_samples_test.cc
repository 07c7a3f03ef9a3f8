#include "run/file_samples.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

constexpr size_t kOther = 44;  // Bytes before the samples.

class FileSamplesTest : public testing::Test {
 protected:
  // Writes samples of which each differs from those around it, and returns them as floats.
  template <typename T>
  std::vector<float> Write(size_t count) {
    std::vector<float> floats;
    std::string bytes(kOther, 'x');
    for (size_t i = 0; i < count; ++i) {
      const auto number = static_cast<int16_t>(i * 40503U);
      floats.push_back(static_cast<float>(number) / 32768);
      const T sample = sizeof(T) == 2 ? static_cast<T>(number) : static_cast<T>(floats.back());
      bytes.append(reinterpret_cast<const char*>(&sample), sizeof sample);
    }
    WriteFile("sound", bytes);
    m_layout = {.samples = sizeof(T) == 2 ? SampleType::kPcm16 : SampleType::kFloat32,
                .rate = 8000,
                .channels = 1,
                .offset = kOther,
                .bytes = count * sizeof(T),
                .frameBytes = sizeof(T)};
    return floats;
  }

  // On a walk that goes on, back a little, far away and back again.
  void ExpectAll(const std::vector<float>& floats) const {
    FileSamples samples("sound", m_layout, [] { return true; });
    EXPECT_EQ(samples.Size(), floats.size());
    for (const size_t first : {0U, 900U, 100000U, 99500U, 94000U, 399000U, 5U, 65000U, 130000U}) {
      for (const size_t count : {1U, 1000U, 70000U}) {
        if (first + count > floats.size()) continue;
        const std::span<const float> view = samples.View(first, count);
        ASSERT_TRUE(std::ranges::equal(view, std::span(floats).subspan(first, count)))
            << count << " from " << first << " on";
      }
    }
    EXPECT_FALSE(samples.HasFailed());
  }

  TemporaryDirectory m_directory;
  AudioLayout m_layout = {};
  bool m_goOn = true;
};

TEST_F(FileSamplesTest, AreThoseOfTheFileFromAnyPlaceOn) { ExpectAll(Write<int16_t>(400000)); }

TEST_F(FileSamplesTest, ReadFloatsAsTheyAre) { ExpectAll(Write<float>(400000)); }

TEST_F(FileSamplesTest, OfAShortFileAreTheSame) { ExpectAll(Write<int16_t>(150000)); }

TEST_F(FileSamplesTest, AreWholeFrames) {
  Write<int16_t>(1001);
  m_layout.channels = 2;
  m_layout.frameBytes = 4;
  EXPECT_EQ(FileSamples("sound", m_layout, [] { return true; }).Size(), 1000U);
}

TEST_F(FileSamplesTest, FailWhereTheFileHasBecomeShorter) {
  const std::vector<float> floats = Write<int16_t>(400000);
  FileSamples samples("sound", m_layout, [] { return true; });
  EXPECT_EQ(samples.View(1000, 1)[0], floats[1000]);
  std::filesystem::resize_file("sound", kOther + 300000);
  EXPECT_EQ(samples.View(390000, 1)[0], 0);
  EXPECT_TRUE(samples.HasFailed());
}

TEST_F(FileSamplesTest, FailWhereThereIsNoFile) {
  Write<int16_t>(100);
  FileSamples samples("another", m_layout, [] { return true; });
  EXPECT_EQ(samples.View(0, 100)[50], 0);
  EXPECT_TRUE(samples.HasFailed());
}

TEST_F(FileSamplesTest, ReadNoMoreOnceTheTimeIsUp) {
  Write<int16_t>(400000);
  FileSamples samples("sound", m_layout, [this] { return m_goOn; });
  EXPECT_NE(samples.View(1000, 1)[0], 0);
  m_goOn = false;
  EXPECT_EQ(samples.View(350000, 1)[0], 0);
  EXPECT_TRUE(samples.HasFailed());
}

}  // namespace
}  // namespace host
