#include "engine_api/aec/echo_detection.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/captured_stderr.h"
#include "support/talk.h"

namespace {

int Verdict(const Samples& far, const Samples& near, int rate, int count = 256,
            int maxDelayMs = 500) {
  void* const detector = echo_detection_create(nullptr, rate, maxDelayMs);
  const size_t size = std::min(far.size(), near.size());
  for (size_t at = 0; at < size; at += static_cast<size_t>(count)) {
    const int rest = static_cast<int>(std::min<size_t>(static_cast<size_t>(count), size - at));
    EXPECT_EQ(echo_detection_process(detector, &far[at], &near[at], rest), 0);
  }
  const int verdict = get_echo_detection_result(detector);
  echo_detection_free(detector);
  return verdict;
}

TEST(EchoDetection, FindsEcho) {
  const Samples far = Talk(16000, 8, 1);
  for (const int delay : {5, 90, 400}) {
    EXPECT_EQ(Verdict(far, Echo(far, 16000, delay), 16000), 1) << delay;
    const Samples doubleTalk = Sum(Echo(far, 16000, delay), Talk(16000, 8, 2));
    EXPECT_EQ(Verdict(far, doubleTalk, 16000), 1) << delay;
    const Samples residue = Sum(Echo(far, 16000, delay, -40), Hiss(16000, 8, 3, -70));
    EXPECT_EQ(Verdict(far, residue, 16000), 1) << delay;
  }
}

TEST(EchoDetection, FindsNoneInUnrelatedSpeechNorInSilence) {
  for (unsigned seed = 0; seed < 6; ++seed) {
    const Samples far = Talk(16000, 6, 10 + seed);
    EXPECT_EQ(Verdict(far, Talk(16000, 6, 20 + seed), 16000), 0) << seed;
    EXPECT_EQ(Verdict(far, Hiss(16000, 6, 30 + seed, -40), 16000), 0) << seed;
  }
  EXPECT_EQ(Verdict(Samples(64000), Talk(16000, 4, 40), 16000), 0);
  EXPECT_EQ(Verdict(Talk(16000, 4, 41), Samples(64000), 16000), 0);
  EXPECT_EQ(Verdict({}, {}, 16000), 0);
}

// As of the headers of two files.
TEST(EchoDetection, TakesNoCommonClickAtTheStartForAnEcho) {
  for (const int blocks : {22, 256}) {
    Samples far = Talk(16000, 8, 70);
    Samples near = Talk(16000, 8, 71);
    Samples silence(far.size());
    for (size_t i = 0; i < 22; ++i) {
      far[i] = near[i] = silence[i] =
          static_cast<short>(i % 3 == 0 ? 18770 : 8308 - 1000 * static_cast<int>(i));
    }
    EXPECT_EQ(Verdict(far, near, 16000, blocks), 0);
    EXPECT_EQ(Verdict(silence, near, 16000, blocks), 0);
    EXPECT_EQ(Verdict(far, Echo(far, 16000, 90), 16000, blocks), 1);
  }
}

TEST(EchoDetection, TakesOtherRatesAndAnyCount) {
  for (const int rate : {8000, 48000}) {
    const Samples far = Talk(rate, 5, 50);
    EXPECT_EQ(Verdict(far, Echo(far, rate, 100), rate, 1), 1) << rate;
    EXPECT_EQ(Verdict(far, Talk(rate, 5, 51), rate, 5000), 0) << rate;
  }
}

TEST(EchoDetection, LooksNoFartherThanAsked) {
  const Samples far = Talk(16000, 6, 60);
  const Samples near = Echo(far, 16000, 300);
  EXPECT_EQ(Verdict(far, near, 16000, 256, 400), 1);
  EXPECT_EQ(Verdict(far, near, 16000, 256, 100), 0);
  EXPECT_EQ(Verdict(far, near, 16000, 256, -400), 0);
}

TEST(EchoDetection, LooksForHalfASecondAtMost) {
  const Samples far = Talk(16000, 6, 61);
  EXPECT_EQ(Verdict(far, Echo(far, 16000, 470), 16000, 256, 1000), 1);
  EXPECT_EQ(Verdict(far, Echo(far, 16000, 560), 16000, 256, 1000), 0);
}

TEST(EchoDetection, AnswersNothingWithoutADetector) {
  const short sample = 1;
  CapturedStderr log;
  EXPECT_EQ(echo_detection_create(nullptr, 0, 500), nullptr);
  EXPECT_EQ(log.Lines().size(), 1u);
  for (const int rate : {-1, 7999, 48001}) {
    EXPECT_EQ(echo_detection_create(nullptr, rate, 500), nullptr);
  }
  EXPECT_EQ(echo_detection_process(nullptr, &sample, &sample, 1), -1);
  EXPECT_EQ(get_echo_detection_result(nullptr), 0);
  echo_detection_free(nullptr);

  void* const detector = echo_detection_create(nullptr, 16000, 500);
  EXPECT_EQ(echo_detection_process(detector, nullptr, &sample, 1), -1);
  EXPECT_EQ(echo_detection_process(detector, &sample, nullptr, 1), -1);
  EXPECT_EQ(get_echo_detection_result(detector), 0);
  echo_detection_free(detector);
}

}  // namespace
