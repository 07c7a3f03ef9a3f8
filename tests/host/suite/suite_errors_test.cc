// What is said of a suite file that is not right: file, line, column and what was expected.

#include <gmock/gmock.h>

#include <filesystem>

#include "base/usage_error.h"
#include "suite/suite_file.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

class SuiteErrorsTest : public testing::Test {
 protected:
  static std::string Message(const std::string& path) {
    try {
      host::ReadSuite(path);
    } catch (const host::UsageError& error) {
      return error.message;
    }
    return "no error";
  }

  static std::string MessageOn(const std::string& text) {
    WriteFile("s.toml", text);
    return Message("s.toml");
  }

  // Of a case that has these lines after its id and its routine.
  static std::string MessageOnCase(const std::string& lines) {
    return MessageOn("[[case]]\nid = \"a\"\nroutine = \"R\"\n" + lines + "\n");
  }

  TemporaryDirectory m_directory;
};

TEST_F(SuiteErrorsTest, AFileThatIsNotThere) {
  EXPECT_EQ(Message("none.toml"), "cannot read none.toml: No such file or directory");
  std::filesystem::create_symlink("loop.toml", "loop.toml");
  EXPECT_EQ(Message("loop.toml"), "cannot read loop.toml: Too many levels of symbolic links");
  std::filesystem::create_directory("folder.toml");
  EXPECT_EQ(Message("folder.toml"), "folder.toml is a folder, not a suite");
}

TEST_F(SuiteErrorsTest, AFileThatIsNoToml) {
  EXPECT_THAT(MessageOn("[[case]]\nid = \n"), testing::StartsWith("s.toml:2:6: "));
}

TEST_F(SuiteErrorsTest, NoCase) {
  EXPECT_EQ(MessageOn(""), "s.toml:1:1: expected at least one [[case]]");
  EXPECT_EQ(MessageOn("\n[case]\nid = \"a\"\n"), "s.toml:2:1: expected tables [[case]]");
  EXPECT_EQ(MessageOn("case = []\n"), "s.toml:1:8: expected tables [[case]]");
  EXPECT_EQ(MessageOn("defaults = 1\n"), "s.toml:1:12: expected a table [defaults]");
}

TEST_F(SuiteErrorsTest, AnUnknownKeySuggestsTheRightOne) {
  EXPECT_EQ(MessageOn("[[case]]\nid = \"a\"\nrutine = \"R\"\n"),
            "s.toml:3:1: unknown key \"rutine\"; did you mean \"routine\"?");
  EXPECT_EQ(MessageOn("\n[[cases]]\nid = \"a\"\n"),
            "s.toml:2:3: unknown key \"cases\"; did you mean \"case\"?");
  EXPECT_EQ(MessageOn("[defaults]\ntimeout = 3\n[[case]]\nid = \"a\"\n"),
            "s.toml:2:1: unknown key \"timeout\"; did you mean \"timeout_s\"?");
  EXPECT_EQ(
      MessageOn("[defaults]\nknown = \"a\"\n"),
      "s.toml:2:1: unknown key \"known\"; there are routine, arguments, in, tags, cluster, "
      "timeout_s, linger_s, strict, repeat, same_bytes, measures, reference, far, near, truth");
}

TEST_F(SuiteErrorsTest, TheFirstUnknownKeyInTheFileIsNamed) {
  EXPECT_THAT(MessageOnCase("zebra = 1\nape = 2"),
              testing::StartsWith("s.toml:4:1: unknown key \"zebra\"; there are id, "));
}

TEST_F(SuiteErrorsTest, WhatACaseNeeds) {
  EXPECT_EQ(MessageOn("\n[[case]]\nroutine = \"R\"\n"), "s.toml:2:1: this case is without its id");
  EXPECT_EQ(MessageOn("[[case]]\nid = \"a\"\n"), "s.toml:1:1: this case is without its routine");
}

