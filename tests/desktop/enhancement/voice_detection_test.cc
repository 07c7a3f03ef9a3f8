#include "engine_api/enhancement/voice_detection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "desktop/enhancement/signals.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/signals.h"

namespace {

using Kinds = std::vector<VADResultKind>;

constexpr int kRates[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000};

// The answers to blocks of `count` samples; a part-block at the end is left out.
Kinds Detect(CVoiceDetectionEx& detector, Samples samples, size_t count) {
  Kinds kinds;
  for (size_t i = 0; i + count <= samples.size(); i += count) {
    kinds.push_back(detector.Detect(samples.data() + i, static_cast<unsigned>(count)));
  }
  return kinds;
}

Kinds Detect(int rate, const Samples& samples, VoiceDetectionMode mode) {
  CVoiceDetectionEx detector(static_cast<unsigned>(rate), 1);
  detector.SetVoiceDetectionMode(mode);
  return Detect(detector, samples, static_cast<size_t>(rate / 100));
}

bool IsSound(VADResultKind kind) {
  return kind == vadResultIsActive || kind == vadResultIsActiveWithoutVoice;
}

double ShareOfSound(const Kinds& kinds) {
  return static_cast<double>(std::count_if(kinds.begin(), kinds.end(), IsSound)) /
         static_cast<double>(kinds.size());
}

struct Error {
  double missed = 0;   // Share of the speech.
  double falsely = 0;  // Share of the rest.
};

Error Measure(const Kinds& kinds, const std::vector<bool>& marks, size_t frame) {
  double missed = 0;
  double falsely = 0;
  double speech = 0;
  const size_t count = kinds.size() * frame;
  for (size_t i = 0; i < count; ++i) {
    const bool sound = IsSound(kinds[i / frame]);
    speech += marks[i];
    missed += marks[i] && !sound;
    falsely += !marks[i] && sound;
  }
  return {missed / speech, falsely / (static_cast<double>(count) - speech)};
}

TEST(VoiceDetection, FindsSpeechInQuietAtEveryRate) {
  for (const int rate : kRates) {
    const auto frame = static_cast<size_t>(rate / 100);
    const Kinds kinds = Detect(rate, Speech(rate, 12, 1500), voiceDetectionVeryLowLikelihood);
    const Error error = Measure(kinds, SpeechMarks(rate, 12), frame);
    EXPECT_LT(error.missed, 0.03) << rate;
    EXPECT_LT(error.falsely, 0.15) << rate;
  }
}

TEST(VoiceDetection, FindsSpeechInNoiseAtEveryRate) {
  for (const int rate : kRates) {
    const Samples speech = Speech(rate, 12, 1500);
    const Samples noisy = Mix(speech, Noise(speech.size(), 470, 1));
    const Kinds kinds = Detect(rate, noisy, voiceDetectionVeryLowLikelihood);
    const Error error = Measure(kinds, SpeechMarks(rate, 12), static_cast<size_t>(rate / 100));
    EXPECT_LT(error.missed, 0.05) << rate;
    EXPECT_LT(error.falsely, 0.35) << rate;
  }
}

TEST(VoiceDetection, FindsSpeechThatComesWithoutAnythingBefore) {
  Samples speech = Speech(16000, 12, 1500);
  std::vector<bool> marks = SpeechMarks(16000, 12);
  speech.erase(speech.begin(), speech.begin() + 16000);
  marks.erase(marks.begin(), marks.begin() + 16000);
  const Kinds kinds = Detect(16000, speech, voiceDetectionVeryLowLikelihood);
  EXPECT_LT(Measure(kinds, marks, 160).missed, 0.08);
}

TEST(VoiceDetection, CallsSteadyNoiseNoSoundAtAnyLevel) {
  for (const int mode : {0, 1, 2, 3}) {
    for (const double level : {3.0, 30.0, 300.0, 3000.0}) {
      const Kinds kinds =
          Detect(16000, Noise(160000, level, 2), static_cast<VoiceDetectionMode>(mode));
      EXPECT_LT(ShareOfSound(kinds), mode == 0 ? 0.005 : 0.06) << mode << " " << level;
    }
  }
}

TEST(VoiceDetection, AdaptsToNoiseThatBegins) {
  Samples noise = Noise(160000, 1000, 3);
  std::fill_n(noise.begin(), 32000, short{0});
  const Kinds afterSilence = Detect(16000, noise, voiceDetectionVeryLowLikelihood);
  EXPECT_EQ(ShareOfSound({afterSilence.begin() + 250, afterSilence.end()}), 0);

  const Samples background = Noise(32000, 30, 4);
  std::copy(background.begin(), background.end(), noise.begin());
  const Kinds louder = Detect(16000, noise, voiceDetectionVeryLowLikelihood);
  EXPECT_TRUE(IsSound(louder[205]));
  EXPECT_EQ(ShareOfSound({louder.begin() + 250, louder.end()}), 0);
}

TEST(VoiceDetection, TellsClapsFromVoiceAndFromNoise) {
  const Samples background = Noise(96000, 20, 6);
  const Kinds claps =
      Detect(16000, Mix(Claps(16000, 8000), background), voiceDetectionVeryLowLikelihood);
  EXPECT_GT(std::count(claps.begin(), claps.end(), vadResultIsActiveWithoutVoice), 50);

  const Kinds speech =
      Detect(16000, Mix(Speech(16000, 6, 1500), background), voiceDetectionVeryLowLikelihood);
  EXPECT_EQ(std::count(speech.begin(), speech.end(), vadResultIsActiveWithoutVoice), 0);

  Samples noise = Noise(96000, 3000, 7);
  std::copy_n(background.begin(), 32000, noise.begin());
  const Kinds step = Detect(16000, noise, voiceDetectionHighLikelihood);
  EXPECT_EQ(std::count(step.begin(), step.end(), vadResultIsActiveWithoutVoice), 0);
}

TEST(VoiceDetection, NeverCallsDigitalSilenceActive) {
  Samples speech = Speech(16000, 2.5, 3000);
  const size_t end = speech.size();
  speech.resize(end + 16000);
  const Kinds kinds = Detect(16000, speech, voiceDetectionHighLikelihood);
  EXPECT_TRUE(IsSound(kinds[110]));
  for (size_t i = end / 160; i < kinds.size(); ++i) EXPECT_EQ(kinds[i], vadResultIsPassive);
  for (size_t i = 0; i < 100; ++i) EXPECT_EQ(kinds[i], vadResultIsPassive);
}

TEST(VoiceDetection, IsUnknownUntilTenMillisecondsAreThere) {
  CVoiceDetectionEx detector(16000, 1);
  Samples samples = Noise(160, 1000, 8);
  EXPECT_EQ(detector.Detect(samples.data(), 0), vadResultIsUnknown);
  EXPECT_EQ(detector.Detect(samples.data(), 159), vadResultIsUnknown);
  EXPECT_EQ(detector.Detect(samples.data() + 159, 1), vadResultIsPassive);
}

// Voice in any of them counts for more than another sound, and that for more than none.
TEST(VoiceDetection, AnswersForEveryFrameThatACallCompletes) {
  const Samples speech = Mix(Speech(16000, 6, 1500), Noise(96000, 300, 9));
  const Samples claps = Mix(Claps(16000, 8000), Noise(96000, 20, 6));
  for (const Samples& sound : {speech, claps}) {
    const Kinds frames = Detect(16000, sound, voiceDetectionLowLikelihood);
    for (const size_t count : {1U, 77U, 160U, 240U, 256U, 441U, 480U, 512U, 1024U, 4001U}) {
      CVoiceDetectionEx detector(16000, 1);
      const Kinds kinds = Detect(detector, sound, count);
      VADResultKind last = vadResultIsUnknown;
      for (size_t i = 0; i < kinds.size(); ++i) {
        const auto begin = frames.begin() + static_cast<std::ptrdiff_t>(i * count / 160);
        const auto end = frames.begin() + static_cast<std::ptrdiff_t>((i + 1) * count / 160);
        for (const VADResultKind kind :
             {vadResultIsPassive, vadResultIsActiveWithoutVoice, vadResultIsActive}) {
          if (std::find(begin, end, kind) != end) last = kind;
        }
        ASSERT_EQ(kinds[i], last) << count << " " << i;
      }
    }
  }
}

TEST(VoiceDetection, MixesChannelsDown) {
  const Samples mono = Mix(Speech(8000, 6, 1500), Noise(48000, 300, 10));
  Samples pairs;
  for (const short sample : mono) pairs.insert(pairs.end(), {sample, sample});
  CVoiceDetectionEx stereo(8000, 2);
  EXPECT_EQ(Detect(stereo, pairs, 160), Detect(8000, mono, voiceDetectionLowLikelihood));
}

// A call may end between the channels of a frame.
TEST(VoiceDetection, GoesOnWithAFrameThatIsCut) {
  const Samples mono = Mix(Speech(8000, 3, 1500), Noise(24000, 300, 14));
  Samples pairs;
  for (const short sample : mono) pairs.insert(pairs.end(), {sample, sample});
  CVoiceDetectionEx detector(8000, 2);
  const Kinds cut = Detect(detector, pairs, 1);
  const Kinds whole = Detect(8000, mono, voiceDetectionLowLikelihood);
  for (size_t i = 0; i < whole.size(); ++i) ASSERT_EQ(cut[160 * i + 159], whole[i]) << i;
}

// As a balanced microphone or a centre-cancelled track has them.
TEST(VoiceDetection, HearsChannelsThatCancelEachOther) {
  const Samples mono = Speech(16000, 6, 1500);
  CVoiceDetectionEx alone(16000, 1);
  CVoiceDetectionEx both(16000, 2);
  const Kinds expected = Detect(alone, mono, 160);
  const Kinds heard = Detect(both, Interleaved(mono, Opposed(mono)), 320);
  ASSERT_GT(ShareOfSound(expected), 0.3);
  EXPECT_NEAR(ShareOfSound(heard), ShareOfSound(expected), 0.02);
}

TEST(VoiceDetection, TakesMoreForSpeechInEachMode) {
  const Samples noisy = Mix(Speech(16000, 12, 1500), Noise(192000, 1200, 11));
  double before = 0;
  for (const int mode : {0, 1, 2, 3}) {
    const double share = ShareOfSound(Detect(16000, noisy, static_cast<VoiceDetectionMode>(mode)));
    EXPECT_GT(share, before) << mode;
    before = share;
  }
  EXPECT_EQ(Detect(16000, noisy, voiceDetectionUnknown),
            Detect(16000, noisy, voiceDetectionLowLikelihood));
  CVoiceDetectionEx fresh(16000, 1);
  EXPECT_EQ(Detect(fresh, noisy, 160), Detect(16000, noisy, voiceDetectionLowLikelihood));
}

TEST(VoiceDetection, RefusesOtherModes) {
  CVoiceDetectionEx detector(16000, 1);
  EXPECT_TRUE(detector.SetVoiceDetectionMode(voiceDetectionUnknown));
  EXPECT_TRUE(detector.SetVoiceDetectionMode(voiceDetectionHighLikelihood));
  CapturedStderr log;
  EXPECT_FALSE(detector.SetVoiceDetectionMode(static_cast<VoiceDetectionMode>(-2)));
  EXPECT_EQ(log.Lines().size(), 1u);
}

TEST(VoiceDetection, KnowsNothingOfAFormatThatItDoesNotTake) {
  CapturedStderr log;
  CVoiceDetectionEx noRate(0, 1);
  CVoiceDetectionEx noChannels(16000, 0);
  Samples samples = Noise(1600, 1000, 12);
  EXPECT_TRUE(noRate.SetVoiceDetectionMode(voiceDetectionVeryLowLikelihood));
  EXPECT_EQ(noRate.Detect(samples.data(), 1600), vadResultIsUnknown);
  EXPECT_EQ(noChannels.Detect(samples.data(), 1600), vadResultIsUnknown);
  const std::string text = log.Text();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
}

TEST(VoiceDetection, AllocatesNothingPerBlockAndChangesNoSample) {
  for (const int rate : kRates) {
    Samples samples = Noise(static_cast<size_t>(rate), 1000, 13);
    const Samples before = samples;
    CVoiceDetectionEx detector(static_cast<unsigned>(rate), 1);
    const size_t allocations = AllocationCount();
    detector.Detect(samples.data(), static_cast<unsigned>(samples.size()));
    EXPECT_EQ(AllocationCount(), allocations);
    EXPECT_EQ(samples, before);
  }
}

}  // namespace
