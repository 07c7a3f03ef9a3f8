#include "guards/rules.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(GuardRules, EveryGuardIsFoundByItsName) {
  for (size_t i = 0; i < kGuards; ++i) {
    const auto guard = static_cast<Guard>(i);
    EXPECT_EQ(FindGuard(GuardName(guard)), guard) << GuardName(guard);
  }
  EXPECT_STREQ(GuardName(Guard::kSilent), "silent");
  EXPECT_STREQ(GuardName(Guard::kTruePeak), "true_peak");
  EXPECT_STREQ(GuardName(Guard::kEngineSaid), "engine_said");
  EXPECT_EQ(FindGuard("loud"), std::nullopt);
}

TEST(GuardRules, FiveGuardsFailUnlessTheRulesSayOtherwise) {
  const GuardRules rules;
  std::string fail;
  for (size_t i = 0; i < kGuards; ++i) {
    const auto guard = static_cast<Guard>(i);
    if (rules[guard] == GuardAction::kFail) fail += std::string(GuardName(guard)) + " ";
    EXPECT_NE(rules[guard], GuardAction::kOff) << GuardName(guard);
  }
  EXPECT_EQ(fail, "silent not_finite clipped dropout length ");
}

}  // namespace
}  // namespace host
