#include "suite/shard.h"

#include <gtest/gtest.h>

#include "base/usage_error.h"

namespace host {
namespace {

TEST(Shard, IsANumberOfSoMany) {
  const Shard shard = ParseShard("2/13");
  EXPECT_EQ(shard.index, 2U);
  EXPECT_EQ(shard.of, 13U);
  EXPECT_EQ(ParseShard("1/1").of, 1U);
  EXPECT_EQ(ParseShard("3/3").index, 3U);
}

TEST(Shard, IsNothingElse) {
  for (const char* const word :
       {"", "/", "1", "1/", "/2", "0/2", "3/2", "0/0", "1/2/3", "1/2x", "x1/2", "1x/2", "-1/2",
        "1/-2", "+1/2", " 1/2", "1/ 2", "1/99999999999999999999999"}) {
    try {
      ParseShard(word);
      ADD_FAILURE() << word;
    } catch (const UsageError& error) {
      EXPECT_EQ(error.message,
                std::string("--shard must be I/N with I from 1 to N, not \"") + word + "\"");
    }
  }
}

TEST(Shard, EachCaseIsInOne) {
  size_t all = 0;
  for (const char* const id : {"a", "b", "c", "aec-1", "aec-2", ""}) {
    for (size_t index = 1; index <= 3; ++index) all += Shard{.index = index, .of = 3}.Holds(id);
    EXPECT_TRUE(Shard{}.Holds(id)) << "without shards all are in it";
  }
  EXPECT_EQ(all, 6U);
}

}  // namespace
}  // namespace host
