// Tables of figures that routines write, whole, torn and hostile.

#include "results/table_results.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::HasSubstr;

ResultTable Scores(const std::string& group, const std::string& noise) {
  return {.file = group + "_" + noise + ".txt",
          .rows = {"0", "5"},
          .name = group + "." + noise,
          .numbers = 3,
          .group = group,
          .unit = "dB",
          .better = Better::kHigher};
}

ResultTable Against(ResultTable table, const std::string& group) {
  table.against = "off";
  table.againstGroup = group;
  return table;
}

Result Get(const std::vector<Result>& results, const std::string& name) {
  for (const Result& result : results) {
    if (result.name == name) return result;
  }
  return {.reason = "no such result"};
}

TEST(TableResults, NameEachCellAndTheMeans) {
  const std::vector<Result> results = TableResults(std::vector<TableText>{
      {.table = Against(Scores("snr.new", "car"), "snr.off"), .text = "1 2 3 \n4 5 6 \n"},
      {.table = Against(Scores("snr.new", "train"), "snr.off"), .text = "1 1 1 \n2 2 2 \n"},
      {.table = Scores("snr.off", "car"), .text = "1 1 1 \n1 1 1 \n"}});
  EXPECT_EQ(Get(results, "snr.new.car.0").value, 2);
  EXPECT_EQ(Get(results, "snr.new.car.5").value, 5);
  EXPECT_EQ(Get(results, "snr.new.car.5").file, "snr.new_car.txt");
  EXPECT_EQ(Get(results, "snr.new.mean").value, 2.5);
  EXPECT_EQ(Get(results, "snr.new.over_off").value, 1.5);
  EXPECT_EQ(Get(results, "snr.off.mean").value, 1);
  for (const char* const name : {"snr.new.car.0", "snr.new.mean", "snr.new.over_off"}) {
    EXPECT_EQ(Get(results, name).unit, "dB") << name;
    EXPECT_EQ(Get(results, name).better, Better::kHigher) << name;
    EXPECT_EQ(Get(results, name).reason, "") << name;
  }
  // The cells in the order of the tables, then the means in that of the groups.
  std::vector<std::string> names;
  for (const Result& each : results) names.push_back(each.name);
  EXPECT_THAT(names, testing::ElementsAre("snr.new.car.0", "snr.new.car.5", "snr.new.train.0",
                                          "snr.new.train.5", "snr.off.car.0", "snr.off.car.5",
                                          "snr.new.mean", "snr.new.over_off", "snr.off.mean"));
  EXPECT_EQ(Get(results, "snr.off.over_off").reason, "no such result");
}

TEST(TableResults, LeaveOutWhatIsNoNumberAndSaySo) {
  const std::vector<Result> results = TableResults(
      std::vector<TableText>{{.table = Scores("snr", "car"), .text = "1 nan 3 \nnan -nan nan \n"}});
  EXPECT_EQ(Get(results, "snr.car.0").value, 2);
  EXPECT_EQ(Get(results, "snr.car.0").reason, "only 2 of 3 figures have a number");
  EXPECT_FALSE(Get(results, "snr.car.5").value.has_value());
  EXPECT_EQ(Get(results, "snr.mean").value, 2);
  EXPECT_EQ(Get(results, "snr.car.5").reason, "there is no number for any of them");
  EXPECT_EQ(Get(results, "snr.mean").reason, "only 1 of 2 cells have a number");
}

