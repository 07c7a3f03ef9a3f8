#include "run/named_files.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "base/usage_error.h"

namespace host {

namespace {

// What follows the last separator of either kind.
std::string LastComponent(const std::string& name) {
  const size_t at = name.find_last_of("/\\");
  return at == std::string::npos ? name : name.substr(at + 1);
}

// The parameter that names a file; empty when none does.
std::string ParameterOf(const FileUse& use) {
  const bool whole = use.name.starts_with('{') && use.name.find('}') + 1 == use.name.size();
  return whole ? use.name.substr(1, use.name.size() - 2) : "";
}

class Naming {
 public:
  Naming(const std::string& option, std::span<const FilePlace> places, bool lists)
      : m_option(option), m_places(places), m_lists(lists), m_taken(places.size(), false) {}

  // Takes a word that begins with a name. False for another one.
  bool TakeNamed(const std::string& word) {
    for (size_t at = word.find('='); at != std::string::npos; at = word.find('=', at + 1)) {
      const std::optional<size_t> index = Find(word.substr(0, at));
      if (!index) continue;
      Take(*index, word.substr(at + 1));
      return true;
    }
    return false;
  }

  void TakeNext(const std::string& word) {
    if (word.empty()) throw UsageError{m_option + " is empty"};
    std::error_code error;
    if (m_lists && std::filesystem::is_directory(word, error)) {
      m_named.folders.push_back(word);
      return;
    }
    for (size_t i = 0; i < m_places.size(); ++i) {
      if (m_taken[i]) continue;
      if (!m_places[i].use.pattern.empty()) {
        m_named.folders.push_back(word);
      } else {
        Take(i, word);
      }
      return;
    }
    const bool in = m_option == "--in";
    throw UsageError{m_option + " " + word + ": the routine " +
                     (m_places.empty()
                          ? std::string(in ? "reads" : "writes") + " no file"
                          : std::string("has no further ") + (in ? "input" : "output"))};
  }

  NamedFiles Named() {
    std::sort(m_named.files.begin(), m_named.files.end(),
              [](const NamedFile& one, const NamedFile& other) { return one.index < other.index; });
    return std::move(m_named);
  }

 private:
  // The file of a name; nothing when there is none.
  std::optional<size_t> Find(const std::string& name) const {
    std::optional<size_t> byEnd;
    std::string other;
    for (size_t i = 0; i < m_places.size(); ++i) {
      if (m_places[i].name == name || ParameterOf(m_places[i].use) == name) return i;
      if (LastComponent(m_places[i].name) != name) continue;
      if (byEnd) other = m_places[i].name;
      if (!byEnd) byEnd = i;
    }
    if (other.empty()) return byEnd;
    throw UsageError{m_option + " " + name + ": both " + m_places[*byEnd].name + " and " + other +
                     " are called so; give the whole name"};
  }

  void Take(size_t index, const std::string& path) {
    const std::string& name = m_places[index].name;
    if (path.empty()) throw UsageError{m_option + " " + name + "= is without its file"};
    if (m_taken[index]) throw UsageError{m_option + " names " + name + " twice"};
    m_taken[index] = true;
    m_named.files.push_back({index, path});
  }

  const std::string& m_option;
  std::span<const FilePlace> m_places;
  const bool m_lists;
  std::vector<bool> m_taken;
  NamedFiles m_named;
};

// The file that a parameter names; null when it names none.
const FileUse* FindUse(const CatalogueRow& row, const std::string& parameter) {
  for (const harness::FileList* const uses : {&row.inputs, &row.outputs}) {
    const auto use = std::find_if(uses->begin(), uses->end(), [&](const FileUse& each) {
      return ParameterOf(each) == parameter;
    });
    if (use != uses->end()) return &*use;
  }
  return nullptr;
}

// What a file is called that no argument names.
std::string OwnName(const FileUse& use, const std::string& parameter) {
  if (use.container == Container::kWave) return parameter + ".wav";
  return use.container == Container::kHeaderless ? parameter + ".pcm" : parameter;
}

// Whether one of the words is for the file that this parameter names.
bool IsNamed(std::span<const std::string> words, const std::string& parameter) {
  return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
    return word.starts_with(parameter + "=") || word.starts_with(parameter + ".");
  });
}

bool AllNamed(std::span<const std::string> words) {
  return std::all_of(words.begin(), words.end(),
                     [](const std::string& word) { return word.find('=') != std::string::npos; });
}

}  // namespace

NamedFiles NameFiles(const std::string& option, std::span<const std::string> words,
                     std::span<const FilePlace> places, bool lists) {
  Naming naming(option, places, lists);
  std::vector<std::string> nameless;
  for (const std::string& word : words) {
    if (!naming.TakeNamed(word)) nameless.push_back(word);
  }
  for (const std::string& word : nameless) naming.TakeNext(word);
  return naming.Named();
}

std::vector<std::string> CompleteArguments(const CatalogueRow& row,
                                           std::span<const std::string> arguments,
                                           std::span<const std::string> in) {
  const std::vector<std::string> parameters = ParameterNames(row.declared.words.parameters);
  std::vector<std::string> all;
  size_t given = 0;
  for (const std::string& parameter : parameters) {
    if (const FileUse* const use = FindUse(row, parameter)) {
      const bool none = parameter == row.nullable && AllNamed(in) && !IsNamed(in, parameter);
      all.push_back(none ? "none" : OwnName(*use, parameter));
    } else if (given < arguments.size()) {
      all.push_back(arguments[given++]);
    } else {
      break;
    }
  }
  const bool filled = all.size() == parameters.size() && given == arguments.size();
  if (filled && arguments.size() < parameters.size()) return all;
  return {arguments.begin(), arguments.end()};
}

std::vector<std::string> OtherParameters(const CatalogueRow& row) {
  std::vector<std::string> others = ParameterNames(row.declared.words.parameters);
  std::erase_if(others, [&](const std::string& each) { return FindUse(row, each) != nullptr; });
  return others;
}

}  // namespace host
