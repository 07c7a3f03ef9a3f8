#include "report_page/guard_text.h"

#include <gtest/gtest.h>

#include "guards/rules.h"

namespace host {
namespace {

Json GuardAt(Guard guard, const Json& at, const Json& channel) {
  return {{"name", GuardName(guard)}, {"file", "out.wav"}, {"at", at}, {"channel", channel}};
}

TEST(GuardSentence, SaysWhatEachGuardFound) {
  const auto words = [](Guard guard) {
    return GuardSentence(GuardAt(guard, Json(), Json()), std::nullopt);
  };
  EXPECT_EQ(words(Guard::kSilent), "out.wav is silent where its input sounds (silent)");
  EXPECT_EQ(words(Guard::kInverted), "out.wav is upside down against the input (inverted)");
  EXPECT_EQ(words(Guard::kDropout), "out.wav falls silent while the input goes on (dropout)");
  EXPECT_EQ(words(Guard::kClick), "out.wav clicks where the input does not (click)");
  EXPECT_EQ(words(Guard::kLevel), "out.wav is louder or softer than it should be (level)");
  EXPECT_EQ(words(Guard::kSwapped), "out.wav has left and right swapped (swapped)");
  EXPECT_EQ(GuardSentence({{"name", GuardName(Guard::kEngineSaid)}}, std::nullopt),
            "The run comes with a line in which the engine refused something (engine_said)");
  EXPECT_EQ(GuardSentence({{"name", "of another bench"}, {"file", "a"}}, std::nullopt),
            "a hits a guard (of another bench)");
}

TEST(GuardSentence, SaysWhenAndInWhichChannel) {
  const auto words = [](const Json& at, const Json& channel, std::optional<double> channels) {
    const std::string text = GuardSentence(GuardAt(Guard::kClick, at, channel), channels);
    const std::string start = "out.wav clicks where the input does not";
    return text.substr(start.size(), text.rfind(' ') - start.size());
  };
  EXPECT_EQ(words(1.256, 0, 2), ", first at 1.26 s on the left");
  EXPECT_EQ(words(1.256, 1, 2), ", first at 1.26 s on the right");
  EXPECT_EQ(words(1.256, 1, 6), ", first at 1.26 s in channel 2");
  EXPECT_EQ(words(1.256, 0, std::nullopt), ", first at 1.26 s in channel 1");
  EXPECT_EQ(words(1.256, 0, 1), ", first at 1.26 s") << "there is one only";
  EXPECT_EQ(words(0, 1, 2), ", on the right");
  EXPECT_EQ(words(0, 2, 3), ", channel 3");
  EXPECT_EQ(words("x", -1, 2), "");
}

}  // namespace
}  // namespace host
