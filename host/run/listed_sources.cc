#include "run/listed_sources.h"

#include <filesystem>
#include <map>
#include <system_error>

#include "base/usage_error.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// Without what follows the last dot of its last component.
std::string Stem(const fs::path& path) { return fs::path(path).replace_extension().string(); }

class Folder {
 public:
  Folder(const std::string& path, const std::function<void()>& goOn) : m_path(path) {
    std::error_code error;
    fs::recursive_directory_iterator at(path, error);
    if (error) throw UsageError{"--in " + path + ": " + error.message()};
    for (; at != fs::recursive_directory_iterator(); at.increment(error)) {
      goOn();
      if (error) throw UsageError{"--in " + path + ": " + error.message()};
      if (!at->is_regular_file(error)) continue;
      const fs::path relative = at->path().lexically_relative(path);
      m_byPlace[Stem(relative)].push_back(at->path().string());
      m_byName[Stem(relative.filename())].push_back(at->path().string());
    }
  }

  // Empty when there is none.
  std::string Find(const std::string& place) const {
    const std::string stem = Stem(place);
    for (size_t at = 0; at != std::string::npos;) {
      if (const auto found = m_byPlace.find(stem.substr(at)); found != m_byPlace.end()) {
        return Only(found->second, place);
      }
      const size_t slash = stem.find('/', at);
      at = slash == std::string::npos ? slash : slash + 1;
    }
    const auto found = m_byName.find(fs::path(stem).filename().string());
    return found == m_byName.end() ? "" : Only(found->second, place);
  }

 private:
  std::string Only(const std::vector<std::string>& files, const std::string& place) const {
    if (files.size() == 1) return files.front();
    throw UsageError{"--in " + m_path + ": both " + files[0] + " and " + files[1] + " may be " +
                     place};
  }

  const std::string& m_path;
  std::map<std::string, std::vector<std::string>> m_byPlace;
  std::map<std::string, std::vector<std::string>> m_byName;
};

}  // namespace

std::vector<NamedFile> FindListed(const std::string& folder, const std::vector<FilePlace>& inputs,
                                  const std::function<void()>& goOn) {
  const Folder files(folder, goOn);
  std::vector<NamedFile> found;
  std::vector<std::string> listed;
  for (size_t i = 0; i < inputs.size(); ++i) {
    if (inputs[i].use.pattern.empty()) continue;
    listed.push_back(fs::path(inputs[i].place).filename());
    if (std::string path = files.Find(inputs[i].place); !path.empty()) {
      found.push_back({i, std::move(path)});
    }
  }
  if (!found.empty()) return found;
  throw UsageError{"--in " + folder + " holds none of the " + std::to_string(listed.size()) +
                   " files that are listed" +
                   (listed.empty() ? "" : ", such as " + Stem(listed.front()) + ".wav")};
}

std::string FindFile(const std::string& folder, const FilePlace& input,
                     const std::function<void()>& goOn) {
  return Folder(folder, goOn).Find(input.place);
}

}  // namespace host
