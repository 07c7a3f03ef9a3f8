// Suites whose cases run in a scratch folder.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "suite_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ScratchTest : public SuiteTest {
 protected:
  void SetUp() override { fs::create_directory("fast disk"); }

  // Passes, fails, crashes, reads what another one leaves, and prints.
  static std::string AllKinds() {
    return Case("bytes", "WriteBytes", "arguments = [\"320\"]") +
           Case("copy", "Copy", "arguments = [\"out.pcm\", \"b.pcm\"]\nafter = [\"bytes\"]") +
           Case("nothing", "WriteNothing") + Case("crash", "Crash") + Case("print", "PrintAndLog") +
           Case("float", "WriteLoud");
  }

  // A report without what differs from run to run.
  static std::string TimelessReport(const std::string& path) {
    nlohmann::json report = nlohmann::json::parse(ReadFile(path));
    for (const char* const key : {"started", "elapsed", "cpu", "rtf", "peak_memory", "ran_on"}) {
      report.erase(key);
    }
    for (nlohmann::json& figure : report["figures"]) {
      const std::string name = figure["name"];
      if (name == "rtf" || name == "cpu" || name == "peak_memory") figure.erase("value");
    }
    return report.dump(1);
  }

  // All files beneath a folder, by their places in it.
  static std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> files;
    for (const auto& each : fs::recursive_directory_iterator(folder)) {
      files.push_back(each.path().lexically_relative(folder));
    }
    std::sort(files.begin(), files.end());
    return files;
  }

  static bool Waits(const std::string& path) {
    for (int i = 0; i < 60000 && !fs::exists(path); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return fs::exists(path);
  }

  // The only folder in the scratch folder.
  static std::string OwnFolder() {
    for (const auto& each : fs::directory_iterator("fast disk")) return each.path();
    return "";
  }
};

TEST_F(ScratchTest, LeavesWhatASuiteWithoutItLeaves) {
  WriteFile("s.toml", AllKinds());
  EXPECT_EQ(Suite({"s.toml", "--out", "r"}).exitCode, 4);
  fs::rename("r", "without");
  EXPECT_EQ(Suite({"s.toml", "--out", "r", "--scratch", "fast disk"}).exitCode, 4);
  EXPECT_EQ(Timeless("r"), Timeless("without"));
  EXPECT_EQ(FilesIn("r"), FilesIn("without"));
  for (const char* const id : {"bytes", "copy", "nothing", "print", "float"}) {
    const std::string report = "/reports/" + std::string(id) + ".json";
    EXPECT_EQ(TimelessReport("r" + report), TimelessReport("without" + report));
  }
  EXPECT_EQ(ReadFile("r/cases/copy/b.pcm"), ReadFile("without/cases/copy/b.pcm"));
  for (const std::string& file : FilesIn("r")) {
    if (!fs::is_regular_file("r/" + file)) continue;
    EXPECT_THAT(ReadFile("r/" + file), Not(HasSubstr("audio_bench_suite."))) << file;
  }
  EXPECT_TRUE(fs::is_empty("fast disk"));
}

TEST_F(ScratchTest, CasesRunThere) {
  WriteFile("s.toml", Case("hang", "Hang"));
  Process suite(Command({"suite", "s.toml", "--out", "r", "--scratch", "fast disk"}));
  while (OwnFolder().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_TRUE(Waits(OwnFolder() + "/cases/hang/pid"));
  EXPECT_FALSE(fs::exists("r/cases/hang"));
  kill(suite.pid(), SIGINT);
  EXPECT_EQ(suite.Wait().exitCode, 128 + SIGINT);
  EXPECT_TRUE(fs::is_empty("fast disk"));
  EXPECT_FALSE(fs::exists("r/cases/hang"));
  EXPECT_FALSE(fs::exists("r/.incoming"));
  EXPECT_EQ(Verdicts("r"), "not_run");
}

// The scratch folder of a suite that runs stays.
TEST_F(ScratchTest, RemovesWhatAKilledSuiteHasLeft) {
  WriteFile("s.toml", Case("hang", "Hang"));
  Process killed(Command({"suite", "s.toml", "--out", "k", "--scratch", "fast disk"}));
  while (OwnFolder().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  const std::string left = OwnFolder();
  ASSERT_TRUE(Waits(left + "/cases/hang/pid"));
  WriteFile("t.toml", Case("good", "WritePcm"));
  EXPECT_EQ(Suite({"t.toml", "--out", "beside", "--scratch", "fast disk"}).exitCode, 0);
  EXPECT_TRUE(fs::exists(left + "/cases/hang/pid"));

  kill(killed.pid(), SIGKILL);
  killed.Wait();
  // Its case ends with it, but not at the same moment.
  for (int i = 0; i < 100 && fs::exists(left); ++i) {
    fs::remove_all("after");
    EXPECT_EQ(Suite({"t.toml", "--out", "after", "--scratch", "fast disk"}).exitCode, 0);
  }
  EXPECT_TRUE(fs::is_empty("fast disk"));
}

TEST_F(ScratchTest, IsRefusedWhereThereIsNone) {
  WriteFile("s.toml", Case("good", "WritePcm"));
  const Finished missing = Suite({"s.toml", "--out", "r", "--scratch", "nowhere"});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_THAT(missing.err, HasSubstr("the scratch folder nowhere: No such file or directory"));
  EXPECT_FALSE(fs::exists("r"));
  const Finished file = Suite({"s.toml", "--out", "r", "--scratch", "s.toml"});
  EXPECT_EQ(file.exitCode, 2);
  EXPECT_THAT(file.err, HasSubstr("the scratch folder s.toml is no folder"));
}

// A disk of 256 kB, for those who may make one.
TEST_F(ScratchTest, SaysThatItIsFull) {
  if (std::system("mount -t tmpfs -o size=256k none 'fast disk' 2>/dev/null") != 0) {
    GTEST_SKIP() << "no file system can be mounted here";
  }
  WriteFile("s.toml", Case("large", "WriteBytes", "arguments = [\"320000\"]") +
                          Case("small", "WriteBytes", "arguments = [\"320\"]"));
  const Finished full = Suite({"s.toml", "-j1", "--out", "r", "--scratch", "fast disk"});
  const bool empty = fs::is_empty("fast disk");
  const std::string folder = fs::canonical("fast disk");
  EXPECT_EQ(std::system("umount 'fast disk'"), 0);
  EXPECT_EQ(Verdicts("r"), "error pass");
  EXPECT_THAT(full.out, HasSubstr("the scratch folder " + folder + " is full"));
  EXPECT_FALSE(fs::exists("r/cases/large"));
  EXPECT_TRUE(fs::exists("r/cases/small/out.pcm"));
  EXPECT_TRUE(empty);
  EXPECT_EQ(Suite({"s.toml", "--out", "r", "--resume"}).exitCode, 0);
  EXPECT_EQ(Verdicts("r"), "pass pass");
}

}  // namespace
