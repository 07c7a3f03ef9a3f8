// How much the page takes, and what has a place in it.

#include <filesystem>

#include "../recording/sound_files.h"
#include "page_fixture.h"
#include "report_page/page_text.h"
#include "support/signals.h"

namespace host {
namespace {

using testing::HasSubstr;

using PageBudgetTest = PageTest;

// Which cases have players, by their ids.
std::string Heard(const Json& page) {
  std::string ids;
  for (const Json& one : page["cases"]) {
    if (!one["players"].empty()) ids += one["id"].get<std::string>() + " ";
  }
  return ids;
}

// Noise, which no encoder makes smaller.
std::vector<double> Noise() { return WhiteNoise(16000 * 2, 0.9, 1); }

TEST_F(PageBudgetTest, GivesTheWorstTheirPlaceFirst) {
  WriteSuite("r", {CaseOf("good", "pass"), CaseOf("warned", "warn"), CaseOf("failed", "fail")});
  for (const char* const id : {"good", "warned", "failed"}) WriteSounds("r", id, Noise(), Noise());
  const PageData all = DataOf("r");
  EXPECT_EQ(Heard(all.json), "failed warned good ");
  EXPECT_EQ(all.json["left_out"], "");
  EXPECT_EQ(all.leftOut, 0U);

  const size_t whole = PageText(kTemplate, all).size();
  for (const size_t most : {whole, whole - 10'000, whole * 2 / 3, whole / 2, size_t{20'000}}) {
    const PageData some = DataOf("r", "", {.bytes = most});
    // Beside what is counted there are the template and a few words on what is left out.
    EXPECT_LE(PageText(kTemplate, some).size(), most + 1000);
    EXPECT_EQ(some.audio.size(), 6 - some.leftOut);
    EXPECT_TRUE(std::string("failed warned good ").starts_with(Heard(some.json)));
  }
}

TEST_F(PageBudgetTest, SaysWhatItLeavesOut) {
  WriteSuite("r", {CaseOf("good", "pass"), CaseOf("failed", "fail")});
  for (const char* const id : {"good", "failed"}) WriteSounds("r", id, Noise(), Noise());
  const size_t whole = PageText(kTemplate, DataOf("r")).size();
  const PageData data = DataOf("r", "", {.bytes = whole * 2 / 3});
  EXPECT_EQ(Heard(data.json), "failed ");
  EXPECT_EQ(data.json["left_out"],
            "2 of 4 recordings are left out: 2 to stay below 20 MB. --folder writes all.");
  EXPECT_EQ(data.json["cases"][1]["notes"], Json({"2 recordings are left out of this page"}));
}

// Of what is the same as before a few are enough to hear that.
TEST_F(PageBudgetTest, TakesAFewThatAreTheSame) {
  std::vector<Json> cases;
  const std::vector<double> sound(1600, 0.1);
  for (int i = 0; i < 12; ++i) {
    cases.push_back(CaseOf("c" + std::to_string(i), "pass"));
    for (const char* const folder : {"a", "b"}) {
      WriteSounds(folder, "c" + std::to_string(i), sound, sound);
    }
  }
  WriteSuite("a", cases);
  WriteSuite("b", cases);
  const PageData data = DataOf("b", "a");
  EXPECT_EQ(Heard(data.json), "c0 c1 c2 c3 c4 c5 c6 c7 ");
  EXPECT_EQ(
      data.json["left_out"],
      "12 of 36 recordings are left out: 12 of cases that are the same. --folder writes all.");
  EXPECT_EQ(Heard(DataOf("b").json), "c0 c1 c2 c3 c4 c5 c6 c7 c8 c9 c10 c11 ")
      << "without another run nothing is the same";
}

TEST_F(PageBudgetTest, TakesTheFirstOutputsOfACase) {
  Json one = CaseOf("c", "pass");
  const std::vector<double> sound(1600, 0.1);
  WriteSounds("r", "c", sound, sound);
  one["outputs"] = Json::array();
  for (int i = 0; i < 9; ++i) {
    const std::string name = "out" + std::to_string(i) + ".wav";
    std::filesystem::copy_file("r/cases/c/out.wav", "r/cases/c/" + name);
    one["outputs"].push_back({{"name", name}, {"path", "cases/c/" + name}, {"sha256", Json()}});
  }
  // The one that hits a guard comes before the others.
  one["guards"] = {GuardJson("click", "out8.wav", 0.05, false)};
  WriteSuite("r", {one});
  const PageData data = DataOf("r");
  const Json& players = data.json["cases"][0]["players"];
  ASSERT_EQ(players.size(), 6U);
  EXPECT_EQ(players[0]["title"], "out8.wav");
  EXPECT_EQ(players[1]["title"], "out0.wav");
  EXPECT_EQ(data.json["left_out"],
            "6 of 18 recordings are left out: 6 of outputs beyond the first 6 of a case. --folder "
            "writes all.");
  EXPECT_EQ(DataOf("r", "", {.bytes = 0, .all = true}).json["cases"][0]["players"].size(), 9U);
}

}  // namespace
}  // namespace host
