#include "report/origin.h"

#include <unistd.h>

#include <fstream>
#include <string>
#include <string_view>

#include "engines/engine_text.h"
#include "report/bench_commit.h"

namespace host {

namespace {

// The model of the first processor from /proc/cpuinfo; empty when it is not given there.
std::string ProcessorModel() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    const size_t colon = line.find(": ");
    if (colon != std::string::npos && line.starts_with("model name")) return line.substr(colon + 2);
  }
  return "";
}

}  // namespace

Json OriginJson(const Engine& engine) {
  static const std::string processor = ProcessorModel();
  return {{"bench",
           {{"version", AUDIO_TESTER_VERSION},
            {"commit", Fact(kCommit, "not built in a git checkout")}}},
          {"engine", EngineJson(engine)},
          {"host",
           {{"cpu", Fact(processor, "the kernel does not name it")},
            {"processors", Count(static_cast<uint64_t>(sysconf(_SC_NPROCESSORS_ONLN)), "1")}}}};
}

}  // namespace host
