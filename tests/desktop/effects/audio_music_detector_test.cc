#include "engine_api/effects/audio_music_detector.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "music_sounds.h"
#include "music_verdict.h"
#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

TEST(AudioMusicDetectorTest, TellsMusicFromSpeechAtEveryRate) {
  for (const int rate : {8000, 16000, 22050, 32000, 44100, 48000}) {
    for (const int channels : {1, 2}) {
      const Verdict music = Listen(Song(rate, 12, true, true, true), rate, channels);
      const Verdict speech = Listen(Speech(rate, 12), rate, channels);
      EXPECT_GT(music.share, 0.97) << rate << " x " << channels;
      EXPECT_LE(music.changes, 1) << rate << " x " << channels;
      EXPECT_LT(speech.share, 0.03) << rate << " x " << channels;
      EXPECT_LE(speech.changes, 2) << rate << " x " << channels;
    }
  }
}

TEST(AudioMusicDetectorTest, KnowsMusicByItsTonesOrByItsBeat) {
  EXPECT_GT(Listen(Song(16000, 12, true, false, false), 16000).share, 0.9) << "chords";
  EXPECT_GT(Listen(Song(16000, 12, false, true, false), 16000).share, 0.9) << "a tune";
  EXPECT_GT(Listen(Song(16000, 12, false, false, true), 16000).share, 0.9) << "drums";
}

TEST(AudioMusicDetectorTest, KnowsALoneInstrumentThatRests) {
  EXPECT_GT(Listen(Wind(16000, 15), 16000).share, 0.8);
}

TEST(AudioMusicDetectorTest, TakesNeitherSilenceNorNoiseForMusic) {
  for (const double peak : {0.0, 0.0001, 0.01, 0.5}) {
    const Verdict verdict = Listen(WhiteNoise(16000 * 8, peak, 1), 16000);
    EXPECT_EQ(verdict.share, 0) << peak;
    EXPECT_EQ(verdict.changes, 0) << peak;
  }
}

// Low rumble changes more from block to block than white noise.
TEST(AudioMusicDetectorTest, TakesNoColouredNoiseForMusic) {
  Doubles noise = WhiteNoise(16000 * 8, 0.02, 1);
  for (size_t i = 1; i < noise.size(); ++i) noise[i] += 0.98 * noise[i - 1];
  EXPECT_EQ(Listen(noise, 16000).share, 0);
}

TEST(AudioMusicDetectorTest, DecidesWithin3Seconds) {
  AudioMusicDetector detector;
  detector.Enable(true);
  Listen(detector, Song(16000, 3, true, true, true), 16000, 1);
  EXPECT_TRUE(detector.IsMusic());
}

// Of less than that nothing is decided, not even of the clearest music.
TEST(AudioMusicDetectorTest, DecidesAfterASecondAndAHalf) {
  AudioMusicDetector detector;
  detector.Enable(true);
  const Doubles song = Song(16000, 2, true, true, true);
  Listen(detector, Doubles(song.begin(), song.begin() + 16000 * 14 / 10), 16000, 1);
  EXPECT_FALSE(detector.IsMusic());
  Listen(detector, Doubles(song.begin() + 16000 * 14 / 10, song.end()), 16000, 1);
  EXPECT_TRUE(detector.IsMusic());
}

TEST(AudioMusicDetectorTest, EndsMusicInSilence) {
  AudioMusicDetector detector;
  detector.Enable(true);
  Listen(detector, Song(16000, 5, true, true, true), 16000, 1);
  ASSERT_TRUE(detector.IsMusic());
  Listen(detector, Doubles(16000 * 2), 16000, 1);
  EXPECT_FALSE(detector.IsMusic());
}

TEST(AudioMusicDetectorTest, FollowsAChangeFromMusicToSpeech) {
  AudioMusicDetector detector;
  detector.Enable(true);
  Listen(detector, Song(16000, 6, true, true, true), 16000, 1);
  ASSERT_TRUE(detector.IsMusic());
  Listen(detector, Speech(16000, 6), 16000, 1);
  EXPECT_FALSE(detector.IsMusic());
}

// Talk over a song so quiet that it is nearly nothing but talk: what was decided stays until the
// sound speaks clearly for the other, and no longer than that.
TEST(AudioMusicDetectorTest, DoesNotFlutterOnTheBorder) {
  const Doubles song = Song(16000, 16, true, true, true);
  const Doubles talk = Speech(16000, 16);
  for (const double share : {0.032, 0.04}) {
    Doubles mix;
    for (size_t i = 0; i < talk.size(); ++i) {
      mix.push_back(share * song[i] + (1 - share) * talk[i]);
    }
    EXPECT_EQ(Listen(mix, 16000).changes, 2) << share;
  }
}

}  // namespace