TEST_F(SuiteErrorsTest, ValuesOfAnotherKind) {
  EXPECT_EQ(MessageOnCase("tags = \"x\""),
            "s.toml:4:8: tags must be a list of strings, not a string");
  EXPECT_EQ(MessageOnCase("arguments = [\"a\", 2]"),
            "s.toml:4:19: each of arguments must be a string, not a whole number");
  EXPECT_EQ(MessageOnCase("known = true"), "s.toml:4:9: known must be a string, not true or false");
  EXPECT_EQ(MessageOnCase("strict = 1.5"),
            "s.toml:4:10: strict must be true or false, not a number");
  EXPECT_EQ(MessageOnCase("in = []"),
            "s.toml:4:6: in must be a table of strings, { \"NAME\" = \"FILE\" }, not a list");
  EXPECT_EQ(MessageOnCase("in = { \"x\" = 1 }"),
            "s.toml:4:14: in.x must be a string, not a whole number");
  EXPECT_EQ(MessageOnCase("timeout_s = 2020-01-01"),
            "s.toml:4:13: timeout_s must be a number of seconds between 0 and 1000000, not a date "
            "or a time");
  EXPECT_EQ(MessageOnCase("each = \"x\""),
            "s.toml:4:8: each must be written with a name: each.NAME = \"GLOB\", not a string");
  EXPECT_EQ(MessageOnCase("each.x = {}"),
            "s.toml:4:10: each.x must be a string (a pattern of paths) or a list of strings, not "
            "a table");
}

TEST_F(SuiteErrorsTest, NumbersOutOfTheirRange) {
  EXPECT_EQ(MessageOnCase("linger_s = 0"),
            "s.toml:4:12: linger_s must be a number of seconds between 0 and 1000000, not 0");
  EXPECT_EQ(MessageOnCase("repeat = 0"),
            "s.toml:4:10: repeat must be a whole number from 1 to 10000, not 0");
  EXPECT_EQ(MessageOnCase("repeat = \"3\""),
            "s.toml:4:10: repeat must be a whole number from 1 to 10000, not a string");
}

TEST_F(SuiteErrorsTest, NamesThatGoThroughNothing) {
  EXPECT_EQ(MessageOnCase("each.x = \"no/*\""), "s.toml:4:10: \"no/*\" matches nothing in .");
  EXPECT_EQ(MessageOnCase("each.x = []"), "s.toml:4:6: each.x is an empty list");
}

TEST_F(SuiteErrorsTest, PlaceholdersThatStandForNothing) {
  EXPECT_EQ(MessageOnCase("each.call = [\"1\"]\ntags = [\"{cal}\"]"),
            "s.toml:5:9: {cal} stands for nothing; did you mean {call}?");
  EXPECT_EQ(MessageOnCase("cluster = \"{s}\""),
            "s.toml:4:11: {s} stands for nothing: there is no each in this case (a brace itself is "
            "written twice)");
  EXPECT_EQ(MessageOnCase("cluster = \"a}\""),
            "s.toml:4:11: \"a}\" has a brace without its other one (a brace itself is written "
            "twice)");
  EXPECT_EQ(MessageOnCase("cluster = \"{a\""),
            "s.toml:4:11: \"{a\" has a brace without its other one (a brace itself is written "
            "twice)");
}

TEST_F(SuiteErrorsTest, IdsThatAreNoFolders) {
  const auto message = [](const std::string& id) {
    return MessageOn("[[case]]\nid = \"" + id + "\"\nroutine = \"R\"\neach.x = [\"\"]\n");
  };
  const std::string noFolder =
      "\" is no name of a folder: it begins with a dot, or holds / or a control character";
  EXPECT_EQ(message("a/b"), "s.toml:2:6: the id \"a/b" + noFolder);
  EXPECT_EQ(message(".."), "s.toml:2:6: the id \".." + noFolder);
  EXPECT_EQ(message("a\\n"), "s.toml:2:6: the id \"a\n" + noFolder);
  EXPECT_EQ(message("{x}"), "s.toml:2:6: an id is empty");
  EXPECT_EQ(message(std::string(201, 'a')),
            "s.toml:2:6: an id is longer than 200 bytes: " + std::string(201, 'a'));
  EXPECT_EQ(message(std::string(200, 'a')), "no error");
}

}  // namespace
