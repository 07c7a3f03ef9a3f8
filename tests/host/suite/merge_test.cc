// Shards whose results somebody has mixed up, and what is left of those that fit.

#include <gmock/gmock.h>

#include <filesystem>

#include "base/usage_error.h"
#include "suite/case_record.h"
#include "suite/suite.h"
#include "suite/suite_journal.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

class MergeTest : public testing::Test {
 protected:
  // The folder of one of two shards, of a suite of three cases, that has run these.
  static void PutShard(const std::string& folder, int index, const std::string& started,
                       const std::vector<uint64_t>& cases) {
    const Json shard = {{"index", index}, {"of", 2}};
    std::string plan =
        JournalLine({{"started", started}, {"chosen", 3}, {"selection", "ab"}, {"shard", shard}});
    std::string ended;
    for (const uint64_t each : cases) {
      const std::string id = "c" + std::to_string(each);
      Json record = NotRunRecord({.index = each, .id = id, .routine = "TestDrc"});
      plan += JournalLine(record);
      record["verdict"] = "pass";
      record["report"] = "reports/" + id + ".json";
      ended += JournalLine(record);
    }
    std::filesystem::create_directory(folder);
    WriteFile(folder + "/plan.jsonl", plan);
    WriteFile(folder + "/cases.jsonl", ended);
  }

  static std::string Merged() {
    try {
      testing::internal::CaptureStdout();
      MergeSuites({.folders = {"a", "b"}, .out = "m"});
    } catch (const UsageError& error) {
      testing::internal::GetCapturedStdout();
      EXPECT_FALSE(std::filesystem::exists("m"));
      return error.message;
    }
    return testing::internal::GetCapturedStdout();
  }

 private:
  TemporaryDirectory m_directory;
};

TEST_F(MergeTest, BeganWhenTheFirstShardDid) {
  PutShard("a", 2, "2024-05-01T10:00:00Z", {1});
  PutShard("b", 1, "2024-05-01T09:00:00Z", {2, 0});
  EXPECT_THAT(Merged(), testing::HasSubstr("3 passed"));
  const Json results = Json::parse(ReadFile("m/results.json"));
  EXPECT_EQ(results["started"], "2024-05-01T09:00:00Z");
  EXPECT_EQ(results["shard"], Json());
  ASSERT_EQ(results["cases"].size(), 3U);
  EXPECT_EQ(results["cases"][0]["report"], "../b/reports/c0.json");
  EXPECT_EQ(results["cases"][1]["report"], "../a/reports/c1.json");
  EXPECT_EQ(results["cases"][2]["id"], "c2");

  PutShard("a", 1, "2024-05-01T08:00:00Z", {1});
  PutShard("b", 2, "2024-05-01T09:00:00Z", {2, 0});
  std::filesystem::remove_all("m");
  Merged();
  EXPECT_EQ(Json::parse(ReadFile("m/results.json"))["started"], "2024-05-01T08:00:00Z");
}

TEST_F(MergeTest, RefusesACaseThatIsThereTwiceOrNotAtAll) {
  PutShard("a", 1, "2024-05-01T10:00:00Z", {0, 1});
  PutShard("b", 2, "2024-05-01T10:00:00Z", {1, 2});
  EXPECT_EQ(Merged(), "a case is in two shards: b and a");
  PutShard("b", 2, "2024-05-01T10:00:00Z", {3});
  EXPECT_EQ(Merged(), "case 2 is in no shard");
  PutShard("b", 2, "2024-05-01T10:00:00Z", {});
  EXPECT_EQ(Merged(), "the shards have 2 cases, not 3");
  PutShard("b", 2, "2024-05-01T10:00:00Z", {2, 3});
  EXPECT_EQ(Merged(), "the shards have 4 cases, not 3");
}

}  // namespace
}  // namespace host