TEST(TableResults, LeadOfMeansThatLackCellsSaysSo) {
  const auto lead = [](const char* of, const char* over) {
    return Get(TableResults(std::vector<TableText>{
                   {.table = Against(Scores("snr.new", "car"), "snr.off"), .text = of},
                   {.table = Scores("snr.off", "car"), .text = over}}),
               "snr.new.over_off");
  };
  EXPECT_EQ(lead("1 2 3\n4 nan 6\n", "1 1 1\n1 1 1\n").value, 2.5);
  EXPECT_EQ(lead("1 2 3\nnan nan nan\n", "1 1 1\n1 1 1\n").reason,
            "snr.new.mean: only 1 of 2 cells have a number");
  EXPECT_EQ(lead("1 2 3\n4 5 6\n", "1 1 1\nnan nan nan\n").reason,
            "snr.off.mean: only 1 of 2 cells have a number");
  EXPECT_EQ(lead("1 2 3\n4 5 6\n", "1 1 1\nnan nan nan\n").value, 2.5);
  EXPECT_FALSE(lead("nan nan nan\nnan nan nan\n", "1 1 1\n1 1 1\n").value);
}

// Blanks of both kinds part numbers, and may stand at both ends.
TEST(TableResults, TakeNumbersBetweenBlanks) {
  const std::vector<Result> results = TableResults(
      std::vector<TableText>{{.table = Scores("snr", "car"), .text = "\t 1\t2  3\t\n1 2 +3\n"}});
  EXPECT_EQ(Get(results, "snr.car.0").value, 2);
  EXPECT_EQ(Get(results, "snr.car.5").reason, "the line is missing or torn");
}

TEST(TableResults, TakeNothingFromTornOrHostileLines) {
  for (const char* text : {"1 2 3 \n4 5 6 ", "1 2 3 \n4 5 \n", "1 2 3 \n4 5 6 7 \n",
                           "1 2 3 \n4 5 6x \n", "1 2 3 \n4,5,6\n", "1 2 3 \n"}) {
    const std::vector<Result> results =
        TableResults(std::vector<TableText>{{.table = Scores("snr", "car"), .text = text}});
    EXPECT_EQ(Get(results, "snr.car.0").value, 2) << text;
    EXPECT_FALSE(Get(results, "snr.car.5").value.has_value()) << text;
    EXPECT_EQ(Get(results, "snr.car.5").reason, "the line is missing or torn") << text;
  }
}

TEST(TableResults, SayWhyAFileIsNotRead) {
  const std::vector<Result> results = TableResults(std::vector<TableText>{
      {.table = Against(Scores("snr", "car"), ""), .reason = "the file was not written"}});
  EXPECT_EQ(Get(results, "snr.car.0").reason, "the file was not written");
  EXPECT_FALSE(Get(results, "snr.mean").value.has_value());
  EXPECT_EQ(Get(results, "snr.over_off").reason, "this run has no tables of \"off\"");
}

TEST(TableResults, NameTheRowsOfAReportByTheirFirstWord) {
  ResultTable table = {.file = "report.txt", .headed = true};
  table.columns = {{"saving", "%"}, {"pesq", "MOS", Better::kHigher, "it is not computed"}};
  const std::vector<Result> results = TableResults(std::vector<TableText>{
      {.table = table,
       .text =
           "Input "
           "filename\t\tSaving(%)\tPESQ\na.wav\t\t12.5\t\t0\nb.wav\t\tinf\t\t0\nc.wav\t\t1\n"}});
  EXPECT_EQ(Get(results, "saving.a.wav").value, 12.5);
  EXPECT_FALSE(Get(results, "pesq.a.wav").value.has_value());
  EXPECT_EQ(Get(results, "pesq.a.wav").reason, "it is not computed");
  EXPECT_EQ(Get(results, "saving.b.wav").reason, "there is no number");
  EXPECT_EQ(Get(results, "saving.c.wav").reason, "the line is missing or torn");
  EXPECT_EQ(Get(results, "saving.a.wav").unit, "%");
  EXPECT_EQ(Get(results, "pesq.a.wav").better, Better::kHigher);
  EXPECT_EQ(Get(results, "saving.a.wav").file, "report.txt");
  EXPECT_EQ(results.size(), 6U) << "the first line is no row";
  EXPECT_THAT(TableResults(std::vector<TableText>{{.table = table, .reason = "gone"}}),
              testing::IsEmpty());
}

}  // namespace
}  // namespace host
