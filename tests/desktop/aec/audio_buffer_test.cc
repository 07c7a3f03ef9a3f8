#include "engine_api/aec/audio_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/captured_stderr.h"
#include "support/talk.h"
#include "support/tone.h"

namespace {

zuwebrtc::AudioFrame Frame(const short* samples, int rate, int channels) {
  zuwebrtc::AudioFrame frame;
  frame.sample_rate_hz_ = rate;
  frame.num_channels_ = channels;
  frame.samples_per_channel_ = rate / 100;
  if (samples != nullptr) std::copy_n(samples, rate / 100 * channels, frame.data_);
  return frame;
}

// In and out again, block by block, the bands copied from one buffer to another.
Samples RoundTrip(const Samples& in, int rate) {
  const int frames = rate / 100;
  zuwebrtc::AudioBuffer from(frames, 1, frames, 1, frames);
  zuwebrtc::AudioBuffer to(frames, 1, frames, 1, frames);
  Samples out(in.size());
  for (size_t at = 0; at + static_cast<size_t>(frames) <= in.size();
       at += static_cast<size_t>(frames)) {
    zuwebrtc::AudioFrame frame = Frame(&in[at], rate, 1);
    from.DeinterleaveFrom(&frame);
    for (int band = 0; band < from.num_bands(); ++band) {
      std::copy_n(from.split_bands_const(0)[band], from.num_frames_per_band(),
                  to.split_bands(0)[band]);
    }
    zuwebrtc::AudioFrame result = Frame(nullptr, rate, 1);
    to.InterleaveTo(&result, true);
    std::copy_n(result.data_, frames, &out[at]);
  }
  return out;
}

TEST(AudioBuffer, HasABandPer16Kilohertz) {
  const struct {
    int frames;
    int bands;
  } cases[] = {{80, 1}, {160, 1}, {320, 2}, {441, 1}, {480, 3}};
  for (const auto& one : cases) {
    zuwebrtc::AudioBuffer buffer(one.frames, 1, one.frames, 1, one.frames);
    EXPECT_EQ(buffer.num_frames(), one.frames);
    EXPECT_EQ(buffer.num_bands(), one.bands);
    EXPECT_EQ(buffer.num_frames_per_band(), one.frames / one.bands);
  }
}

TEST(AudioBuffer, GivesOneBandBackBitByBit) {
  for (const int rate : {8000, 16000}) {
    const Samples in = Hiss(rate, 0.5, 1, -10);
    EXPECT_EQ(RoundTrip(in, rate), in);
  }
}

TEST(AudioBuffer, AddsItsBandsUpToTheInputWithinATenthOfADecibel) {
  for (const int rate : {32000, 48000}) {
    for (double frequency = 100; frequency < 0.49 * rate; frequency *= 1.2) {
      const ToneFit fit =
          FitTone(RoundTrip(Tone(frequency, 8000, rate, rate), rate), frequency, rate);
      EXPECT_NEAR(20 * std::log10(fit.amplitude / 8000), 0, 0.1) << frequency;
      EXPECT_LT(fit.residualDb, -60) << frequency;
    }
    const Lag lag = FindLag(Talk(rate, 1, 2), RoundTrip(Talk(rate, 1, 2), rate), 200);
    EXPECT_EQ(lag.samples, 32 * rate / 16000 - 1);
    EXPECT_GT(lag.agreement, 0.9999);
  }
}

TEST(AudioBuffer, PutsEachToneIntoItsBand) {
  for (const int rate : {32000, 48000}) {
    const int frames = rate / 100;
    for (int band = 0; band < rate / 16000; ++band) {
      zuwebrtc::AudioBuffer buffer(frames, 1, frames, 1, frames);
      const Samples tone = Tone(8000.0 * band + 3000, 8000, rate, rate);
      for (int block = 0; block < 20; ++block) {
        zuwebrtc::AudioFrame frame = Frame(tone.data() + block * frames, rate, 1);
        buffer.DeinterleaveFrom(&frame);
      }
      for (int other = 0; other < rate / 16000; ++other) {
        const short* const samples = buffer.split_bands_const(0)[other];
        const double level = LevelDb(Samples(samples, samples + 160), 16000, 0, 0.01);
        if (other == band) {
          EXPECT_NEAR(level, -15.3, 0.5) << band;
        } else {
          EXPECT_LT(level, -75) << band << ", " << other;
        }
      }
    }
  }
}

TEST(AudioBuffer, KeepsChannelsApartAndTheFrameWhenNothingChanged) {
  Samples in(320);
  for (size_t i = 0; i < in.size(); ++i) in[i] = static_cast<short>(i % 2 == 0 ? i : 1000 + i);
  zuwebrtc::AudioBuffer buffer(160, 2, 160, 2, 160);
  zuwebrtc::AudioFrame frame = Frame(in.data(), 16000, 2);
  buffer.DeinterleaveFrom(&frame);
  for (int i = 0; i < 160; ++i) {
    EXPECT_EQ(buffer.channels_const()[0][i], in[static_cast<size_t>(2 * i)]);
    EXPECT_EQ(buffer.channels_const()[1][i], in[static_cast<size_t>(2 * i + 1)]);
    EXPECT_EQ(buffer.split_bands_const(1)[0][i], in[static_cast<size_t>(2 * i + 1)]);
  }
  zuwebrtc::AudioFrame result = Frame(nullptr, 16000, 2);
  buffer.InterleaveTo(&result, false);
  EXPECT_EQ(Samples(result.data_, result.data_ + 320), Samples(320));
  buffer.InterleaveTo(&result, true);
  EXPECT_EQ(Samples(result.data_, result.data_ + 320), in);
}

TEST(AudioBuffer, ConvertsBetweenItsThreeFormats) {
  zuwebrtc::AudioBuffer buffer(480, 2, 160, 1, 80);
  const Samples tone = Tone(400, 8000, 48000, 48000, 2);
  Samples out;
  for (size_t at = 0; at < tone.size(); at += 960) {
    zuwebrtc::AudioFrame frame = Frame(&tone[at], 48000, 2);
    buffer.DeinterleaveFrom(&frame);
    EXPECT_EQ(buffer.num_frames(), 160);
    buffer.InterleaveTo(&frame, true);
    EXPECT_EQ(frame.samples_per_channel_, 80);
    EXPECT_EQ(frame.num_channels_, 1);
    out.insert(out.end(), frame.data_, frame.data_ + 80);
  }
  EXPECT_NEAR(FitTone(out, 400, 8000).amplitude, 8000, 80);
}

TEST(AudioBuffer, HoldsNothingInAFormatThatIsNone) {
  const struct {
    int inFrames, inChannels, frames, channels, outFrames;
  } cases[] = {{0, 1, 160, 1, 0},      {160, 1, 0, 1, 160},    {160, 1, 160, 1, 0},
               {-160, 1, 160, 1, 160}, {160, -1, 160, 1, 160}, {160, 1, -160, 1, 160},
               {160, 1, 160, 0, 160},  {160, 1, 160, 1, -160}, {1 << 30, 1, 160, 1, 160}};
  for (const auto& one : cases) {
    CapturedStderr log;
    zuwebrtc::AudioBuffer buffer(one.inFrames, one.inChannels, one.frames, one.channels,
                                 one.outFrames);
    EXPECT_EQ(log.Lines().size(), 1u);
    EXPECT_EQ(buffer.num_frames(), 0);
    EXPECT_EQ(buffer.num_bands(), 0);
    EXPECT_EQ(buffer.num_frames_per_band(), 0);
    EXPECT_EQ(buffer.channels_const()[0], nullptr);
    EXPECT_EQ(buffer.split_bands(0)[0], nullptr);
    EXPECT_EQ(buffer.split_bands_const(0)[0], nullptr);
    const Samples talk = Talk(16000, 0.01, 3);
    zuwebrtc::AudioFrame frame = Frame(talk.data(), 16000, 1);
    buffer.DeinterleaveFrom(&frame);
    buffer.InterleaveTo(&frame, true);
    EXPECT_EQ(Samples(frame.data_, frame.data_ + 160), talk);
    EXPECT_EQ(frame.samples_per_channel_, 160);
  }
}

TEST(AudioBuffer, HasNoBandsOfAChannelThatItHasNot) {
  zuwebrtc::AudioBuffer buffer(160, 1, 160, 1, 160);
  EXPECT_NE(buffer.split_bands(0)[0], nullptr);
  EXPECT_EQ(buffer.split_bands(1)[0], nullptr);
  EXPECT_EQ(buffer.split_bands_const(-1)[0], nullptr);
}

}  // namespace
