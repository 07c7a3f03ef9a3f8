// What the process of a case does besides running its routine.

#include "suite/case_work.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "suite/case_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

using testing::StartsWith;

namespace fs = std::filesystem;

class CaseWorkTest : public testing::Test {
 protected:
  CaseWorkTest() { fs::create_directories("r/reports"); }

  // Runs the case at this place, in a process of its own. The results are in "r".
  static Json RunAt(const std::vector<SuiteCase>& cases, size_t at) {
    const CaseOrder order(cases);
    const SuitePlace place = {
        .cases = cases, .order = order, .folder = "r", .origin = "here", .demo = {}};
    const HostSignals signals;
    CaseProcess process(signals, [&] { return RunOneCase(place, at); });
    while (!process.HasEnded()) usleep(1000);
    return process.Record();
  }

  TemporaryDirectory m_directory;
};

// It is known to fail, so that those that follow it run all the same.
TEST_F(CaseWorkTest, TakesWhatThereIsOfTheOutputsOfAnotherCase) {
  const std::vector<SuiteCase> cases = {
      {.id = "none", .routine = "WriteNothing", .known = "why"},
      {.id = "some", .routine = "WriteBytes", .arguments = {"320"}},
      {.id = "next",
       .routine = "Copy",
       .arguments = {"out.pcm", "copy.pcm"},
       .after = {"none", "some"}}};
  EXPECT_EQ(RunAt(cases, 0)["verdict"], "fail");
  EXPECT_EQ(RunAt(cases, 1)["verdict"], "pass");
  const Json next = RunAt(cases, 2);
  EXPECT_EQ(next["verdict"], "pass") << next["reason"];
  EXPECT_EQ(ReadFile("r/cases/next/copy.pcm"), ReadFile("r/cases/some/out.pcm"));
}

TEST_F(CaseWorkTest, IsSkippedWhereItHasNoDemoRecording) {
  std::vector<SuiteCase> cases = {
      {.id = "a", .routine = "Copy", .arguments = {"in.pcm", "out.pcm"}, .demo = true}};
  const Json skipped = RunAt(cases, 0);
  EXPECT_EQ(skipped["verdict"], "skip");
  EXPECT_EQ(skipped["exit_code"], 77);
  EXPECT_EQ(skipped["cause"], "missing_input");
  EXPECT_THAT(skipped["reason"].get<std::string>(), StartsWith("no recording to run on: input "));

  cases[0].demo = false;
  const Json fails = RunAt(cases, 0);
  EXPECT_EQ(fails["verdict"], "error");
  EXPECT_EQ(fails["exit_code"], 3);
  EXPECT_THAT(fails["reason"].get<std::string>(), StartsWith("input "));
}

// As every file that a program makes for its user.
TEST_F(CaseWorkTest, WhatItPrintsMayBeReadByWhomTheUserLets) {
  const auto rightsUnder = [](mode_t mask) {
    fs::remove("r/reports/a.txt");
    const mode_t before = umask(mask);
    EXPECT_EQ(RunAt({{.id = "a", .routine = "WritePcm"}}, 0)["verdict"], "pass");
    umask(before);
    return static_cast<unsigned>(fs::status("r/reports/a.txt").permissions());
  };
  EXPECT_EQ(rightsUnder(0), 0666U);
  EXPECT_EQ(rightsUnder(027), 0640U);
}

}  // namespace
}  // namespace host
