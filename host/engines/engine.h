#pragma once

#include <sys/stat.h>

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// An engine of the user's in a shared library: it answers for the facilities that it has, the
// desktop engine for the others. A facility is what one header of engine_api declares, and has its
// name: "effects/drc".
struct EngineLibrary {
  std::string path;     // Absolute.
  std::string buildId;  // Hexadecimal; empty when it was linked without one.
  std::string digest;   // SHA-256 of the file.
  std::set<std::string> facilities;
  struct stat state;  // Of the file when it was looked at.

  // Its file name.
  std::string Name() const;
};

// Which engine answers for what.
struct Engine {
  std::optional<EngineLibrary> library = {};  // Nothing: the desktop engine answers for all.

  bool IsInLibrary(const std::string& facility) const {
    return library && library->facilities.contains(facility);
  }

  // Whether it is the library that plays, records or mixes files in the background.
  bool HasDevices() const;
};

// The name of the engine that audio_bench has of itself.
inline constexpr std::string_view kDesktopEngine = "desktop";

// The engine that a word of the command line names: the path of a library, or kDesktopEngine, which
// an empty word stands for, too. The library has been opened in a process of its own, to see that
// it can be. It is looked at once in a process and those that come of it. Throws UsageError when
// the engine cannot be taken: no such file, no library, one that does not open, one that was built
// on another interface, has a facility in half, or none at all.
const Engine& FindEngine(const std::string& word);

// Lets the calls of this process go to the engine, before the first of them. Throws UsageError when
// its library does not open, or is no longer the one that was looked at.
void EnterEngine(const Engine& engine);

// Why a routine cannot be run on the library of an engine alone: "not in this engine
// (effects/drc)", with the facilities that the routine asks for and the library lacks. Empty when
// it has them all, or when it is the desktop engine that answers for all.
std::string NotInEngine(const Engine& engine, std::string_view routine);

// The engine that is a part of this program: its path and build id.
const EngineLibrary& BuiltInEngine();

// All facilities in the order of their names.
const std::vector<std::string>& AllFacilities();

}  // namespace host
