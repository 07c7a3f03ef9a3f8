#include "report/environment.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

namespace host {

namespace {

// What each begins with: where temporary files go, which libraries are loaded and how memory is
// had, how libsoxr works, where audio devices are, and what sanitizers do.
constexpr std::string_view kPrefixes[] = {"TMP",   "LD_",   "GLIBC_TUNABLES=", "MALLOC_",
                                          "SOXR_", "OMP_",  "GOMP_",           "PULSE_",
                                          "ASAN_", "LSAN_", "TSAN_",           "UBSAN_"};

// Those of which the name is whole; HOME and XDG_... say where the client of the sound server
// looks.
constexpr std::string_view kNames[] = {"TEMP",    "TEMPDIR",         "HOME",
                                       "DISPLAY", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"};

bool Matters(std::string_view entry, std::string_view name) {
  const auto begins = [entry](std::string_view prefix) { return entry.starts_with(prefix); };
  return std::any_of(std::begin(kPrefixes), std::end(kPrefixes), begins) ||
         std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

}  // namespace

Json EnvironmentJson() {
  std::map<std::string, std::string> found;  // In the order of their names.
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    const size_t end = text.find('=');
    if (end == std::string_view::npos || !Matters(text, text.substr(0, end))) continue;
    found.emplace(text.substr(0, end), text.substr(end + 1));
  }
  Json json = Json::object();
  for (const auto& [name, value] : found) json[name] = value;
  return json;
}

}  // namespace host
