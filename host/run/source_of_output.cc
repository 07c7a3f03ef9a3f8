#include "run/source_of_output.h"

#include <vector>

namespace host {

const FileReport* SourceInput(std::string_view ending, size_t place,
                              std::span<const FileReport> inputs) {
  if (ending.empty()) return nullptr;
  std::vector<const FileReport*> fitting;
  for (const FileReport& input : inputs) {
    if (input.place.use.name.ends_with(ending)) fitting.push_back(&input);
  }
  return fitting.empty() ? nullptr : fitting[place % fitting.size()];
}

bool IsCalled(const FilePlace& file, const std::string& name) {
  return file.name == name || file.use.name == "{" + name + "}" ||
         file.name.substr(file.name.find_last_of("/\\") + 1) == name;
}

}  // namespace host
