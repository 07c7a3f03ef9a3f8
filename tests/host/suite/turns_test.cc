// Which cases of a suite run beside others.

#include <sstream>

#include "suite_fixture.h"

namespace {

class TurnsTest : public SuiteTest {
 protected:
  // What the cases have said, in its order: "begin plain 17", "end plain 17", ...
  static std::vector<std::string> Turns() {
    std::istringstream text(ReadFile("turns"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

  static std::string Taking(const std::string& id, const std::string& routine,
                            const std::string& more = "") {
    const std::string turns = std::filesystem::absolute("turns");
    return Case(id, routine, "arguments = [\"" + turns + "\"]\n" + more);
  }

  // Expects nothing to run beside those that say that they are alone, which are so many.
  static void ExpectAlone(int count) {
    const std::vector<std::string> turns = Turns();
    int running = 0;
    int alone = 0;
    for (size_t i = 0; i < turns.size(); ++i) {
      running += turns[i].starts_with("begin") ? 1 : -1;
      if (!turns[i].starts_with("begin alone")) continue;
      ++alone;
      EXPECT_EQ(running, 1) << "another case runs at: " << turns[i];
      ASSERT_LT(i + 1, turns.size());
      EXPECT_EQ(turns[i + 1], "end" + turns[i].substr(5)) << "something began meanwhile";
    }
    EXPECT_EQ(alone, count);
  }

  // Those with devices, with the clock and with what runs on, each between others.
  static std::string AllKinds() {
    std::string cases;
    for (const char* const routine :
         {"TakeTurnOnDevice", "TakeTurnByClock", "TakeTurnAndPlay", "TakeTurnOnDevice"}) {
      const std::string number = std::to_string(cases.size());
      cases += Taking("plain-" + number, "TakeTurn") + Taking("alone-" + number, routine) +
               Taking("more-" + number, "TakeTurn");
    }
    return cases;
  }
};

TEST_F(TurnsTest, CasesWithDevicesOrTheClockRunBesideNothingElse) {
  WriteFile("s.toml", AllKinds());
  ASSERT_EQ(Suite({"s.toml", "-j8", "--out", "r"}).exitCode, 0);
  EXPECT_EQ(Turns().size(), 24u);
  ExpectAlone(4);
}

// The one that it follows is the first to end, while others run and wait.
TEST_F(TurnsTest, AlsoWhenTheyFollowOthers) {
  std::string cases =
      Taking("first", "TakeTurn") + Taking("then", "TakeTurnOnDevice", "after = [\"first\"]");
  for (int i = 0; i < 6; ++i) cases += Taking("plain-" + std::to_string(i), "TakeTurn");
  WriteFile("s.toml", cases);
  ASSERT_EQ(Suite({"s.toml", "-j2", "--out", "r"}).exitCode, 0);
  ExpectAlone(1);
}

TEST_F(TurnsTest, WithOneJobCasesRunOneAfterTheOtherInDeclaredOrder) {
  WriteFile("s.toml", AllKinds());
  ASSERT_EQ(Suite({"s.toml", "-j1", "--out", "r"}).exitCode, 0);
  const std::vector<std::string> turns = Turns();
  ASSERT_EQ(turns.size(), 24u);
  for (size_t i = 0; i < turns.size(); i += 2) {
    EXPECT_EQ(turns[i + 1], "end" + turns[i].substr(5));
    // The others first, whatever the order of the file is.
    EXPECT_EQ(turns[i].starts_with("begin alone"), i >= 16) << turns[i];
  }
}

}  // namespace
