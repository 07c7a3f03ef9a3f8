// What is read of a recording, and what it is called.

#include "recording/conversion.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "files/audio_figures.h"

namespace host {
namespace {

// A silent one that never ends.
class EndlessRecording : public Recording {
 public:
  const RecordingFormat& Format() const override { return m_format; }
  size_t Read(double* samples, size_t frames) override {
    std::fill_n(samples, frames, 0.0);
    ++reads;
    return frames;
  }
  std::string Fault() const override { return ""; }

  int reads = 0;

 private:
  RecordingFormat m_format = {.rate = 48000, .channels = 1};
};

// What is before the cut may be hours.
TEST(ForEachConvertedBlock, EndsWhileItSkips) {
  EndlessRecording recording;
  const Conversion conversion = {.rate = 48000, .channels = 1, .cut = {.start = 3600}};
  const auto interrupted = [](std::span<const double> samples) {
    EXPECT_TRUE(samples.empty()) << "before the cut";
    return false;
  };
  EXPECT_EQ(ForEachConvertedBlock(recording, conversion, interrupted), kStopped);
  EXPECT_EQ(recording.reads, 1);
}

TEST(RecordingFormat, HasALengthWhereItIsKnown) {
  RecordingFormat format = {
      .container = "WAVE", .samples = "16-bit", .rate = 1, .channels = 1, .frames = 3};
  EXPECT_EQ(format.Words(), "WAVE, 16-bit, 1 Hz, mono, 3.00 s");
  format.frames.reset();
  EXPECT_EQ(format.Words(), "WAVE, 16-bit, 1 Hz, mono");
}

}  // namespace
}  // namespace host
