// What the page has of the cases: all fields, in order, and no more than asked for.

#include "page_fixture.h"
#include "report_page/page_run.h"
#include "support/file_bytes.h"

namespace host {
namespace {

using testing::HasSubstr;

using PageCasesTest = PageTest;

TEST_F(PageCasesTest, SaysWhatTheRunWas) {
  WriteSuite("r", {CaseOf("good", "pass"), CaseOf("bad", "fail")});
  const Json page = DataOf("r").json;
  EXPECT_EQ(page["version"], 1);
  EXPECT_EQ(page["title"], "calls.toml");
  EXPECT_EQ(page["sentence"], "2 cases: 1 passes, 1 fails");
  EXPECT_EQ(page["bench"], "1 (abc)");
  EXPECT_EQ(page["engine"], "desktop engine 0.2.0");
  EXPECT_EQ(page["machine"], "x, 1 processor");
  EXPECT_EQ(page["started"], "2026-03-01T12:00:00Z");
  EXPECT_EQ(page["command"], "audio_bench suite");
  EXPECT_EQ(page["against"], Json());
  EXPECT_EQ(page["measures"], Json::array());
  EXPECT_EQ(page["total"], 2);
  EXPECT_EQ(page["shown"], 2);
  EXPECT_EQ(page["worst_only"], "");
  EXPECT_EQ(page["counts"], (Json{{"pass", 1},
                                  {"warn", 0},
                                  {"fail", 1},
                                  {"error", 0},
                                  {"skip", 0},
                                  {"known", 0},
                                  {"not_run", 0}}));
}

TEST_F(PageCasesTest, SaysAllOfACase) {
  Json one = CaseOf("c", "fail");
  one["tags"] = {"echo"};
  one["cluster"] = "s1";
  one["cause"] = "guard";
  one["reason"] = "out.wav clips";
  one["guards"] = {GuardJson("clipped", "out.wav", 1.25, true)};
  one["results"] = {{{"name", "delay"},
                     {"value", 89},
                     {"unit", "ms"},
                     {"better", "none"},
                     {"file", Json()},
                     {"reason", Json()}}};
  WriteSuite("r", {one});
  Write("r/cases/c/log", "first\nsecond \x1b[31m\n");
  const Json page = DataOf("r").json;
  const Json& data = page["cases"][0];
  EXPECT_EQ(data["id"], "c");
  EXPECT_EQ(data["routine"], "TestZUAec");
  EXPECT_EQ(data["group"], "aec");
  EXPECT_EQ(data["tags"], Json({"echo"}));
  EXPECT_EQ(data["known"], Json());
  EXPECT_EQ(data["cluster"], "s1");
  EXPECT_EQ(data["arguments"], Json({"near.wav"}));
  EXPECT_EQ(data["verdict"], "fail");
  EXPECT_EQ(data["cause"], "guard");
  EXPECT_EQ(data["reason"], "out.wav clips");
  EXPECT_EQ(data["change"], Json());
  EXPECT_EQ(data["against_verdict"], Json());
  EXPECT_EQ(data["elapsed"], 1.0);
  EXPECT_EQ(data["cpu"], 0.5);
  EXPECT_EQ(data["rtf"], 0.1);
  EXPECT_EQ(data["results"], Json::array({{{"name", "delay"},
                                           {"value", 89},
                                           {"unit", "ms"},
                                           {"better", "none"},
                                           {"file", Json()},
                                           {"reason", Json()},
                                           {"against", Json()},
                                           {"change", Json()}}}));
  EXPECT_EQ(data["guards"],
            Json::array({{{"name", "clipped"},
                          {"file", "out.wav"},
                          {"at", 1.25},
                          {"channel", 0},
                          {"fails", true},
                          {"new", false},
                          {"text",
                           "out.wav stays at full scale as its input does not, first at "
                           "1.25 s (clipped)"}}}));
  EXPECT_EQ(data["figures"], Json::array({{{"file", "out.wav"},
                                           {"channel", Json()},
                                           {"name", "my_sdr"},
                                           {"value", 5.0},
                                           {"unit", "dB"},
                                           {"better", "higher"},
                                           {"reason", Json()},
                                           {"untrusted", false},
                                           {"against", Json()},
                                           {"change", Json()}}}));
  EXPECT_EQ(data["files"], Json::array({{{"name", "in.wav"},
                                         {"role", "input"},
                                         {"sha256", std::string(64, 'a')},
                                         {"path", "r/cases/c/in.wav"},
                                         {"channels", 1}},
                                        {{"name", "out.wav"},
                                         {"role", "output"},
                                         {"sha256", std::string(64, '0')},
                                         {"path", "cases/c/out.wav"},
                                         {"channels", 1}}}));
  EXPECT_EQ(data["log"], "first\nsecond \\x1b[31m\n");
  EXPECT_EQ(data["command"], "audio_bench run -- TestZUAec 'a b'");
  EXPECT_EQ(data["report"], "reports/c.json");
}

TEST_F(PageCasesTest, PutsTheWorstFirst) {
  Json known = CaseOf("known", "fail");
  known["known"] = "ticket 17";
  WriteSuite("r", {CaseOf("skipped", "skip"), CaseOf("good", "pass"), CaseOf("warned", "warn"),
                   known, CaseOf("crashed", "error"), CaseOf("failed", "fail")});
  const Json page = DataOf("r").json;
  EXPECT_EQ(Ids(page), "crashed failed warned known good skipped");
  EXPECT_EQ(page["sentence"],
            "6 cases: 1 passes, 1 warns, 1 fails, 1 ends in an error, 1 fails as known, 1 is "
            "skipped");
  EXPECT_EQ(page["counts"]["known"], 1);
}

// A case with one my_sdr, and what else is to be told.
Json Valued(const std::string& id, double value) { return CaseJson(id, {{.value = value}}); }

TEST_F(PageCasesTest, SaysWhatHasChanged) {
  Json fallen = Valued("fallen", 5);
  fallen["verdict"] = "fail";
  Json clipped = Valued("clipped", 5);
  clipped["guards"] = {GuardJson("clipped", "out.wav", 1, false)};
  WriteSuite("a", {Valued("same", 5), Valued("better", 5), Valued("worse", 5), Valued("fallen", 5),
                   Valued("clipped", 5), Valued("gone", 5)});
  WriteSuite("b", {Valued("same", 5), Valued("better", 6), Valued("worse", 4), fallen, clipped,
                   Valued("new", 5)});
  const Json page = DataOf("b", "a").json;
  EXPECT_EQ(Ids(page), "fallen gone worse clipped new better same");
  EXPECT_EQ(page["sentence"],
            "6 cases: 5 pass, 1 fails, 3 are worse than a, 1 is only in a, 1 is not in a, 1 is "
            "better than a");
  const auto one = [&](const std::string& id) {
    for (const Json& each : page["cases"]) {
      if (each["id"] == id) return each;
    }
    return Json();
  };
  EXPECT_EQ(one("same")["change"], "same");
  EXPECT_EQ(one("better")["change"], "better");
  EXPECT_EQ(one("worse")["change"], "worse");
  EXPECT_EQ(one("fallen")["change"], "worse");
  EXPECT_EQ(one("fallen")["against_verdict"], "pass");
  EXPECT_EQ(one("clipped")["guards"][0]["new"], true);
  EXPECT_EQ(one("new")["change"], "new");
  EXPECT_EQ(one("new")["figures"][0]["against"], Json());
  EXPECT_EQ(one("gone")["change"], "gone");
  EXPECT_EQ(one("gone")["verdict"], "not_run");
  EXPECT_EQ(one("worse")["figures"][0]["against"], 5.0);
  EXPECT_EQ(one("worse")["figures"][0]["change"], "worse");
  EXPECT_EQ(page["against"], (Json{{"name", "a"},
                                   {"verdict", "worse"},
                                   {"engine", "desktop engine 0.2.0"},
                                   {"started", "2026-03-01T12:00:00Z"}}));
  ASSERT_EQ(page["measures"].size(), 1U);
  EXPECT_EQ(page["measures"][0]["name"], "my_sdr");
  EXPECT_EQ(page["measures"][0]["n"], 5);
}

// The margin that the suite declares holds for one case as for all.
TEST_F(PageCasesTest, TakesWhatIsWithinTheMarginForTheSame) {
  for (const char* const folder : {"a", "b"}) {
    WriteSuite(folder, {Valued("c", folder[0] == 'a' ? 5 : 4.9)});
    Json results = Json::parse(ReadFile(std::string(folder) + "/results.json"));
    results["margins"] = {{"my_sdr", 0.2}};
    Write(std::string(folder) + "/results.json", results.dump());
  }
  EXPECT_EQ(DataOf("b", "a").json["cases"][0]["change"], "same");
}

TEST_F(PageCasesTest, ShowsTheWorstOfMany) {
  std::vector<Json> cases;
  for (int i = 0; i < 30; ++i) cases.push_back(Valued("c" + std::to_string(i), 5));
  cases[17]["verdict"] = "fail";
  WriteSuite("r", cases);
  const Json page = DataWithoutPlayers(ReadPageRun("r", "", 4));
  EXPECT_EQ(page["total"], 30);
  EXPECT_EQ(page["shown"], 4);
  EXPECT_EQ(Ids(page), "c17 c0 c1 c2");
  EXPECT_EQ(page["worst_only"], "The worst 4 of 30 cases; the totals are of all.");
  EXPECT_EQ(page["counts"]["pass"], 29);
}

// What only the other run has is worse than what passes, and comes before it.
TEST_F(PageCasesTest, MakesRoomForCasesThatAreGone) {
  WriteSuite("a", {Valued("c0", 5), Valued("c1", 5), Valued("gone", 5)});
  WriteSuite("b", {Valued("c0", 5), Valued("c1", 5)});
  Json page = DataWithoutPlayers(ReadPageRun("b", "a", 2));
  EXPECT_EQ(Ids(page), "gone c0");
  EXPECT_EQ(page["shown"], 2);
  EXPECT_EQ(page["worst_only"], "The worst 2 of 3 cases; the totals are of all.");
  page = DataWithoutPlayers(ReadPageRun("b", "a", 3));
  EXPECT_EQ(Ids(page), "gone c0 c1");
  EXPECT_EQ(page["worst_only"], "");
}

TEST_F(PageCasesTest, TakesTheReportOfARunForOneCase) {
  Json report = {{"schema_version", 3},
                 {"routine", "TestDrc"},
                 {"arguments", {"a"}},
                 {"directory", m_directory.path().string()},
                 {"workspace", "work"},
                 {"verdict", "warn"},
                 {"cause", "guard_warning"},
                 {"reason", "it clips"},
                 {"elapsed", {{"value", 2.5}, {"unit", "s"}}},
                 {"cpu", {{"value", 1.5}, {"unit", "s"}}},
                 {"figures", {FigureJson({.value = 3})}},
                 {"command", {"audio_bench", "run", "TestDrc"}},
                 {"outputs", {FileEntry("out.wav", "work/out.wav")}}};
  Write("work/out.wav", "no sound");
  Write("report.json", report.dump());
  const Json page = DataOf("report.json").json;
  EXPECT_EQ(page["sentence"], "TestDrc: 1 warns");
  ASSERT_EQ(page["cases"].size(), 1U);
  const Json& one = page["cases"][0];
  EXPECT_EQ(one["id"], "TestDrc");
  EXPECT_EQ(one["elapsed"], 2.5);
  EXPECT_EQ(one["figures"][0]["value"], 3.0);
  EXPECT_EQ(one["command"], "audio_bench run TestDrc");
  EXPECT_EQ(one["files"].back()["role"], "output");
}

// What others have written may have any type.
TEST_F(PageCasesTest, TakesNoHarmFromOtherTypes) {
  Json one = CaseOf("c", "fail");
  for (const char* const key : {"reason", "cause", "tags", "known", "group", "report", "rtf"}) {
    one[key] = Json::array({1, Json::object()});
  }
  one["guards"] = {{{"name", "clipped"}, {"file", "out.wav"}, {"at", "x"}}};
  Write("r/results.json", ResultsJson({one}).dump());
  EXPECT_EQ(DataOf("r").json["cases"][0]["reason"], "");
}

}  // namespace
}  // namespace host
