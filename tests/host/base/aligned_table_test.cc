#include "base/aligned_table.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

AlignedTable Figures() {
  AlignedTable table({"verdict", "case", "dB", "n"});
  table.Add({"pass", "a", "-12.5", "1"});
  table.Add({"fail, late", "be", "-", "200000"});
  return table;
}

TEST(AlignedTable, HasNumbersToTheRightAndWordsToTheLeft) {
  EXPECT_EQ(Figures().Text(),
            "verdict     case     dB       n\n"
            "pass        a     -12.5       1\n"
            "fail, late  be        -  200000\n");
}

TEST(AlignedTable, OneWordMakesAColumnOfWords) {
  AlignedTable table({"x", "y"});
  table.Add({"1", "20"});
  table.Add({"200", ""});
  EXPECT_EQ(table.Text(), "  x  y\n  1  20\n200\n") << "no blanks at the end of a line";
}

TEST(AlignedTable, CountsLettersAndNotBytes) {
  AlignedTable table({"name", "n"});
  table.Add({"\u00e4\u97f3\U0001f3b5xyz", "1"});
  table.Add({"a\tb", "2"});
  EXPECT_EQ(table.Text(), "name    n\n\u00e4\u97f3\U0001f3b5xyz  1\na\\tb    2\n");
}

TEST(AlignedTable, PaintsTheFirstWordOfOneColumn) {
  EXPECT_EQ(Figures().Text(Paint(Color::kAlways, -1), 0),
            "verdict     case     dB       n\n"
            "\x1b[32mpass\x1b[0m        a     -12.5       1\n"
            "\x1b[31mfail\x1b[0m, late  be        -  200000\n");
  AlignedTable heads({"pass"});
  heads.Add({"error of it"});
  EXPECT_EQ(heads.Text(Paint(Color::kAlways, -1), 0), "pass\n\x1b[31merror\x1b[0m of it\n");
}

}  // namespace
}  // namespace host
