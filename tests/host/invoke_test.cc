#include "harness/catalogue/invoke.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string_view>;

std::vector<std::string> g_calls;

void None() { g_calls.push_back("None"); }

int Text(const char* constant, char* changeable) {
  changeable[0] = '!';
  g_calls.push_back(std::string(constant) + "," + changeable);
  return 1;  // Results are of no interest.
}

void Number(int number) { g_calls.push_back(std::to_string(number)); }

void Narrow(int8_t small, unsigned positive) {
  g_calls.push_back(std::to_string(small) + "," + std::to_string(positive));
}

void Flag(bool flag) { g_calls.push_back(flag ? "yes" : "no"); }

class InvokeTest : public testing::Test {
 protected:
  void SetUp() override { g_calls.clear(); }
};

TEST_F(InvokeTest, CallsWithOneWordPerParameter) {
  EXPECT_TRUE(Invoke<None>(Ask::kToRun, {}));
  EXPECT_TRUE(Invoke<Text>(Ask::kToRun, Words({"", "text"})));
  EXPECT_THAT(g_calls, testing::ElementsAre("None", ",!ext"));
}

TEST_F(InvokeTest, RefusesAnotherNumberOfWords) {
  EXPECT_FALSE(Invoke<None>(Ask::kToRun, Words({"1"})));
  EXPECT_FALSE(Invoke<Number>(Ask::kToRun, {}));
  EXPECT_FALSE(Invoke<Number>(Ask::kToRun, Words({"1", "2"})));
  EXPECT_THAT(g_calls, testing::IsEmpty());
}

TEST_F(InvokeTest, TakesDecimalIntegersThatFit) {
  EXPECT_TRUE(Invoke<Number>(Ask::kToRun, Words({"-2147483648"})));
  EXPECT_TRUE(Invoke<Narrow>(Ask::kToRun, Words({"-128", "4294967295"})));
  EXPECT_THAT(g_calls, testing::ElementsAre("-2147483648", "-128,4294967295"));
}

TEST_F(InvokeTest, RefusesWhatIsNoFittingInteger) {
  for (const char* word :
       {"", "x", "1x", "1.0", " 1", "0x10", "2147483648", "-2147483649", "--1"}) {
    EXPECT_FALSE(Invoke<Number>(Ask::kToRun, Words({word}))) << word;
  }
  EXPECT_FALSE(Invoke<Narrow>(Ask::kToRun, Words({"128", "1"})));
  EXPECT_FALSE(Invoke<Narrow>(Ask::kToRun, Words({"1", "-1"})));
  EXPECT_THAT(g_calls, testing::IsEmpty());
}

TEST_F(InvokeTest, TakesTrueAndFalseOnly) {
  EXPECT_TRUE(Invoke<Flag>(Ask::kToRun, Words({"true"})));
  EXPECT_TRUE(Invoke<Flag>(Ask::kToRun, Words({"false"})));
  for (const char* word : {"", "1", "0", "True", "yes"}) {
    EXPECT_FALSE(Invoke<Flag>(Ask::kToRun, Words({word}))) << word;
  }
  EXPECT_THAT(g_calls, testing::ElementsAre("yes", "no"));
}

TEST_F(InvokeTest, AnswersWithoutCallingWhenAskedWhetherArgumentsFit) {
  EXPECT_TRUE(Invoke<Number>(Ask::kWhetherArgumentsFit, Words({"7"})));
  EXPECT_FALSE(Invoke<Number>(Ask::kWhetherArgumentsFit, Words({"seven"})));
  EXPECT_TRUE(Invoke<None>(Ask::kWhetherArgumentsFit, {}));
  EXPECT_THAT(g_calls, testing::IsEmpty());
}

}  // namespace
