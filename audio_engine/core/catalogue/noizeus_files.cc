#include "catalogue/noizeus_files.h"

#include "harness/format_name.h"
#include "harness/noizeus_cases.h"

namespace harness {

namespace {

constexpr int kBlockBytes = 160;  // 10 ms.

FileUse Sentence(const std::string& name, const std::string& pattern) {
  return {.name = name,
          .container = Container::kHeaderless,
          .rate = 8000,
          .channels = 1,
          .blockBytes = kBlockBytes,
          .pattern = pattern};
}

}  // namespace

std::vector<FileUse> NoizeusClean() {
  std::vector<FileUse> files;
  for (int i = 1; i <= kNoizeusSentences; ++i) {
    files.push_back(Sentence(FormatName("NOIZEUS/in/clean/sp%02d.pcm", i),
                             "NOIZEUS/in/clean/sp<sentence>.pcm"));
    files.back().beside = true;
  }
  return files;
}

std::vector<FileUse> NoizeusNoisy() {
  std::vector<FileUse> files;
  for (const char* const noise : kNoizeusNoises) {
    for (const int level : kNoizeusLevels) {
      for (int i = 1; i <= kNoizeusSentences; ++i) {
        files.push_back(Sentence(
            FormatName("NOIZEUS/in/%s/%ddB/sp%02d_%s_sn%d.pcm", noise, level, i, noise, level),
            "NOIZEUS/in/<noise>/<level>dB/sp<sentence>_<noise>_sn<level>.pcm"));
      }
    }
  }
  return files;
}

std::vector<FileUse> NoizeusProcessed(const std::string& algorithm) {
  std::vector<FileUse> files;
  const std::string remark = algorithm == "mcra2" ? "nothing in the bench writes these" : "";
  for (const char* const noise : kNoizeusNoises) {
    for (const int level : kNoizeusLevels) {
      for (int i = 1; i <= kNoizeusSentences; ++i) {
        files.push_back(Sentence(
            FormatName("NOIZEUS/out/sp%02d_%s_sn%d_%s.pcm", i, noise, level, algorithm.c_str()),
            "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_" + algorithm + ".pcm"));
        files.back().remark = remark;
      }
    }
  }
  return files;
}

std::vector<FileUse> NoizeusResults(const std::string& measure, const std::string& algorithm) {
  std::vector<FileUse> files;
  const std::string start = "NOIZEUS/out/result_" + measure + "_" + algorithm + "_";
  for (const char* const noise : kNoizeusNoises) {
    files.push_back(
        {.name = start + noise + ".txt", .content = "text", .pattern = start + "<noise>.txt"});
  }
  return files;
}

std::vector<FileUse> Join(const std::vector<std::vector<FileUse>>& lists) {
  std::vector<FileUse> joined;
  for (const std::vector<FileUse>& list : lists) {
    joined.insert(joined.end(), list.begin(), list.end());
  }
  return joined;
}

}  // namespace harness
