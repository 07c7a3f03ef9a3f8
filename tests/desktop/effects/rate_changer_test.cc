#include "engine_api/effects/rate_changer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/voice.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

// Passes in[begin..end) through in blocks of 10 ms.
Shorts Pass(RateChanger& changer, Shorts& in, size_t begin, size_t end, int rate, int channels) {
  const auto block = static_cast<size_t>(rate / 100 * channels);
  Shorts out;
  std::string bytes = "whatever stood there before";
  for (size_t done = begin; done + block <= end; done += block) {
    changer.Process(&in[done], rate / 100, channels, bytes);
    const size_t length = bytes.size() / sizeof(short);
    out.resize(out.size() + length);
    if (length > 0) memcpy(&out[out.size() - length], bytes.data(), length * sizeof(short));
  }
  return out;
}

void Start(RateChanger& changer, double ratio, int rate, int channels) {
  changer.SetEnabled(true);
  changer.SetRatio(ratio);
  changer.SetFsAndCh(rate, channels);
}

TEST(RateChanger, SweepsWithEachSegmentOfTheRightLength) {
  for (const bool keepPitch : {true, false}) {
    for (const int rate : {8000, 44100}) {
      for (const int channels : {1, 2}) {
        Shorts in = SungNote(220, rate, 25, channels);
        RateChanger changer(keepPitch);
        Start(changer, 1, rate, channels);
        const size_t segment = static_cast<size_t>(5 * rate * channels);
        size_t begin = 0;
        for (const double ratio : {1.0, 2.0, 3.0, 2.0, 1.0}) {
          changer.SetRatio(ratio);
          const Shorts out = Pass(changer, in, begin, begin + segment, rate, channels);
          const double share = static_cast<double>(out.size()) / static_cast<double>(segment);
          EXPECT_NEAR(share * ratio, 1, 0.015) << ratio << ", " << rate << " Hz, " << keepPitch;
          const double pitch = keepPitch ? 220 : 220 * ratio;
          EXPECT_NEAR(CentsOff(out, pitch, rate, channels), 0, 5) << ratio;
          begin += segment;
        }
      }
    }
  }
}

// How much of the input the output is behind, at most, beyond the block of 10 ms that has just
// come.
TEST(RateChanger, KeepsNoMoreInsideThanItsHeaderSays) {
  for (const double ratio : {0.25, 0.5, 1.0, 1.5, 1.61, 2.0, 3.0, 4.0}) {
    for (const int rate : {8000, 44100}) {
      Shorts in = Babble(rate, 4);
      RateChanger changer(true);
      Start(changer, ratio, rate, 1);
      const auto block = static_cast<size_t>(rate / 100);
      size_t given = 0;
      double most = 0;
      for (size_t done = block; done <= in.size(); done += block) {
        given += Pass(changer, in, done - block, done, rate, 1).size();
        const double behind = static_cast<double>(done) - static_cast<double>(given) * ratio;
        most = std::max(most, 1000 * behind / rate);
      }
      EXPECT_LE(most, 100) << ratio << " at " << rate;
      if (ratio == 1) {
        EXPECT_EQ(most, 0);
      }
    }
  }
}

TEST(RateChanger, ChangesTheSpeedWithoutAJump) {
  Shorts in = SungNote(220, 44100, 12);
  RateChanger changer(true);
  Start(changer, 1, 44100, 1);
  Shorts out;
  size_t begin = 0;
  for (const double ratio : {1.0, 2.0, 0.5, 1.0, 3.0, 0.25}) {
    changer.SetRatio(ratio);
    const Shorts segment = Pass(changer, in, begin, begin + 88200, 44100, 1);
    out.insert(out.end(), segment.begin(), segment.end());
    begin += 88200;
  }
  EXPECT_LE(LargestStep(out), 1.02 * LargestStep(in));
  EXPECT_NEAR(CentsOff(out, 220, 44100), 0, 5);
}

// Whatever their phase, the channels are joined where one alone would be.
TEST(RateChanger, HearsChannelsThatCancelEachOther) {
  Shorts mono = Babble(16000, 4);
  const Shorts silence(mono.size());
  for (const double ratio : {0.5, 2.0}) {
    RateChanger alone(true);
    Start(alone, ratio, 16000, 1);
    const Shorts expected = Pass(alone, mono, 0, mono.size(), 16000, 1);
    for (const bool left : {true, false}) {
      Shorts stereo = Interleaved(left ? mono : silence, Opposed(mono));
      RateChanger changer(true);
      Start(changer, ratio, 16000, 2);
      const Shorts out = Pass(changer, stereo, 0, stereo.size(), 16000, 2);
      EXPECT_EQ(Channel(out, 2, 1), Opposed(expected)) << ratio << (left ? "" : ", right alone");
    }
  }
}

// A voice that rises an octave a second still does so at the speed that was asked for.
TEST(RateChanger, PlaysARisingToneAsSlowlyAsAskedFor) {
  Shorts in;
  double phase = 0;
  for (int i = 0; i < 16000 * 2; ++i) {
    phase += 2 * M_PI * 200 * std::exp2(i / 16000.0) / 16000;
    in.push_back(static_cast<short>(std::lrint(12000 * std::sin(phase))));
  }
  for (const double ratio : {0.25, 0.3, 0.4, 0.6}) {
    RateChanger changer(true);
    Start(changer, ratio, 16000, 1);
    const Shorts out = Pass(changer, in, 0, in.size(), 16000, 1);
    // Where the output has played the first half of the input, it has risen by one octave.
    const auto middle = static_cast<size_t>(16000 / ratio);
    int crossings = 0;
    for (size_t i = middle - 800; i < middle + 800; ++i) crossings += out[i] < 0 && out[i + 1] >= 0;
    EXPECT_NEAR(crossings * 10, 400, 30) << ratio;
  }
}

