#include "base/paint.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(Paint, HasAColorForEachVerdict) {
  const Paint paint(Color::kAlways, -1);
  for (const char* const good : {"pass", "available", "better", "same"}) {
    EXPECT_EQ(paint.Word(good), "\x1b[32m" + std::string(good) + "\x1b[0m");
  }
  for (const char* const bad : {"fail", "error", "worse", "changed"}) {
    EXPECT_EQ(paint.Word(bad), "\x1b[31m" + std::string(bad) + "\x1b[0m");
  }
  for (const char* const doubtful : {"warn", "PASSES", "lacking", "undecided"}) {
    EXPECT_EQ(paint.Word(doubtful), "\x1b[33m" + std::string(doubtful) + "\x1b[0m");
  }
  for (const char* const beside : {"skip", "known", "not_run"}) {
    EXPECT_EQ(paint.Word(beside), "\x1b[36m" + std::string(beside) + "\x1b[0m");
  }
}

TEST(Paint, PaintsNeitherBlanksNorOtherWords) {
  const Paint paint(Color::kAlways, -1);
  EXPECT_EQ(paint.Word("pass  "), "\x1b[32mpass\x1b[0m  ");
  EXPECT_EQ(paint.Word("passes"), "passes");
  EXPECT_EQ(paint.Word(""), "");
}

TEST(Paint, PaintsNothingUnlessAskedTo) {
  EXPECT_EQ(Paint().Word("pass"), "pass");
  EXPECT_EQ(Paint(Color::kNever, 1).Word("pass"), "pass");
  EXPECT_EQ(Paint(Color::kAuto, -1).Word("pass"), "pass") << "no terminal";
}

}  // namespace
}  // namespace host
