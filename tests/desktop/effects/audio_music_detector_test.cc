#include "engine_api/effects/audio_music_detector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "process_frames.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr double kPi = std::numbers::pi;

// Adds a note of falling harmonics from a time on.
void AddNote(Doubles& sound, int rate, double at, double frequency, double seconds, double level) {
  const auto start = static_cast<size_t>(at * rate);
  const auto frames = static_cast<size_t>(seconds * rate);
  for (size_t i = 0; i < frames && start + i < sound.size(); ++i) {
    const double t = static_cast<double>(i) / rate;
    const double envelope = std::min(1.0, t * 100) * std::exp(-2 * t);
    for (int k = 1; k < 9 && k * frequency < 0.45 * rate; ++k) {
      sound[start + i] += level * envelope / k * std::sin(2 * kPi * k * frequency * t);
    }
  }
}

void AddDrum(Doubles& sound, int rate, double at, bool snare) {
  static std::mt19937 random(1);
  const auto start = static_cast<size_t>(at * rate);
  for (size_t i = 0; i < static_cast<size_t>(rate / 5) && start + i < sound.size(); ++i) {
    const double t = static_cast<double>(i) / rate;
    const double noise = static_cast<double>(random()) / 2147483648.0 - 1;
    sound[start + i] += snare ? 0.3 * noise * std::exp(-20 * t)
                              : 0.5 * std::sin(2 * kPi * 55 * t) * std::exp(-10 * t);
  }
}

constexpr double kChords[4][3] = {
    {262, 330, 392}, {220, 262, 330}, {175, 220, 262}, {196, 247, 294}};

// Seconds of a song: chords and a tune over drums, each part if wanted.
Doubles Song(int rate, double seconds, bool chords, bool tune, bool drums) {
  Doubles sound(static_cast<size_t>(seconds * rate));
  for (int beat = 0; beat * 0.5 < seconds; ++beat) {
    const double* chord = kChords[beat / 4 % 4];
    if (chords && beat % 2 == 0) {
      for (int i = 0; i < 3; ++i) AddNote(sound, rate, beat * 0.5, chord[i], 0.95, 0.1);
    }
    if (tune) AddNote(sound, rate, beat * 0.5, 2 * chord[beat * 7 % 3], 0.45, 0.15);
    if (drums) AddDrum(sound, rate, beat * 0.5, beat % 2 == 1);
  }
  return sound;
}

// A lone wind instrument without a beat in a quiet room: notes with vibrato and breath that slide
// in, and rests.
Doubles Wind(int rate, double seconds) {
  constexpr double kScale[] = {523, 587, 659, 784, 880};
  std::mt19937 random(3);
  const auto uniform = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  Doubles sound = WhiteNoise(static_cast<int>(seconds * rate), 0.001, 1);
  double phase = 0;
  for (double at = 0; at < seconds;) {
    const double length = uniform(0.25, 0.7), frequency = kScale[random() % 5];
    const auto start = static_cast<size_t>(at * rate);
    for (size_t i = 0; i < static_cast<size_t>(length * rate) && start + i < sound.size(); ++i) {
      const double t = static_cast<double>(i) / rate;
      const double bend = 1 - 0.05 * std::exp(-14 * t) + 0.01 * std::sin(2 * kPi * 5.5 * t);
      phase += 2 * kPi * frequency * bend / rate;
      const double envelope = std::min({1.0, 25 * t, 20 * (length - t)});
      sound[start + i] =
          envelope * (0.2 * std::sin(phase) + 0.03 * std::sin(2 * phase) + 0.01 * uniform(-1, 1));
    }
    at += length + (random() % 3 == 0 ? uniform(0.3, 0.7) : 0);
  }
  return sound;
}

// Something like speech: syllables of gliding pitch and changing colour, hisses, pauses, no beat.
Doubles Speech(int rate, double seconds) {
  std::mt19937 random(7);
  const auto uniform = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  Doubles sound(static_cast<size_t>(seconds * rate));
  double phase = 0;
  for (double at = 0; at < seconds;) {
    const double length = uniform(0.08, 0.25), pitch = uniform(90, 180), glide = uniform(-120, 120);
    const double first = uniform(300, 800), second = uniform(900, 2400);
    const bool hiss = random() % 4 == 0;
    const auto start = static_cast<size_t>(at * rate);
    double before = 0;
    for (size_t i = 0; i < static_cast<size_t>(length * rate) && start + i < sound.size(); ++i) {
      const double t = static_cast<double>(i) / rate;
      const double envelope = 0.2 * std::sin(kPi * t / length);
      if (hiss) {
        const double noise = uniform(-1, 1);
        sound[start + i] = envelope * 0.4 * (noise - before);
        before = noise;
        continue;
      }
      phase += 2 * kPi * std::max(60.0, pitch + glide * t) / rate;
      for (int k = 1; k < 25 && k * pitch < 0.4 * rate; ++k) {
        const double f = k * pitch;
        const double gain = std::exp(-std::pow((f - first) / 150, 2)) +
                            0.5 * std::exp(-std::pow((f - second) / 200, 2)) + 0.02;
        sound[start + i] += envelope * gain * std::sin(k * phase);
      }
    }
    at += length + (random() % 5 == 0 ? uniform(0.2, 0.6) : uniform(0, 0.06));
  }
  return sound;
}

struct Verdict {
  double share = 0;  // Of the blocks after 3 s that count as music.
  int changes = 0;   // Of the decision, all in all.
};

// What a detector says of a sound. Each channel after the first has `phase` times the first one.
Verdict Listen(AudioMusicDetector& detector, const Doubles& sound, int rate, int channels,
               int phase = 1) {
  const std::vector<short> samples = ToShorts(sound);
  Verdict verdict;
  int blocks = 0, music = 0;
  bool last = detector.IsMusic();
  const auto frames = static_cast<size_t>(rate / 100);
  for (size_t at = 0; at + frames <= samples.size(); at += frames) {
    zuwebrtc::AudioFrame frame;
    frame.sample_rate_hz_ = rate;
    frame.num_channels_ = channels;
    frame.samples_per_channel_ = rate / 100;
    for (size_t i = 0; i < frames; ++i) {
      for (size_t c = 0; c < static_cast<size_t>(channels); ++c) {
        const int sample = samples[at + i] * (c == 0 ? 1 : phase);
        frame.data_[i * static_cast<size_t>(channels) + c] = static_cast<short>(sample);
      }
    }
    detector.Process(frame);
    verdict.changes += detector.IsMusic() != last ? 1 : 0;
    last = detector.IsMusic();
    if (at < frames * 300) continue;
    ++blocks;
    music += last ? 1 : 0;
  }
  verdict.share = static_cast<double>(music) / std::max(1, blocks);
  return verdict;
}

Verdict Listen(const Doubles& sound, int rate, int channels = 1) {
  AudioMusicDetector detector;
  detector.Enable(true);
  return Listen(detector, sound, rate, channels);
}

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
