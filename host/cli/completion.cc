#include "cli/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include "catalogue/catalogue_text.h"
#include "cli/argument_values.h"
#include "cli/synopsis.h"
#include "controls/control_faults.h"
#include "measure/measure_file.h"

namespace host {

namespace {

constexpr const char* kScript =
    R"script(# Completion of audio_bench for bash; the program itself knows its words.
_audio_bench() {
  local answers current=${COMP_WORDS[COMP_CWORD]}
  mapfile -t answers < <("$1" complete "$COMP_CWORD" "${COMP_WORDS[@]}" 2>/dev/null)
  COMPREPLY=("${answers[@]:1}")
  # "--in=FILE" is three words here.
  [[ $current != '=' ]] || current=
  case ${answers[0]-none} in
    files) compopt -o filenames 2>/dev/null; mapfile -t answers < <(compgen -f -- "$current") ;;
    folders) compopt -o filenames 2>/dev/null; mapfile -t answers < <(compgen -d -- "$current") ;;
    suites)
      compopt -o filenames 2>/dev/null
      mapfile -t answers < <(compgen -d -- "$current"; compgen -G "$current*.toml") ;;
    *) answers=() ;;
  esac
  COMPREPLY+=("${answers[@]}")
}
complete -F _audio_bench audio_bench
)script";

struct Answer {
  const char* files = "none";
  std::vector<std::string> words = {};
};

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, at);) parts.push_back(part);
  return parts;
}

Answer Commands() {
  Answer answer;
  for (const Synopsis& each : Synopses()) answer.words.emplace_back(each.command);
  return answer;
}

Answer Rows(bool helpers, const char* files = "none") {
  Answer answer = {files, {}};
  for (const CatalogueRow& row : Catalogue()) {
    if (helpers || !row.helper) answer.words.emplace_back(row.declared.words.name);
  }
  return answer;
}

Answer Faults() {
  Answer answer;
  for (const ControlFault& each : ControlFaults()) answer.words.emplace_back(each.name);
  return answer;
}

Answer OptionsOf(const CLI::App& command) {
  Answer answer;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) answer.words.push_back("--" + name);
  }
  return answer;
}

// By the name of the value, which is what the help shows.
Answer ValuesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  if (type.find("FILE") != std::string::npos) return {"files", {}};
  if (type.starts_with("DIR")) return {"folders", {}};
  if (type.find('|') != std::string::npos) return {"none", Split(type, '|')};
  Answer answer;
  if (type.starts_with("NAME,")) {
    for (const std::string_view name : MeasureNames()) answer.words.emplace_back(name);
  }
  if (type == "G") {
    for (const Group group : kGroups) answer.words.emplace_back(GroupWord(group));
  }
  return answer;
}

// A word that is neither an option nor the value of one, after `before` of them.
Answer FreeWord(const std::string& command, const std::vector<std::string>& before) {
  if (command == "help" && before.empty()) return Commands();
  if (command == "completion" && before.empty()) return {"none", {"bash"}};
  if (command == "merge") return {"folders", {}};
  if ((command == "report" || command == "open") && before.empty()) return {"files", {}};
  if (command == "replay" && before.empty()) return {"files", {}};
  if (command == "compare" || command == "measure") return {"files", {}};
  if (command == "baseline" && before.empty()) {
    return {"none", {"save", "list", "show", "remove", "export"}};
  }
  if (command == "baseline") return {"files", {}};
  if (command == "controls") return Faults();
  if (command == "suite") return before.size() < 2 ? Rows(false, "suites") : Answer();
  if ((command == "list" || command == "describe") && before.empty()) return Rows(true);
  if (command != "run" && command != "stage") return {};
  if (before.empty()) return Rows(false);
  const Arguments arguments(before.begin() + 1, before.end());
  const std::vector<std::string> values = ArgumentValues(before.front(), arguments);
  return {values.empty() ? "files" : "none", values};
}

// The option whose value the word after `word` is; null when it is none.
const CLI::Option* Awaiting(const CLI::App& command, const std::string& word) {
  if (!word.starts_with('-')) return nullptr;
  const CLI::Option* const option = command.get_option_no_throw(word);
  return option != nullptr && option->get_items_expected_min() > 0 ? option : nullptr;
}

// `words` are those after the command, up to the one that is looked for.
Answer WordOf(const CLI::App& command, std::span<const std::string> words,
              const std::string& current) {
  std::vector<std::string> before;
  const CLI::Option* awaiting = nullptr;
  bool literal = false;
  for (const std::string& word : words) {
    if (word == "=" && awaiting != nullptr) continue;  // As bash divides "--work=DIR".
    const bool isValue = awaiting != nullptr;
    awaiting = isValue || literal ? nullptr : Awaiting(command, word);
    literal = literal || word == "--";
    const bool isOption = !literal && word.starts_with('-');
    if (!isValue && !isOption && word != "--") before.push_back(word);
  }
  if (awaiting != nullptr) return ValuesOf(*awaiting);
  if (current.starts_with('-') && !literal) return OptionsOf(command);
  return FreeWord(command.get_name(), before);
}

}  // namespace

std::string BashCompletion() { return kScript; }

std::string Completions(const CLI::App& app, std::span<const std::string> words, size_t at) {
  std::string current = at < words.size() ? words[at] : "";
  if (current == "=") current.clear();
  Answer answer;
  if (at <= 1) {
    answer = current.starts_with('-') ? OptionsOf(app) : Commands();
  } else if (const CLI::App* const command = FindCommand(app, words[1]); command != nullptr) {
    // The "=" itself stands between an option and its value.
    const size_t end = at + (words.size() > at && words[at] == "=" ? 1 : 0);
    answer = WordOf(*command, words.subspan(2, std::min(end, words.size()) - 2), current);
  }
  std::string lines = std::string(answer.files) + "\n";
  for (const std::string& word : answer.words) {
    if (word.starts_with(current)) lines += word + "\n";
  }
  return lines;
}

}  // namespace host
