#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "engine_api/effects/audio_music_detector.h"
#include "music_sounds.h"
#include "music_verdict.h"
#include "process_frames.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tiny_numbers.h"

namespace {

using Doubles = std::vector<double>;

// As a song whose centre was taken out has them, or a channel that is not connected.
TEST(AudioMusicDetectorTest, HearsChannelsThatCancelEachOther) {
  for (const int phase : {-1, 0}) {
    AudioMusicDetector song, talk;
    song.Enable(true);
    talk.Enable(true);
    EXPECT_GT(Listen(song, Song(16000, 12, true, true, true), 16000, 2, phase).share, 0.97);
    EXPECT_LT(Listen(talk, Speech(16000, 12), 16000, 2, phase).share, 0.03);
  }
}

TEST(AudioMusicDetectorTest, HearsBothChannels) {
  const Doubles song = Song(16000, 6, true, true, true);
  const std::vector<short> sound = ToShorts(song);
  const std::vector<short> right = Interleaved(std::vector<short>(sound.size()), sound);
  AudioMusicDetector detector;
  detector.Enable(true);
  ProcessFrames(detector, right, 16000, 2);
  EXPECT_TRUE(detector.IsMusic());
}

// A second channel that comes later begins as the first one, without an onset of its own.
TEST(AudioMusicDetectorTest, GoesOnWhenTheChannelsChange) {
  const Doubles song = Song(16000, 6, true, true, true);
  AudioMusicDetector detector;
  detector.Enable(true);
  Listen(detector, song, 16000, 1);
  ASSERT_TRUE(detector.IsMusic());
  EXPECT_EQ(Listen(detector, song, 16000, 2).changes, 0);
  EXPECT_EQ(Listen(detector, song, 16000, 1).changes, 0);
}

TEST(AudioMusicDetectorTest, SaysNoWhileOffAndStartsAnew) {
  const Doubles song = Song(16000, 5, true, true, true);
  AudioMusicDetector detector;
  Listen(detector, song, 16000, 1);
  EXPECT_FALSE(detector.IsMusic());
  detector.Enable(true);
  Listen(detector, song, 16000, 1);
  EXPECT_TRUE(detector.IsMusic());
  detector.Enable(false);
  EXPECT_FALSE(detector.IsMusic());
}

TEST(AudioMusicDetectorTest, HearsTheSameInBlocksOfAnyLength) {
  const std::vector<short> samples = ToShorts(Song(16000, 4, true, false, false));
  std::vector<size_t> turns;
  for (const size_t length : {1u, 160u, 1000u, 5292u}) {
    AudioMusicDetector detector;
    detector.Enable(true);
    size_t turn = 0;
    for (size_t at = 0; at < samples.size() && turn == 0; at += length) {
      zuwebrtc::AudioFrame frame;
      frame.sample_rate_hz_ = 16000;
      frame.num_channels_ = 1;
      frame.samples_per_channel_ = static_cast<int>(std::min(length, samples.size() - at));
      std::copy_n(&samples[at], frame.samples_per_channel_, frame.data_);
      detector.Process(frame);
      if (detector.IsMusic()) turn = at + length;
    }
    turns.push_back(turn);
  }
  EXPECT_GT(turns[0], 16000u);
  for (const size_t turn : turns) EXPECT_LE(turn - turns[0], 5292u);
}

TEST(AudioMusicDetectorTest, LeavesTheFrameAloneAndAllocatesNothing) {
  AudioMusicDetector detector;
  detector.Enable(true);
  zuwebrtc::AudioFrame frame;
  frame.sample_rate_hz_ = 44100;
  frame.num_channels_ = 2;
  frame.samples_per_channel_ = 441;
  for (int i = 0; i < 882; ++i) frame.data_[i] = static_cast<short>(i * 37 % 20000 - 10000);
  const std::vector<short> before(frame.data_, frame.data_ + 882);
  detector.Process(frame);
  const size_t allocations = AllocationCount();
  for (int i = 0; i < 500; ++i) detector.Process(frame);
  EXPECT_EQ(AllocationCount(), allocations);
  EXPECT_EQ(std::vector<short>(frame.data_, frame.data_ + 882), before);
}

TEST(AudioMusicDetectorTest, MeetsNoTinyNumbersInTheSilenceAfterASound) {
  TinyNumbers tinyNumbers;
  AudioMusicDetector detector;
  detector.Enable(true);
  Listen(detector, Song(48000, 1, true, true, true), 48000, 1);
  tinyNumbers.Forget();
  Listen(detector, Doubles(48000 * 4), 48000, 1);
  EXPECT_FALSE(tinyNumbers.WereMet());
}

TEST(AudioMusicDetectorTest, PassesOverFramesThatCannotBe) {
  CapturedStderr log;
  AudioMusicDetector detector;
  detector.Enable(true);
  zuwebrtc::AudioFrame frame;
  for (const int rate : {-1, 0, 1, 8000, 44100, 192000, 400000}) {
    for (const int channels : {-1, 0, 1, 2, 20}) {
      for (const int samples : {-1, 0, 1, 2646, 5292, 5293}) {
        frame.sample_rate_hz_ = rate;
        frame.num_channels_ = channels;
        frame.samples_per_channel_ = samples;
        detector.Process(frame);
      }
    }
  }
  EXPECT_FALSE(detector.IsMusic());
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
}

}  // namespace
