#include "selftest/trust.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "selftest/build_ids.h"
#include "support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

// A cache of its own. The answers of a process stay, so that each test asks about another measure.
class Trust : public testing::Test {
 protected:
  void SetUp() override {
    setenv("XDG_CACHE_HOME", (fs::current_path() / "cache").c_str(), 1);
    m_folder = fs::current_path() / "cache/audio_bench/selftest" / host::BuildIds();
  }

  std::string Kept(const std::string& measure) const {
    std::ifstream file(m_folder / measure);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  void Keep(const std::string& measure, const std::string& text) const {
    fs::create_directories(m_folder);
    std::ofstream(m_folder / measure) << text;
  }

  TemporaryDirectory m_directory;
  fs::path m_folder;
};

TEST_F(Trust, IsToldApartByProgramAndLibrary) {
  EXPECT_THAT(host::BuildIds(), testing::MatchesRegex("[0-9a-f]{16,}-[0-9a-f]{16,}"));
}

TEST_F(Trust, FirstQuestionKeepsTheAnswer) {
  EXPECT_FALSE(host::Untrusted("dc"));
  EXPECT_EQ(Kept("dc"), "holds\n");
}

TEST_F(Trust, KeptFailureIsBelieved) {
  Keep("clipped", "fails\n");
  EXPECT_TRUE(host::Untrusted("clipped"));
}

TEST_F(Trust, KeptAnswerIsAskedBeforeControlsAreBuilt) {
  Keep("build_time", "holds\n");
  EXPECT_FALSE(host::Untrusted("build_time")) << "no control is looked for";
}

TEST_F(Trust, WhatASelftestFoundIsKept) {
  host::KeepTrust("loudness", false);
  EXPECT_EQ(Kept("loudness"), "fails\n");
  EXPECT_TRUE(host::Untrusted("loudness"));
  host::KeepTrust("loudness", true);
  EXPECT_EQ(Kept("loudness"), "holds\n");
  EXPECT_FALSE(host::Untrusted("loudness"));
}

TEST_F(Trust, TornAnswerIsFoundOutAgain) {
  Keep("peak", "hol");
  EXPECT_FALSE(host::Untrusted("peak"));
  EXPECT_EQ(Kept("peak"), "holds\n");
}

TEST_F(Trust, WhatHasNoControlsIsUntrusted) {
  EXPECT_TRUE(host::Untrusted("rtf"));
  EXPECT_TRUE(host::Untrusted("no_such_measure"));
  EXPECT_EQ(Kept("rtf"), "");
}

TEST_F(Trust, CacheThatCannotBeWrittenIsNoError) {
  setenv("XDG_CACHE_HOME", "/proc/self/nowhere", 1);
  EXPECT_FALSE(host::Untrusted("crest"));
}

TEST_F(Trust, CacheThatIsNotAbsoluteIsNotUsed) {
  setenv("XDG_CACHE_HOME", "here", 1);
  setenv("HOME", (fs::current_path() / "home").c_str(), 1);
  EXPECT_FALSE(host::Untrusted("rms"));
  EXPECT_FALSE(fs::exists("here"));
  EXPECT_TRUE(fs::exists(fs::path("home/.cache/audio_bench/selftest") / host::BuildIds() / "rms"));
}

TEST_F(Trust, ProcessesThatAskAtOnceLeaveOneWholeAnswer) {
  constexpr int kProcesses = 8;
  for (int i = 0; i < kProcesses; ++i) {
    if (fork() == 0) _exit(host::Untrusted("noise_floor") ? 1 : 0);
  }
  for (int i = 0; i < kProcesses; ++i) {
    int status = -1;
    wait(&status);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(Kept("noise_floor"), "holds\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()), 1);
}

}  // namespace
