#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "synthetic_results.h"

// The program, in a folder of its own that is also its user's home.
class CompareTest : public testing::Test {
 protected:
  static Finished Bench(std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"/usr/bin/env", "-u", "XDG_DATA_HOME",
                  "HOME=" + std::filesystem::current_path().string(), AUDIO_BENCH_PROBE});
    return RunProcess(words);
  }

  static Finished Compare(std::vector<std::string> words) {
    words.insert(words.begin(), "compare");
    return Bench(words);
  }

  // The folder of a suite's results.
  static void WriteResults(const std::string& folder, const host::Json& results) {
    std::filesystem::create_directories(folder);
    WriteFile(folder + "/results.json", results.dump());
  }

  // Ten cases with an my_sdr of 5 dB in "a", of 4 dB in "b".
  static void WriteWorse() {
    WriteResults("a", OneFigureEach(std::vector<double>(10, 5)));
    WriteResults("b", OneFigureEach(std::vector<double>(10, 4)));
  }

  TemporaryDirectory m_directory;
};
