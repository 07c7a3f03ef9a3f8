#include "selftest/trust.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/user_folder.h"
#include "selftest/build_ids.h"
#include "selftest/run_controls.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr const char* kHolds = "holds\n";
constexpr const char* kFails = "fails\n";

// The file of a measure's answer for this build; empty where it cannot be kept.
fs::path FileOf(std::string_view measure) {
  const fs::path folder = UserFolder("XDG_CACHE_HOME", ".cache");
  static const std::string build = BuildIds();
  if (folder.empty() || build.empty()) return {};
  return folder / "audio_bench/selftest" / build / measure;
}

// What a file says, or nothing: it is not there, or is not one of the two texts.
std::optional<bool> KeptAnswer(std::string_view measure) {
  const fs::path path = FileOf(measure);
  if (path.empty()) return {};
  std::ifstream file(path);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (text == kHolds) return true;
  if (text == kFails) return false;
  return {};
}

// Of this process: asked for, or found out.
std::map<std::string, bool, std::less<>>& Answers() {
  static std::map<std::string, bool, std::less<>> answers;
  return answers;
}

}  // namespace

void KeepTrust(std::string_view measure, bool holds) {
  Answers().insert_or_assign(std::string(measure), holds);
  const fs::path path = FileOf(measure);
  if (path.empty()) return;
  // Written whole beside it, then renamed: whoever reads meets all of one answer or none.
  const fs::path whole = path.string() + "." + std::to_string(getpid());
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  std::ofstream file(whole);
  file << (holds ? kHolds : kFails);
  file.close();
  if (file) fs::rename(whole, path, error);
  fs::remove(whole, error);
}

void AskTrust(std::span<const std::string_view> measures) {
  std::vector<std::string_view> unknown;
  for (const std::string_view measure : measures) {
    if (Answers().contains(measure)) continue;
    // Asked first: whether there are controls is known only by building all of them.
    if (const auto kept = KeptAnswer(measure)) {
      Answers().insert_or_assign(std::string(measure), *kept);
    } else if (HasControls(measure)) {
      unknown.push_back(measure);
    }
  }
  if (unknown.empty()) return;
  const std::vector<Outcome> outcomes = RunControls(unknown);
  for (const std::string_view measure : unknown) KeepTrust(measure, AllHold(outcomes, measure));
}

bool Untrusted(std::string_view measure) {
  AskTrust({&measure, 1});
  const auto answer = Answers().find(measure);
  return answer == Answers().end() || !answer->second;
}

}  // namespace host
