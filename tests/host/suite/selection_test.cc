// Which cases of a suite run, which of them count, and by what two selections are told apart.

#include "suite/selection.h"

#include <gmock/gmock.h>

#include "base/usage_error.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::ElementsAre;

// Three cases in a chain, and one beside them.
const std::string kChain = R"(
[[case]]
id = "first"
routine = "WriteBytes"
arguments = ["320"]
[[case]]
id = "beside"
routine = "WritePcm"
[[case]]
id = "second"
routine = "Copy"
arguments = ["out.pcm", "b.pcm"]
after = ["first"]
[[case]]
id = "third"
routine = "Copy"
arguments = ["b.pcm", "c.pcm"]
after = ["second"]
)";

class SelectionTest : public testing::Test {
 protected:
  static Selection Select(const std::string& suite, SuiteOptions options = {}) {
    WriteFile("s.toml", suite);
    options.file = "s.toml";
    return SelectCases(options);
  }

  static SuiteOptions Like(const std::string& glob) {
    SuiteOptions options;
    options.glob = glob;
    return options;
  }

  // The suite with another text in the place of one of its own.
  static std::string DigestWith(const std::string& from, const std::string& to) {
    std::string suite = kChain;
    suite.replace(suite.find(from), from.size(), to);
    return Select(suite).digest;
  }

  // What is run, with what does not count in brackets.
  static std::vector<std::string> Ids(const Selection& selection) {
    std::vector<std::string> ids;
    for (const SuiteCase& one : selection.cases) {
      ids.push_back(one.counted ? one.id : "(" + one.id + ")");
    }
    return ids;
  }

  static std::string Fault(const std::string& glob) {
    try {
      Select(kChain, Like(glob));
    } catch (const UsageError& error) {
      return error.message;
    }
    return "no fault";
  }

 private:
  TemporaryDirectory m_directory;
};

TEST_F(SelectionTest, RunsAllThatACaseFollowsButCountsItAlone) {
  const Selection selection = Select(kChain, Like("third"));
  EXPECT_THAT(Ids(selection), ElementsAre("(first)", "(second)", "third"));
  EXPECT_EQ(selection.chosen, 1U);
  EXPECT_EQ(selection.cases[2].index, 0U);
}

// A number is that of a case among all that were chosen, in whatever shard it is.
TEST_F(SelectionTest, EachShardCountsItsOwnCases) {
  std::vector<std::string> counted(4);
  for (const size_t index : {1U, 2U}) {
    SuiteOptions options;
    options.shard = {.index = index, .of = 2};
    const Selection selection = Select(kChain, options);
    EXPECT_EQ(selection.chosen, 4U);
    EXPECT_EQ(selection.digest, Select(kChain).digest);
    for (const SuiteCase& one : selection.cases) {
      if (one.counted) counted.at(one.index) += one.id;
    }
  }
  EXPECT_THAT(counted, ElementsAre("first", "beside", "second", "third"));
}

// Shards of them must not be put together.
TEST_F(SelectionTest, SuitesThatDifferInAWordHaveOtherDigests) {
  const std::string digest = Select(kChain).digest;
  EXPECT_EQ(DigestWith("first", "first"), digest);
  EXPECT_NE(DigestWith("\"beside\"", "\"aside\""), digest);
  EXPECT_NE(DigestWith("WritePcm", "WriteLoud"), digest);
  EXPECT_NE(DigestWith("320", "640"), digest);
  EXPECT_NE(Select(kChain, Like("*e*")).digest, digest);
}

TEST_F(SelectionTest, IsStrictWhereTheSuiteOrTheCommandLineIs) {
  const std::string strict = "[defaults]\nstrict = true\n" + kChain;
  for (const SuiteCase& one : Select(strict).cases) EXPECT_TRUE(one.strict) << one.id;
  SuiteOptions options;
  options.strict = true;
  for (const SuiteCase& one : Select(kChain, options).cases) EXPECT_TRUE(one.strict) << one.id;
  for (const SuiteCase& one : Select(kChain).cases) EXPECT_FALSE(one.strict) << one.id;
}

TEST_F(SelectionTest, SaysWhatIsNearWhereNothingIsChosen) {
  EXPECT_EQ(Fault("thirds"), "no case is like \"thirds\"; did you mean third?");
  EXPECT_EQ(Fault("xyz*"), "no case is like \"xyz*\"");
}

}  // namespace
}  // namespace host
