// A run of 100,000 cases: its page is small, and so is the memory that it takes.

#include <fstream>

#include "live_bytes.h"
#include "page_fixture.h"
#include "report_page/page_text.h"

namespace host {
namespace {

using PageManyTest = PageTest;

constexpr size_t kCases = 100'000;

// Writes the results case by case, with 5 figures each; every 1000th fails.
void WriteMany(const std::string& path) {
  const Json empty = ResultsJson({});
  std::string head = empty.dump();
  head.resize(head.rfind("[]}") + 1);
  std::ofstream file(path);
  file << head;
  std::vector<SyntheticFigure> figures;
  for (int i = 0; i < 5; ++i) figures.push_back({.name = "f" + std::to_string(i), .value = i});
  const Json one = CaseJson("ID", figures);
  const std::string text = one.dump();
  for (size_t i = 0; i < kCases; ++i) {
    std::string line = text;
    for (size_t at = 0; (at = line.find("ID", at)) != std::string::npos;) {
      line.replace(at, 2, "speaker-" + std::to_string(i) + "-clean-speech");
    }
    if (i % 1000 == 7) line.replace(line.find("\"pass\""), 6, "\"fail\"");
    file << (i == 0 ? "\n" : ",\n") << line;
  }
  file << "]}\n";
}

TEST_F(PageManyTest, HoldsOneKilobyteOfACase) {
  WriteMany("results.json");
  MarkBytes();
  const PageRun run = ReadPageRun("results.json", "", 200);
  EXPECT_LE(MostBytesSinceMark(), kCases * 1000);
  const PageData data = MakePageData(run, {});
  EXPECT_LE(MostBytesSinceMark(), kCases * 1000);
  EXPECT_EQ(data.json["total"], kCases);
  EXPECT_EQ(data.json["shown"], 200);
  EXPECT_EQ(data.json["counts"]["fail"], 100);
  EXPECT_EQ(data.json["worst_only"], "The worst 200 of 100000 cases; the totals are of all.");
  EXPECT_EQ(data.json["cases"][0]["id"], "speaker-7-clean-speech");
  EXPECT_EQ(data.json["cases"][99]["id"], "speaker-99007-clean-speech");
  EXPECT_EQ(data.json["cases"][100]["verdict"], "pass");
  EXPECT_LE(PageText(kTemplate, data).size(), 1'000'000U);
}

}  // namespace
}  // namespace host
