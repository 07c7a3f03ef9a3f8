#include "files/workspace.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "files/path_map.h"
#include "files/regular_file.h"

namespace host {

namespace {

std::string FillIn(std::string_view name, std::span<const std::string> parameters,
                   std::span<const std::string_view> arguments) {
  std::string filled(name);
  for (size_t i = 0; i < parameters.size() && i < arguments.size(); ++i) {
    const std::string place = "{" + parameters[i] + "}";
    const size_t at = filled.find(place);
    if (at != std::string::npos) filled.replace(at, place.size(), arguments[i]);
  }
  return filled;
}

}  // namespace

std::vector<std::string> ParameterNames(std::string_view parameters) {
  std::vector<std::string> names;
  while (!parameters.empty()) {
    const size_t comma = std::min(parameters.find(", "), parameters.size());
    const std::string_view declared = parameters.substr(0, comma);
    names.emplace_back(declared.substr(declared.find_last_of(" *&") + 1));
    parameters.remove_prefix(std::min(comma + 2, parameters.size()));
  }
  return names;
}

std::vector<FilePlace> PlaceFiles(std::span<const FileUse> uses, std::string_view parameters,
                                  std::span<const std::string_view> arguments,
                                  const std::string& workspace) {
  const std::vector<std::string> names = ParameterNames(parameters);
  std::vector<FilePlace> places;
  for (const FileUse& use : uses) {
    FilePlace place = {.use = use, .name = FillIn(use.name, names, arguments), .path = {}};
    place.use.formatOf = FillIn(use.formatOf, names, arguments);
    const std::optional<std::string> mapped = PlaceInWorkspace(place.name);
    if (mapped) {
      place.place = *mapped;
      place.path = workspace + "/" + *mapped;
    }
    places.push_back(std::move(place));
  }
  return places;
}

std::optional<InputFault> FindInputFault(const FilePlace& input) {
  if (input.path.empty()) return InputFault{.text = "leads out of the workspace"};
  struct stat status;
  if (stat(input.path.c_str(), &status) != 0) {
    return InputFault{.missing = errno == ENOENT || errno == ENOTDIR, .text = strerror(errno)};
  }
  if (S_ISDIR(status.st_mode)) return InputFault{.text = strerror(EISDIR)};
  if (!S_ISREG(status.st_mode)) return InputFault{.text = "Not a regular file"};
  const int file = OpenRegularDescriptor(input.path);
  if (file < 0) return InputFault{.text = FaultText(errno)};
  close(file);
  return std::nullopt;
}

OutputBefore::OutputBefore(const FilePlace& output) : m_path(output.path), m_before(output.path) {
  m_before.WaitUntilDatesTell();
}

OutputState OutputBefore::StateNow() const {
  if (m_path.empty()) return OutputState::kOutside;
  const FileState now(m_path);
  if (!now.status()) return OutputState::kAbsent;
  if (!S_ISREG(now.status()->st_mode)) return OutputState::kNotAFile;
  if (m_before.IsSameNow()) return OutputState::kStale;
  return now.status()->st_size == 0 ? OutputState::kEmpty : OutputState::kWritten;
}

}  // namespace host
