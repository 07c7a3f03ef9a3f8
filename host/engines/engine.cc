#include "engines/engine.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

#include "base/usage_error.h"
#include "engine_api/common/interface_version.h"
#include "engines/open_library.h"
#include "engines/shared_library.h"
#include "facilities/engine_calls.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMostNamed = 8;  // Of the functions that are missing.

// The name of a function as a programmer writes it.
std::string Written(const std::string& linkName) {
  constexpr std::string_view kOfC = "audio_engine_";  // See ENGINE_C_NAME.
  if (linkName.starts_with(kOfC)) return linkName.substr(kOfC.size());
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(linkName.c_str(), nullptr, nullptr, &status), std::free);
  return text == nullptr ? linkName : text.get();
}

// What a facility consists of, and what of it a library has.
struct Share {
  std::vector<std::string> missing;
  size_t there = 0;
};

std::map<std::string, Share> Shares(const SharedLibrary& library) {
  std::map<std::string, Share> shares;
  for (const auto& [facility, name] : facilities::EngineCalls()) {
    Share& share = shares[facility];
    if (library.exported.contains(name)) {
      ++share.there;
    } else {
      share.missing.emplace_back(name);
    }
  }
  return shares;
}

std::string Missing(const std::vector<std::string>& names) {
  // Constructors and destructors have two link names and are written alike.
  std::set<std::string> written;
  for (const std::string& name : names) written.insert(Written(name));
  std::string text;
  size_t count = 0;
  for (const std::string& name : written) {
    if (++count > kMostNamed) {
      return text + " and " + std::to_string(written.size() - kMostNamed) + " more";
    }
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

// The versions of the interface that a library says it was built on: "1".
std::string Versions(const SharedLibrary& library) {
  const std::string prefix = AUDIO_ENGINE_INTERFACE_SYMBOL;
  std::string versions;
  for (auto each = library.exported.lower_bound(prefix);
       each != library.exported.end() && each->starts_with(prefix); ++each) {
    versions += (versions.empty() ? "" : " and ") + each->substr(prefix.size());
  }
  return versions;
}

// Throws UsageError where a library is not for this bench.
std::set<std::string> Facilities(const std::string& path, const SharedLibrary& library) {
  const std::string own = std::to_string(AUDIO_ENGINE_INTERFACE);
  const std::string versions = Versions(library);
  if (!versions.empty() && versions != own) {
    throw UsageError{path + " was built on version " + versions +
                     " of the engine's interface, and this bench has version " + own +
                     ": build it anew with the headers of this bench"};
  }
  std::set<std::string> whole;
  std::string halves;
  for (const auto& [facility, share] : Shares(library)) {
    if (share.there == 0) continue;
    whole.insert(facility);
    if (share.missing.empty()) continue;
    halves += (halves.empty() ? "" : "; ") + facility + " is without " + Missing(share.missing);
  }
  if (whole.empty()) {
    throw UsageError{path + " exports nothing of the engine's interface (engine_api)"};
  }
  if (versions.empty()) {
    throw UsageError{path +
                     " does not say on which version of the engine's interface it was built; "
                     "AUDIO_ENGINE_INTERFACE_VERSION; in one of its sources does, and this bench "
                     "has version " +
                     own};
  }
  if (!halves.empty()) throw UsageError{path + " has a facility in half: " + halves};
  return whole;
}

Engine Look(const std::string& word) {
  if (word.empty() || word == kDesktopEngine) return {};
  if (facilities::EngineCalls().empty()) {
    throw UsageError{"--engine " + word +
                     ": this audio_bench was built on one engine and takes no "
                     "other"};
  }
  std::error_code error;
  const std::string path = fs::canonical(word, error);
  if (error) throw UsageError{"--engine " + word + ": " + error.message()};
  struct stat state = {};
  if (lstat(path.c_str(), &state) != 0) throw UsageError{"--engine " + word + ": it is gone"};
  const SharedLibrary read = ReadSharedLibrary(path);
  Engine engine = {EngineLibrary{.path = path,
                                 .buildId = read.buildId,
                                 .digest = read.digest,
                                 .facilities = Facilities(path, read),
                                 .state = state}};
  TryLibrary(path, [&engine] { EnterEngine(engine); });
  return engine;
}

// Whether a file is what it was.
bool IsSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
         one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

}  // namespace

std::string EngineLibrary::Name() const { return fs::path(path).filename(); }

bool Engine::HasDevices() const {
  return library &&
         std::any_of(library->facilities.begin(), library->facilities.end(),
                     [](const std::string& each) { return each.starts_with("mixing/"); });
}

const Engine& FindEngine(const std::string& word) {
  static std::map<std::string, Engine> found;
  const auto known = found.find(word);
  return known != found.end() ? known->second : found.emplace(word, Look(word)).first->second;
}

void EnterEngine(const Engine& engine) {
  if (!engine.library) return;
  const EngineLibrary& library = *engine.library;
  // In the routine's process `stat` looks into the workspace; this path is no link.
  struct stat state = {};
  if (lstat(library.path.c_str(), &state) != 0 || !IsSame(state, library.state)) {
    throw UsageError{library.path + " has changed since it was looked at"};
  }
  const auto calls = facilities::EngineCalls();
  const auto targets = facilities::EngineTargets();
  const auto fromLibraries = facilities::LibraryTargets();
  // While it opens, its constructors reach the desktop engine.
  std::copy(targets.begin(), targets.end(), fromLibraries.begin());
  const OpenLibrary opened(library.path);
  for (size_t i = 0; i < calls.size(); ++i) {
    if (!engine.IsInLibrary(calls[i].facility)) continue;
    targets[i] = fromLibraries[i] = opened.Function(calls[i].name);
  }
}

std::string NotInEngine(const Engine& engine, std::string_view routine) {
  if (!engine.library) return "";
  std::set<std::string> lacking;
  for (const facilities::RoutineUse& use : facilities::RoutineUses()) {
    if (use.routine == routine && !engine.IsInLibrary(use.facility)) lacking.insert(use.facility);
  }
  std::string names;
  for (const std::string& each : lacking) names += (names.empty() ? "" : ", ") + each;
  return names.empty() ? "" : "not in this engine (" + names + ")";
}

const EngineLibrary& BuiltInEngine() {
  static const EngineLibrary self = [] {
    std::error_code error;
    return EngineLibrary{.path = fs::read_symlink("/proc/self/exe", error),
                         .buildId = OwnBuildId(),
                         .digest = {},
                         .facilities = {},
                         .state = {}};
  }();
  return self;
}

const std::vector<std::string>& AllFacilities() {
  static const std::vector<std::string> all = [] {
    std::set<std::string> names;
    for (const auto& call : facilities::EngineCalls()) names.insert(call.facility);
    return std::vector<std::string>(names.begin(), names.end());
  }();
  return all;
}

}  // namespace host
