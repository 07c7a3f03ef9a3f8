// Warnings that are failures where that is asked for.

#include "suite_fixture.h"
#include "support/wav_bytes.h"

namespace {

using testing::HasSubstr;

class StrictTest : public SuiteTest {
 protected:
  // Runs a case that warns beside one that passes. The results are in "r".
  static Finished Warned(const std::string& caseLine, std::vector<std::string> more = {}) {
    std::vector<short> samples(16000);
    for (size_t i = 0; i < samples.size(); ++i) {
      samples[i] = static_cast<short>(static_cast<int>(i * 7919 % 16001) - 8000);
    }
    WriteFile("in.wav", WavBytes({.rate = 16000}, samples));
    WriteFile("s.toml",
              Case("good", "WritePcm") +
                  Case("warned", "Break",
                       "arguments = [\"same\"]\nin = { \"in.pcm\" = \"in.wav\" }\n" + caseLine));
    std::filesystem::remove_all("r");
    more.insert(more.begin(), {"s.toml", "--out", "r"});
    return Suite(more);
  }
};

TEST_F(StrictTest, AWarningIsNoFailureUnlessThatIsAskedFor) {
  const Finished suite = Warned("");
  EXPECT_EQ(suite.exitCode, 0) << suite.out << suite.err;
  EXPECT_EQ(Verdicts("r"), "pass warn");
  EXPECT_EQ(Results("r")["counts"]["warn"], 1);
  EXPECT_THAT(suite.out, HasSubstr("1 of those that passed with a warning"));
}

TEST_F(StrictTest, OfOneCase) {
  const Finished suite = Warned("strict = true");
  EXPECT_EQ(suite.exitCode, 1);
  EXPECT_EQ(Verdicts("r"), "pass fail");
  const nlohmann::json strict = Results("r")["cases"][1];
  EXPECT_EQ(strict["cause"], "guard");
  EXPECT_EQ(strict["exit_code"], 1);
  EXPECT_THAT(strict["reason"].get<std::string>(), HasSubstr("unchanged"));
  EXPECT_THAT(ReadFile("r/junit.xml"), HasSubstr("type=\"guard\""));
  EXPECT_THAT(suite.out, HasSubstr("\nfail  warned  "));
}

TEST_F(StrictTest, OfAllCases) {
  EXPECT_EQ(Warned("", {"--strict"}).exitCode, 1);
  EXPECT_EQ(Verdicts("r"), "pass fail");
  EXPECT_EQ(Results("r")["cases"][1]["cause"], "guard");
}

TEST_F(StrictTest, ByDefaultWithAnExceptionForOneCase) {
  const auto run = [](const std::string& caseLine) {
    const Finished first = Warned(caseLine);
    WriteFile("s.toml", "[defaults]\nstrict = true\n\n" + ReadFile("s.toml"));
    std::filesystem::remove_all("r");
    return Suite({"s.toml", "--out", "r"}).exitCode;
  };
  EXPECT_EQ(run(""), 1);
  EXPECT_EQ(run("strict = false"), 0);
}

TEST_F(StrictTest, OfAKnownFailureIsStillKnown) {
  EXPECT_EQ(Warned("strict = true\nknown = \"ticket 5\"").exitCode, 0);
  EXPECT_EQ(Results("r")["counts"]["known"], 1);
}

// What is strict is another case than before.
TEST_F(StrictTest, IsRunAgainByResumingWithIt) {
  EXPECT_EQ(Warned("").exitCode, 0);
  EXPECT_EQ(Suite({"s.toml", "--out", "r", "--resume", "--strict"}).exitCode, 1);
}

}  // namespace
