// Which cases run after which.

#include "suite/case_order.h"

#include <gmock/gmock.h>

#include "base/usage_error.h"

namespace {

using host::CaseOrder;
using host::SuiteCase;

std::string Message(const std::vector<SuiteCase>& cases) {
  try {
    const CaseOrder order(cases);
  } catch (const host::UsageError& error) {
    return error.message;
  }
  return "no error";
}

SuiteCase Case(const std::string& id, std::vector<std::string> after = {}) {
  return {.id = id, .after = std::move(after), .at = "s.toml:" + std::to_string(id.size()) + ": "};
}

TEST(CaseOrder, FollowsWhatIsNamedAndWhatMustBeEqual) {
  std::vector<SuiteCase> cases = {Case("c", {"b", "a"}), Case("a"), Case("b", {"a"})};
  cases[2].sameAs = "a";
  const CaseOrder order(cases);
  EXPECT_THAT(order.Before(0), testing::ElementsAre(2u, 1u));
  EXPECT_THAT(order.Before(1), testing::IsEmpty());
  EXPECT_THAT(order.Before(2), testing::ElementsAre(1u, 1u));
  EXPECT_EQ(order.Find("b"), 2u);
}

TEST(CaseOrder, RefusesACaseThatIsNotThere) {
  EXPECT_EQ(Message({Case("abcd"), Case("x", {"abce"})}),
            "s.toml:1: after: no case is called \"abce\"; did you mean \"abcd\"?");
  EXPECT_EQ(Message({Case("x", {"quite"})}), "s.toml:1: after: no case is called \"quite\"");
}

TEST(CaseOrder, RefusesTwoCasesOfOneId) {
  std::vector<SuiteCase> cases = {Case("ab"), Case("ab")};
  EXPECT_EQ(Message(cases), "s.toml:2: two cases have the id \"ab\"");
  cases[0].at = "s.toml:1:6: ";
  EXPECT_EQ(Message(cases), "s.toml:2: two cases have the id \"ab\"; the other is at s.toml:1:6");
}

TEST(CaseOrder, RefusesCirclesAndShowsThem) {
  EXPECT_EQ(Message({Case("a", {"a"})}),
            "s.toml:1: cases follow each other in a circle: a after a");
  EXPECT_EQ(Message({Case("start", {"b"}), Case("b", {"cc"}), Case("cc", {"d"}), Case("d", {"b"})}),
            "s.toml:1: cases follow each other in a circle: b after cc after d after b");
}

TEST(CaseOrder, TakesLongChains) {
  std::vector<SuiteCase> cases = {Case("0")};
  for (int i = 1; i < 100000; ++i) {
    cases.push_back(Case(std::to_string(i), {std::to_string(i - 1)}));
  }
  EXPECT_EQ(Message(cases), "no error");
}

}  // namespace
