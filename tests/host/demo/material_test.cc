#include "demo/material.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "demo/arithmetic.h"
#include "demo/band.h"
#include "demo/call.h"
#include "demo/demo_all.h"

namespace host {
namespace {

// FNV-1a, 64 bits.
uint64_t Hash(const std::vector<int16_t>& samples) {
  uint64_t hash = 14695981039346656037U;
  for (const int16_t sample : samples) {
    for (const int byte : {sample & 0xFF, sample >> 8 & 0xFF}) {
      hash = (hash ^ static_cast<uint64_t>(byte)) * 1099511628211U;
    }
  }
  return hash;
}

double Power(const std::vector<double>& samples, size_t begin, size_t end) {
  double sum = 0;
  for (size_t i = begin; i < end; ++i) sum += samples[i] * samples[i];
  return sum / static_cast<double>(end - begin);
}

size_t At(double seconds, int rate) { return static_cast<size_t>(seconds * rate); }

// The lag at which two stretches agree best, in samples.
size_t BestLag(const std::vector<double>& late, const std::vector<double>& early, size_t begin,
               size_t end, size_t most) {
  size_t best = 0;
  double greatest = 0;
  for (size_t lag = 0; lag <= most; ++lag) {
    double sum = 0;
    for (size_t i = begin; i < end; ++i) sum += late[i + lag] * early[i];
    if (sum > greatest) best = lag;
    greatest = std::max(greatest, sum);
  }
  return best;
}

TEST(Arithmetic, AgreesWithTheMathematicalLibrary) {
  for (double x = -3; x <= 3; x += 0.0371) {
    EXPECT_NEAR(Sine(x), std::sin(2 * M_PI * x), 1e-9) << x;
    EXPECT_NEAR(Exp(x), std::exp(x), 1e-9 * std::exp(x)) << x;
    EXPECT_NEAR(Gain(10 * x), std::pow(10, x / 2), 1e-8 * std::pow(10, x / 2)) << x;
  }
}

struct Rendering {
  Sound sound;
  int rate;
  int channels;
  uint64_t hash;
};

class EveryRendering : public testing::TestWithParam<Rendering> {};

TEST_P(EveryRendering, IsTheSameEverywhere) {
  const auto& [sound, rate, channels, hash] = GetParam();
  const auto samples = Render(sound, rate, channels);
  EXPECT_EQ(Hash(samples), hash);
  const int peak = std::abs(*std::max_element(
      samples.begin(), samples.end(), [](int a, int b) { return std::abs(a) < std::abs(b); }));
  EXPECT_GT(peak, 8000);
  EXPECT_LT(peak, 32767) << "it clips";
}

INSTANTIATE_TEST_SUITE_P(Material, EveryRendering,
                         testing::Values(Rendering{Sound::kMelody, 44100, 2, 10090892369560670393U},
                                         Rendering{Sound::kSpeech, 16000, 1, 3565602141732504820U},
                                         Rendering{Sound::kNoisy, 16000, 1, 2910773642307451646U},
                                         Rendering{Sound::kSong, 44100, 1, 7275926595659438473U},
                                         Rendering{Sound::kBand, 44100, 2, 12560811665279888508U},
                                         Rendering{Sound::kFar, 16000, 1, 2002284299442180834U},
                                         Rendering{Sound::kNear, 16000, 1, 14406735761293855068U}));

TEST(Material, HasTheFormThatIsAskedFor) {
  EXPECT_EQ(Render(Sound::kSpeech, 8000, 1).size(), size_t{8000} * 12);
  EXPECT_EQ(Render(Sound::kSong, 48000, 2).size(), size_t{48000} * 15 * 2);
  const auto stereo = Render(Sound::kBand, 16000, 2);
  const auto mono = Render(Sound::kBand, 16000, 1);
  ASSERT_EQ(stereo.size(), 2 * mono.size());
  for (size_t i = 0; i < mono.size(); ++i) {
    ASSERT_NEAR(mono[i], (stereo[2 * i] + stereo[2 * i + 1]) / 2.0, 1);
  }
}

TEST(Speech, IsSilentInItsPausesAndNowhereElse) {
  const Speech speech = Speak(16000, 12, 7);
  ASSERT_GT(speech.spoken.size(), 8U);
  double end = 0;
  for (const Stretch& word : speech.spoken) {
    EXPECT_GE(word.begin, end);
    EXPECT_EQ(Power(speech.samples, At(end, 16000) + 1, At(word.begin, 16000)), 0);
    EXPECT_GT(Power(speech.samples, At(word.begin, 16000), At(word.end, 16000)), 1e-4);
    end = word.end;
  }
}

TEST(Song, IsSungAtTheNotesThatItTells) {
  constexpr int kRate = 16000;
  const Song song = Sing(kRate, 15);
  ASSERT_GE(song.notes.size(), 11U);
  for (const SungNote& note : song.notes) {
    if (note.at.end - note.at.begin < 0.3) continue;
    const double pitch = 440 * std::pow(2, (note.midi - 69) / 12.0);
    const size_t begin = At(note.at.begin + 0.06, kRate);
    const auto period = static_cast<size_t>(std::lround(kRate / pitch));
    double best = 0;
    size_t found = 0;
    for (size_t lag = period / 2 + 4; lag < period * 3 / 2; ++lag) {
      double sum = 0;
      for (size_t i = begin; i < begin + 3200; ++i) sum += song.samples[i] * song.samples[i + lag];
      if (sum > best) found = lag;
      best = std::max(best, sum);
    }
    EXPECT_NEAR(static_cast<double>(found), kRate / pitch, 1.0) << note.midi;
  }
}

TEST(Band, BeatsWhereItSays) {
  constexpr int kRate = 16000;
  const BandMusic band = PlayBand(kRate, 15, 120);
  ASSERT_EQ(band.beats.size(), 29U);
  for (size_t i = 1; i < band.beats.size(); ++i) {
    EXPECT_DOUBLE_EQ(band.beats[i] - band.beats[i - 1], 0.5);
  }
  // A beat is louder than what sounds just before it.
  for (const double beat : band.beats) {
    const size_t at = 2 * At(beat, kRate);
    EXPECT_GT(Power(band.samples, at, at + 640), 2 * Power(band.samples, at - 640, at)) << beat;
  }
}

TEST(Call, IsHeardAfterTheDelayThatItTells) {
  constexpr int kRate = 16000;
  const Call call = MakeCall(kRate);
  const size_t lag = BestLag(call.near, call.far, At(1, kRate), At(4, kRate), 4000);
  EXPECT_EQ(lag, At(call.delay, kRate));
  const double ratio = Power(call.near, At(1, kRate), At(9, kRate)) /
                       Power(call.far, At(1, kRate) - lag, At(9, kRate) - lag);
  EXPECT_NEAR(10 * std::log10(ratio), call.echoGain, 1.5);
}

TEST(Call, HasBothTalkOnlyWhereItSays) {
  constexpr int kRate = 8000;
  const Call call = MakeCall(kRate);
  ASSERT_FALSE(call.nearTalk.empty());
  EXPECT_GE(call.nearTalk.front().begin, call.doubleTalk.begin);
  EXPECT_LE(call.nearTalk.back().end, call.doubleTalk.end);
  const Stretch& word = call.nearTalk.front();
  const double alone = Power(call.near, At(1, kRate), At(9, kRate));
  EXPECT_GT(Power(call.near, At(word.begin, kRate), At(word.end, kRate)), alone);
}

TEST(Sentences, StandAboveTheirNoiseByTheLevelInTheirName) {
  const Sentences sentences;
  constexpr int kLevels[] = {0, 5, 10, 15};
  for (const int place : {0, 1, 2, 7}) {
    for (int level = 0; level < 4; ++level) {
      const auto clean = sentences.Clean(3);
      const auto noisy = sentences.Noisy(3, place, level);
      ASSERT_EQ(clean.size(), noisy.size());
      double speech = 0;
      double noise = 0;
      size_t spoken = 0;
      for (size_t i = 0; i < clean.size(); ++i) {
        noise += std::pow(noisy[i] - clean[i], 2);
        speech += std::pow(clean[i], 2);
        if (clean[i] != 0) ++spoken;
      }
      const double ratio =
          speech / static_cast<double>(spoken) / noise * static_cast<double>(clean.size());
      EXPECT_NEAR(10 * std::log10(ratio), kLevels[level], 0.5) << place;
    }
  }
}

TEST(Sentences, DifferFromEachOther) {
  const Sentences sentences;
  EXPECT_NE(Hash(sentences.Clean(0)), Hash(sentences.Clean(10)));
  EXPECT_NE(Hash(sentences.Noisy(0, 1, 2)), Hash(sentences.Noisy(0, 2, 2)));
  EXPECT_NE(Hash(sentences.Noisy(0, 1, 2)), Hash(sentences.Noisy(1, 1, 2)));
}

TEST(DemoTruth, TellsWhatTheSoundsAreMadeOf) {
  const auto truth = nlohmann::json::parse(DemoTruth());
  EXPECT_EQ(truth["band"]["tempo"], 120);
  EXPECT_EQ(truth["band"]["beats"].size(), 29U);
  EXPECT_EQ(truth["call"]["delay"], 0.089);
  EXPECT_EQ(truth["noisy"]["snr"], 10);
  EXPECT_EQ(truth["sentences"]["speech"].size(), 30U);
  EXPECT_EQ(truth["song"]["notes"][0]["midi"], 62);
  EXPECT_EQ(truth["speech"]["speech"].size(), Speak(16000, 12, 7).spoken.size());
}

}  // namespace
}  // namespace host
