#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

// Suites of routines of the probe catalogue, each test in a folder of its own.
class SuiteTest : public testing::Test {
 protected:
  static std::vector<std::string> Command(std::vector<std::string> words) {
    words.insert(words.begin(), AUDIO_BENCH_PROBE);
    return words;
  }

  static Finished Suite(std::vector<std::string> words) {
    words.insert(words.begin(), "suite");
    return RunProcess(Command(words));
  }

  // A case of a suite file: its id, its routine, and more lines.
  static std::string Case(const std::string& id, const std::string& routine,
                          const std::string& more = "") {
    return "[[case]]\nid = \"" + id + "\"\nroutine = \"" + routine + "\"\n" + more + "\n";
  }

  // The results in a folder, held against their schema.
  static nlohmann::json Results(const std::string& folder) {
    return ParseResults(ReadFile(folder + "/results.json"));
  }

  // The same without what differs from run to run: times, and what follows from them.
  static nlohmann::json Timeless(const std::string& folder) {
    nlohmann::json results = Results(folder);
    for (const char* const key : {"started", "command"}) results.erase(key);
    for (nlohmann::json& each : results["cases"]) {
      for (const char* const key : {"elapsed", "cpu", "rtf", "rtf_cpu"}) each.erase(key);
      for (nlohmann::json& figure : each["figures"]) {
        const std::string name = figure["name"];
        if (name == "rtf" || name == "cpu" || name == "peak_memory") figure.erase("value");
      }
    }
    return results;
  }

  // One word for each case, in the order of the results.
  static std::string Verdicts(const std::string& folder) {
    std::string verdicts;
    const nlohmann::json results = Results(folder);
    for (const nlohmann::json& each : results["cases"]) {
      verdicts += (verdicts.empty() ? "" : " ") + each["verdict"].get<std::string>();
    }
    return verdicts;
  }

  TemporaryDirectory m_directory;
};