TEST(RateChanger, PassesSamplesWhileDisabledAndAtRatioOne) {
  Shorts in = SungNote(220, 16000, 2);
  RateChanger disabled(true);
  disabled.SetRatio(2);
  disabled.SetFsAndCh(16000, 1);
  EXPECT_EQ(Pass(disabled, in, 0, in.size(), 16000, 1), in);
  RateChanger unity(true);
  Start(unity, 1, 16000, 1);
  EXPECT_EQ(Pass(unity, in, 0, in.size(), 16000, 1), in);
}

TEST(RateChanger, GivesNothingBeforeAFormatIsSet) {
  CapturedStderr log;
  RateChanger changer(true);
  changer.SetEnabled(true);
  Shorts in(160);
  std::string out = "old";
  changer.Process(in.data(), 160, 1, out);
  EXPECT_THAT(out, IsEmpty());
  out = "old";
  changer.Process(in.data(), 160, 1, out);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(log.Lines(), SizeIs(1));
}

TEST(RateChanger, GivesNothingInAFormatThatCannotBeDone) {
  for (const bool keepPitch : {true, false}) {
    for (const auto& [rate, channels] :
         {std::pair{0, 1}, {192000, 2}, {44100, 0}, {44100, 20}, {-8000, 1}}) {
      CapturedStderr log;
      RateChanger changer(keepPitch);
      Start(changer, 1, rate, channels);
      Shorts in(20 * 441);
      std::string out = "old";
      for (int call = 0; call < 3; ++call) changer.Process(in.data(), 441, channels, out);
      EXPECT_THAT(out, IsEmpty());
      EXPECT_THAT(log.Lines(), SizeIs(1)) << rate << ", " << channels;
    }
  }
}

TEST(RateChanger, RefusesABlockOfOtherChannels) {
  CapturedStderr log;
  RateChanger changer(true);
  Start(changer, 1, 16000, 1);
  Shorts in(320, 5);
  std::string out;
  changer.Process(in.data(), 160, 2, out);
  EXPECT_THAT(out, IsEmpty());
  changer.Process(in.data(), 160, 1, out);
  EXPECT_THAT(out, SizeIs(320));
}

TEST(RateChanger, TakesAnEmptyBlockForNoFault) {
  CapturedStderr log;
  RateChanger changer(true);
  Start(changer, 2, 16000, 1);
  Shorts in(1);
  std::string out = "old";
  changer.Process(in.data(), 0, 1, out);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(log.Lines(), IsEmpty());
  changer.Process(in.data(), -1, 1, out);
  EXPECT_THAT(log.Lines(), SizeIs(1)) << "one of fewer samples than none is";
}

TEST(RateChanger, ClampsTheRatio) {
  Shorts in = SungNote(220, 8000, 10);
  for (const auto& [asked, used] : {std::pair{100.0, 4.0}, {0.0, 0.25}, {-3.0, 0.25}}) {
    for (const bool keepPitch : {true, false}) {
      RateChanger changer(keepPitch);
      Start(changer, asked, 8000, 1);
      const Shorts out = Pass(changer, in, 0, in.size(), 8000, 1);
      const double share = static_cast<double>(out.size()) / static_cast<double>(in.size());
      EXPECT_NEAR(share * used, 1, 0.015) << asked << (keepPitch ? "" : " as a tape");
    }
  }
  CapturedStderr log;
  RateChanger changer(true);
  Start(changer, std::numeric_limits<double>::quiet_NaN(), 8000, 1);
  EXPECT_EQ(Pass(changer, in, 0, in.size(), 8000, 1), in);
  EXPECT_THAT(log.Lines(), SizeIs(1));
}

// What a tape's filter makes of the edges of a full square lies beyond full scale.
TEST(RateChanger, ClipsAndDoesNotWrapRoundAsATape) {
  Shorts square(16000);
  for (size_t i = 0; i < square.size(); ++i) square[i] = i / 100 % 2 == 0 ? 32767 : -32768;
  for (const double ratio : {0.7, 1.3}) {
    RateChanger changer(false);
    Start(changer, ratio, 16000, 1);
    const Shorts out = Pass(changer, square, 0, square.size(), 16000, 1);
    // A sample that wraps round changes its sign amid a half-wave.
    size_t shortest = out.size();
    size_t turned = 200;
    for (size_t i = 201; i < out.size(); ++i) {
      if ((out[i] < 0) == (out[i - 1] < 0)) continue;
      if (turned > 200) shortest = std::min(shortest, i - turned);
      turned = i;
    }
    EXPECT_NEAR(static_cast<double>(shortest) * ratio, 100, 5) << ratio;
    EXPECT_EQ(*std::max_element(out.begin(), out.end()), 32767);
  }
}

TEST(RateChanger, GivesTheSameHoweverTheInputIsCut) {
  Shorts in = Interleaved(Babble(16000, 4), SungNote(220, 16000, 4));
  for (const bool keepPitch : {true, false}) {
    Shorts whole;
    for (const int block : {160, 1000, 8000}) {
      RateChanger changer(keepPitch);
      Start(changer, 1.5, 16000, 2);
      std::string bytes;
      Shorts out;
      for (int done = 0; done + block <= 64000; done += block) {
        changer.Process(&in[static_cast<size_t>(2 * done)], block, 2, bytes);
        const auto* samples = reinterpret_cast<const short*>(bytes.data());
        out.insert(out.end(), samples, samples + bytes.size() / sizeof(short));
      }
      if (whole.empty()) whole = out;
      EXPECT_EQ(out, whole) << block << (keepPitch ? "" : " as a tape");
    }
  }
}

}  // namespace
