#include "base/printable.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(Printable, LeavesTextAsItIs) {
  EXPECT_EQ(Printable(""), "");
  EXPECT_EQ(Printable("C:\\music\\a b.wav"), "C:\\music\\a b.wav");
  EXPECT_EQ(Printable("\u00e4 \u97f3 \U0001f3b5"), "\u00e4 \u97f3 \U0001f3b5");
}

TEST(Printable, ShowsTheFirstAndTheLastCharacterOfEachLength) {
  for (const char* const shown :
       {" ", "~", "\xc2\xa0", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
        "\xef\xbf\xbd", "\xf0\x90\x80\x80", "\xf3\xbf\xbf\xbf", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_EQ(Printable(shown), shown);
  }
  EXPECT_EQ(Printable("\x1f"), "\\x1f");
  EXPECT_EQ(Printable("\xc2\x9f"), "\\xc2\\x9f") << "a control character of Latin-1";
  EXPECT_EQ(Printable("\xc1\xbf"), "\\xc1\\xbf") << "a letter in two bytes";
  EXPECT_EQ(Printable("\xe0\x9f\xbf"), "\\xe0\\x9f\\xbf");
  EXPECT_EQ(Printable("\xf0\x8f\xbf\xbf"), "\\xf0\\x8f\\xbf\\xbf");
  EXPECT_EQ(Printable("\xf5\x80\x80\x80"), "\\xf5\\x80\\x80\\x80");
  EXPECT_EQ(Printable("\xf0\x9f\x8e("), "\\xf0\\x9f\\x8e(");
}

TEST(Printable, EscapesWhatWouldControlATerminal) {
  EXPECT_EQ(Printable("a\nb\tc\rd"), "a\\nb\\tc\\rd");
  EXPECT_EQ(Printable("\x1b[2J\x7f"), "\\x1b[2J\\x7f");
  EXPECT_EQ(Printable(std::string(1, '\0')), "\\x00");
  EXPECT_EQ(Printable("\u009b"), "\\xc2\\x9b") << "starts a control sequence as well";
}

TEST(Printable, EscapesBytesThatAreNoText) {
  EXPECT_EQ(Printable("\xff"), "\\xff");
  EXPECT_EQ(Printable("\xc3("), "\\xc3(");
  EXPECT_EQ(Printable("\xe2\x82"), "\\xe2\\x82") << "cut short";
  EXPECT_EQ(Printable("\xc0\x8a"), "\\xc0\\x8a") << "a newline in two bytes";
  EXPECT_EQ(Printable("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "half of a pair";
  EXPECT_EQ(Printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "beyond the last character";
}

}  // namespace
}  // namespace host
