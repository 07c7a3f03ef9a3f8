// The page as a text: what stands in it stays data.

#include "report_page/page_text.h"

#include "base/usage_error.h"
#include "page_fixture.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

using PageTextTest = PageTest;

std::string Between(const std::string& text, const std::string& start, const std::string& end) {
  const size_t from = text.find(start);
  if (from == std::string::npos) return "";
  const size_t at = from + start.size();
  return text.substr(at, text.find(end, at) - at);
}

TEST_F(PageTextTest, FillsInTheMarkers) {
  PageData data = {.json = {{"version", 1}}};
  data.audio = {{"0-0-output", "QUJD"}};
  EXPECT_EQ(PageText(kTemplate, data),
            "<html>\n<script type=\"application/json\" id=\"data\">{\"version\":1}</script>\n"
            "<script>page()</script>\n<script type=\"application/octet-stream\" "
            "id=\"audio-0-0-output\">QUJD</script>\n\n</html>\n");
  EXPECT_THROW(PageText("<html></html>", data), UsageError);
  EXPECT_THROW(PageText("<!--AUDIO--><!--DATA-->", data), UsageError);
}

// None of these may end the element that they stand in, or begin another one.
TEST_F(PageTextTest, KeepsHostileTextsData) {
  const std::string hostile = "</script><script>alert(1)</script><!--<script>\xE2\x80\xA8\"'&";
  Json one = CaseOf(hostile, "fail");
  for (const char* const key : {"reason", "group", "cause"}) one[key] = hostile;
  one["tags"] = {hostile};
  one["report"] = "";
  one["outputs"][0]["name"] = hostile;
  one["guards"] = {GuardJson(hostile, hostile, 1, true)};
  Write("r/results.json", ResultsJson({one}).dump());
  const std::string page = PageText(kTemplate, DataOf("r"));
  const std::string data = Between(page, "id=\"data\">", "</script>");
  EXPECT_THAT(data, Not(HasSubstr("<")));
  const Json read = Json::parse(data);
  EXPECT_EQ(read["cases"][0]["id"], hostile);
  EXPECT_EQ(read["cases"][0]["reason"], hostile);
  EXPECT_EQ(read["cases"][0]["guards"][0]["name"], hostile);
  EXPECT_EQ(read["cases"][0]["files"][0]["name"], hostile);
}

TEST_F(PageTextTest, KeepsHostileLogsData) {
  WriteSuite("r", {CaseOf("c", "fail")});
  Write("r/cases/c/log", "</script><script>alert(1)</script>\xFF\n");
  const std::string page = PageText(kTemplate, DataOf("r"));
  const Json read = Json::parse(Between(page, "id=\"data\">", "</script>"));
  EXPECT_EQ(read["cases"][0]["log"], "</script><script>alert(1)</script>\\xff\n");
}

// The keys of recordings are numbers and words of the page's own.
TEST_F(PageTextTest, NamesNoRecordingAfterAFile) {
  const std::vector<double> sound(16000, 0.25);
  WriteSuite("r", {CaseOf("\"><script>", "fail")});
  WriteSounds("r", "\"><script>", sound, sound);
  for (const PageAudio& audio : DataOf("r").audio) {
    EXPECT_THAT(audio.key, testing::MatchesRegex("[0-9]+-[0-9]+-[a-z]+"));
  }
}

}  // namespace
}  // namespace host
