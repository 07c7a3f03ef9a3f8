#include "cli/words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>

#include "base/suggest.h"

namespace host {

namespace {

// Words that start with '-' are options, except for numbers; "-" alone is a file.
bool IsOption(const std::string& word) {
  return word.size() > 1 && word[0] == '-' && word[1] != '.' &&
         std::isdigit(static_cast<unsigned char>(word[1])) == 0;
}

// "-j", which has its value in the next word or right after it.
bool IsShort(const std::string& option) { return option.size() == 2 && option[1] != '-'; }

bool TakesValue(const CLI::App& command, const std::string& name) {
  const CLI::Option* const option = command.get_option_no_throw(name);
  return option != nullptr && option->get_items_expected_min() > 0;
}

// Of an option of the command that is called alike; empty when none is.
std::string Suggestion(const CLI::App& command, const std::string& word) {
  std::vector<std::string> names;
  for (const CLI::Option* const each : command.get_options()) {
    for (const std::string& name : each->get_lnames()) names.push_back("--" + name);
  }
  const auto alike = NamesAlike(word, std::vector<std::string_view>(names.begin(), names.end()));
  return alike.empty() ? "" : "; did you mean " + std::string(alike.front()) + "?";
}

}  // namespace

Words::Words(const CLI::App& command, std::span<const std::string> words) {
  const auto mark = std::find(words.begin(), words.end(), "--");
  if (mark != words.end()) m_literal.assign(std::next(mark), words.end());
  for (auto at = words.begin(); at != mark;) {
    const std::string& word = *at++;
    const size_t equals = word.find('=');
    const CLI::Option* const option =
        IsOption(word) ? command.get_option_no_throw(word.substr(0, equals)) : nullptr;
    if (!IsOption(word)) {
      m_free.push_back(word);
    } else if (const std::string start = word.substr(0, 2);
               option == nullptr && IsShort(start) && TakesValue(command, start)) {
      Take(start, word.substr(2));
    } else if (option == nullptr) {
      Refuse("unknown option " + word + Suggestion(command, word.substr(0, equals)));
    } else if (equals != std::string::npos) {
      Take(word.substr(0, equals), word.substr(equals + 1));
    } else if (option->get_items_expected_min() == 0) {
      m_options.push_back(word);
    } else if (at != mark && !IsOption(*at)) {
      Take(word, *at++);
    } else {
      Refuse(word + " is without its " + option->get_type_name());
    }
  }
}

std::vector<std::string> Words::Values(const std::string& option) const {
  std::vector<std::string> values;
  for (const std::string& each : m_options) {
    if (each.starts_with(option + "=")) values.push_back(each.substr(option.size() + 1));
  }
  return values;
}

void Words::Take(const std::string& option, const std::string& value) {
  if (value.empty()) {
    Refuse(option + " is empty");
  } else {
    if (IsShort(option)) {
      m_options.insert(m_options.end(), {option, value});
    } else {
      m_options.push_back(option + "=" + value);
    }
  }
}

void Words::Refuse(const std::string& fault) {
  if (m_fault.empty()) m_fault = fault;
}

}  // namespace host
