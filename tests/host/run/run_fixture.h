#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

// Runs of the program on the probe catalogue, each test in a folder of its own.
class RunTest : public testing::Test {
 protected:
  // `audio_bench run` with these words.
  static std::vector<std::string> Command(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH_PROBE, "run"});
    return words;
  }
  static Finished Run(const std::vector<std::string>& words) { return RunProcess(Command(words)); }

  // The same under what a shell sets up before it.
  static Finished RunAfter(const std::string& setUp, const std::string& words) {
    return RunProcess({"/bin/sh", "-c", setUp + "; exec '" + AUDIO_BENCH_PROBE + "' run " + words});
  }

  // Makes a file in the workspace.
  static void Put(const std::string& name, const std::string& bytes) {
    const std::filesystem::path path = "bench_work/" + name;
    std::filesystem::create_directories(path.parent_path());
    WriteFile(path, bytes);
  }

  // The process of a routine that hangs in a run that has just been started.
  static pid_t AwaitHangingChild() {
    while (ReadFile("bench_work/logs/Hang.log").empty()) usleep(1000);
    return std::stoi(ReadFile("bench_work/pid"));
  }

  TemporaryDirectory m_directory;
};
