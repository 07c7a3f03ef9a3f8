// What a suite has left in its folder, when somebody has edited it or it is torn.

#include <gmock/gmock.h>

#include "base/usage_error.h"
#include "suite/case_record.h"
#include "suite/suite_journal.h"
#include "suite/suite_results.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::HasSubstr;

// A case that has ended.
Json Record(uint64_t index) {
  Json record = NotRunRecord({.id = "c" + std::to_string(index), .routine = "TestDrc"});
  record["index"] = index;
  record["verdict"] = "pass";
  return record;
}

Json Header() { return {{"started", "2024-05-01T10:00:00Z"}, {"chosen", 2}, {"selection", "ab"}}; }

class JournalTest : public testing::Test {
 protected:
  // Why the results are refused; empty when they are read and written.
  static std::string Fault(const Json& header, const std::vector<Json>& ended) {
    std::string lines;
    for (const Json& each : ended) lines += JournalLine(each);
    WriteFile("plan.jsonl", JournalLine(header) + JournalLine(Record(0)) + JournalLine(Record(1)));
    WriteFile("cases.jsonl", lines);
    try {
      const SuiteJournal journal(".");
      WriteResults(journal, ".");
    } catch (const UsageError& error) {
      return error.message;
    }
    return "";
  }

  // The same where one key of one of two cases has this value.
  static std::string FaultOf(const std::string& key, const Json& value) {
    Json record = Record(1);
    record[key] = value;
    return Fault(Header(), {Record(0), record});
  }

  static std::string FaultOfHeader(const std::string& key, const Json& value) {
    Json header = Header();
    header[key] = value;
    return Fault(header, {});
  }

 private:
  TemporaryDirectory m_directory;
};

TEST_F(JournalTest, RefusesMembersOfAnotherType) {
  EXPECT_EQ(FaultOf("elapsed", 1.5), "");
  for (const char* const key :
       {"id", "routine", "verdict", "group", "cause", "reason", "report", "known", "cluster",
        "exit_code", "elapsed", "cpu", "rtf", "rtf_cpu", "index", "fingerprint", "log_tail"}) {
    EXPECT_EQ(FaultOf(key, true), "./cases.jsonl:2: not a line of a suite's results") << key;
  }
  EXPECT_THAT(FaultOf("exit_code", 1.5), HasSubstr("cases.jsonl:2"));
  EXPECT_THAT(FaultOf("index", -1), HasSubstr("cases.jsonl:2"));
  for (const char* const key : {"id", "routine", "verdict", "group", "reason", "fingerprint"}) {
    EXPECT_THAT(FaultOf(key, Json()), HasSubstr("cases.jsonl:2")) << key;
  }
}

TEST_F(JournalTest, RefusesListsOfSomethingElse) {
  for (const char* const key : {"arguments", "tags"}) {
    EXPECT_EQ(FaultOf(key, {"a"}), "") << key;
    EXPECT_THAT(FaultOf(key, {{"a", 1}}), HasSubstr("damaged")) << key;
    EXPECT_THAT(FaultOf(key, {"a", 1}), HasSubstr("damaged")) << key;
  }
  for (const char* const key : {"results", "guards", "figures", "outputs"}) {
    EXPECT_EQ(FaultOf(key, Json::array({Json::object()})), "") << key;
    EXPECT_THAT(FaultOf(key, Json::array({Json::object(), 1})), HasSubstr("damaged")) << key;
    EXPECT_THAT(FaultOf(key, Json::object()), HasSubstr("damaged")) << key;
  }
  EXPECT_THAT(FaultOf("outputs", Json::array({{{"path", 1}}})), HasSubstr("damaged"));
}

// An earlier version may not have written all of them.
TEST_F(JournalTest, TakesWhatALineLacksForUnknown) {
  const Json bare = {{"id", "c1"}, {"index", 1}, {"routine", "TestDrc"}, {"verdict", "fail"}};
  EXPECT_EQ(Fault(Header(), {bare}), "");
  const Json results = Json::parse(ReadFile("results.json"));
  const Json& one = results["cases"][1];
  EXPECT_EQ(one["verdict"], "fail");
  EXPECT_EQ(one["reason"], "");
  EXPECT_EQ(one["known"], Json());
  EXPECT_EQ(one["elapsed"], Json());
  EXPECT_EQ(one["figures"], Json::array());
  EXPECT_FALSE(one.contains("log_tail"));
  EXPECT_EQ(results["counts"]["fail"], 1);
  for (const char* const key : {"id", "routine", "verdict", "index"}) {
    Json less = bare;
    less.erase(key);
    EXPECT_THAT(Fault(Header(), {less}), HasSubstr("cases.jsonl:1")) << key;
  }
}

TEST_F(JournalTest, RefusesAPlanThatIsNone) {
  EXPECT_EQ(FaultOfHeader("shard", {{"index", 2}, {"of", 2}}), "");
  EXPECT_EQ(FaultOfHeader("shard", Json()), "");
  for (const Json& shard :
       {Json(1), Json{{"index", 0}, {"of", 2}}, Json{{"index", 3}, {"of", 2}}, Json{{"index", 1}},
        Json{{"of", 1}}, Json{{"index", 1}, {"of", 1.5}}, Json{{"index", "1"}, {"of", 1}}}) {
    EXPECT_THAT(FaultOfHeader("shard", shard), HasSubstr("plan.jsonl:1")) << shard;
  }
  for (const char* const key : {"started", "selection", "chosen"}) {
    EXPECT_THAT(FaultOfHeader(key, Json()), HasSubstr("plan.jsonl:1")) << key;
  }
  WriteFile("plan.jsonl", JournalLine(Header()) + "{\"id\":\"c0\"}\n");
  EXPECT_THROW(SuiteJournal("."), UsageError);
}

// A plan of shards that were put together has no more than the place of what has ended.
TEST_F(JournalTest, RefusesAPlaceWhoseCaseIsGone) {
  WriteFile("plan.jsonl", JournalLine(Header()) + "{\"index\":0}\n");
  const SuiteJournal journal(".");
  EXPECT_EQ(journal.counts().notRun, 1U);
  EXPECT_THROW(journal.Read(0), UsageError);
}

}  // namespace
}  // namespace host
