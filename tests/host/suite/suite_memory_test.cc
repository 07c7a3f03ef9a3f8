// How much memory many cases take.

#include <sys/resource.h>
#include <sys/wait.h>

#include <fstream>

#include "suite_fixture.h"

namespace {

namespace fs = std::filesystem;

class SuiteMemoryTest : public SuiteTest {
 protected:
  // The largest that the program has been, in bytes.
  static double PeakMemory(const std::vector<std::string>& words) {
    const pid_t child = fork();
    if (child == 0) {
      if (freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
      std::vector<std::string> command = Command(words);
      std::vector<char*> arguments;
      for (std::string& word : command) arguments.push_back(word.data());
      arguments.push_back(nullptr);
      execv(arguments[0], arguments.data());
      _exit(1);
    }
    int status = 0;
    rusage usage = {};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_TRUE(WIFEXITED(status));
    return 1024.0 * static_cast<double>(usage.ru_maxrss);
  }

  // A suite of so many calls. They have ended at once, because what they follow does not pass.
  static std::string Calls(int count) {
    const std::string name = "calls" + std::to_string(count);
    fs::create_directory(name);
    for (int i = 0; i < count; ++i) std::ofstream(name + "/" + std::to_string(100000 + i));
    WriteFile(name + ".toml", Case("bad", "WriteNothing") +
                                  Case("call-{call}", "Copy",
                                       "arguments = [\"in.pcm\", \"out.pcm\"]\neach.call = \"" +
                                           name + "/*\"\nin = { \"in.pcm\" = \"" + name +
                                           "/{call}/mic.wav\" }\nafter = [\"bad\"]"));
    return name;
  }

  static double MemoryOf(int count) {
    const std::string name = Calls(count);
    const double bytes = PeakMemory({"suite", name + ".toml", "--out", name + ".results"});
    EXPECT_EQ(Results(name + ".results")["counts"]["skip"], count);
    return bytes;
  }
};

TEST_F(SuiteMemoryTest, OfACaseNoMoreIsKeptThanAKilobyte) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer keeps a memory of its own";
#endif
  constexpr int kFew = 500;
  constexpr int kMany = 8500;
  const double each = (MemoryOf(kMany) - MemoryOf(kFew)) / (kMany - kFew);
  RecordProperty("bytes", std::to_string(each));
  EXPECT_LT(each, 1024);
}

}  // namespace
