#include "tables/suite_table.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "recording/recording.h"

namespace host {

namespace {

constexpr int kMaxRepeats = 10000;
constexpr double kMaxTimeoutSeconds = 1e6;

// "a string", "a whole number", ...
std::string Kind(const toml::node& node) {
  switch (node.type()) {
    case toml::node_type::table:
      return "a table";
    case toml::node_type::array:
      return "a list";
    case toml::node_type::string:
      return "a string";
    case toml::node_type::integer:
      return "a whole number";
    case toml::node_type::floating_point:
      return "a number";
    case toml::node_type::boolean:
      return "true or false";
    default:
      return "a date or a time";
  }
}

[[noreturn]] void RefuseNode(const std::string& file, const toml::node& node, std::string_view key,
                             const std::string& expected) {
  throw UsageError{PlaceOf(file, node.source()) + std::string(key) + " must be " + expected +
                   ", not " + Kind(node)};
}

PlacedText TextOf(const std::string& file, const toml::node& node, std::string_view key,
                  const std::string& expected = "a string") {
  const auto* const text = node.as_string();
  if (text == nullptr) RefuseNode(file, node, key, expected);
  return {text->get(), PlaceOf(file, node.source())};
}

std::vector<PlacedText> TextsOf(const std::string& file, const toml::node& node,
                                std::string_view key) {
  const toml::array* const list = node.as_array();
  if (list == nullptr) RefuseNode(file, node, key, "a list of strings");
  std::vector<PlacedText> texts;
  for (const toml::node& each : *list) {
    texts.push_back(TextOf(file, each, "each of " + std::string(key)));
  }
  return texts;
}

bool Before(const toml::source_region& a, const toml::source_region& b) {
  return std::pair(a.begin.line, a.begin.column) < std::pair(b.begin.line, b.begin.column);
}

// Why a key is not one of those that are known.
std::string UnknownKey(std::string_view key, std::span<const std::string_view> keys) {
  std::string text = "unknown key \"" + std::string(key) + "\"; ";
  if (const auto alike = NamesAlike(key, keys); !alike.empty()) {
    return text + "did you mean \"" + std::string(alike.front()) + "\"?";
  }
  text += "there are ";
  for (const std::string_view each : keys) {
    text += (each == keys.front() ? "" : ", ") + std::string(each);
  }
  return text;
}

}  // namespace

std::string PlaceOf(const std::string& file, const toml::source_region& source) {
  return file + ":" + std::to_string(source.begin.line) + ":" +
         std::to_string(source.begin.column) + ": ";
}

SuiteTable::SuiteTable(const toml::table& table, const std::string& file,
                       std::span<const std::string_view> keys)
    : m_table(table), m_file(file), m_at(PlaceOf(file, table.source())) {
  const toml::key* unknown = nullptr;
  for (const auto& [key, value] : table) {
    if (std::find(keys.begin(), keys.end(), key.str()) != keys.end()) continue;
    if (unknown == nullptr || Before(key.source(), unknown->source())) unknown = &key;
  }
  if (unknown == nullptr) return;
  throw UsageError{PlaceOf(file, unknown->source()) + UnknownKey(unknown->str(), keys)};
}

std::optional<PlacedText> SuiteTable::Text(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  return TextOf(m_file, *node, key);
}

std::optional<std::vector<PlacedText>> SuiteTable::Texts(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  return TextsOf(m_file, *node, key);
}

std::optional<std::vector<std::pair<PlacedText, PlacedText>>> SuiteTable::TextsByName(
    std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  const toml::table* const table = node->as_table();
  if (table == nullptr)
    RefuseNode(m_file, *node, key, "a table of strings, { \"NAME\" = \"FILE\" }");
  std::vector<std::pair<PlacedText, PlacedText>> texts;
  for (const auto& [name, value] : *table) {
    PlacedText placed = {std::string(name.str()), PlaceOf(m_file, name.source())};
    texts.emplace_back(std::move(placed),
                       TextOf(m_file, value, std::string(key) + "." + std::string(name.str())));
  }
  return texts;
}

std::optional<double> SuiteTable::Seconds(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  const char* const expected = "a number of seconds between 0 and 1000000";
  if (!node->is_number()) RefuseNode(m_file, *node, key, expected);
  const double seconds = node->value<double>().value_or(0);
  if (seconds > 0 && seconds <= kMaxTimeoutSeconds) return seconds;
  std::ostringstream text;
  text << PlaceOf(m_file, node->source()) << key << " must be " << expected << ", not " << seconds;
  throw UsageError{text.str()};
}

std::optional<bool> SuiteTable::Flag(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  if (!node->is_boolean()) RefuseNode(m_file, *node, key, "true or false");
  return node->as_boolean()->get();
}

std::optional<int> SuiteTable::Count(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  const std::string expected = "a whole number from 1 to " + std::to_string(kMaxRepeats);
  if (!node->is_integer()) RefuseNode(m_file, *node, key, expected);
  const int64_t count = node->as_integer()->get();
  if (count >= 1 && count <= kMaxRepeats) return static_cast<int>(count);
  throw UsageError{PlaceOf(m_file, node->source()) + std::string(key) + " must be " + expected +
                   ", not " + std::to_string(count)};
}

std::optional<std::vector<int>> SuiteTable::Rates(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return std::nullopt;
  const std::string expected = "a list of rates from 1 to " + std::to_string(kMaxRate) + " Hz";
  const toml::array* const list = node->as_array();
  if (list == nullptr) RefuseNode(m_file, *node, key, expected);
  std::vector<int> rates;
  for (const toml::node& each : *list) {
    const int64_t rate = each.is_integer() ? each.as_integer()->get() : 0;
    if (rate < 1 || rate > kMaxRate) {
      throw UsageError{PlaceOf(m_file, each.source()) + std::string(key) + " must be " + expected};
    }
    rates.push_back(static_cast<int>(rate));
  }
  return rates;
}

std::vector<Each> SuiteTable::AllOf(std::string_view key) const {
  const toml::node* const node = m_table.get(key);
  if (node == nullptr) return {};
  const toml::table* const table = node->as_table();
  if (table == nullptr) {
    RefuseNode(m_file, *node, key, "written with a name: " + std::string(key) + ".NAME = \"GLOB\"");
  }
  std::vector<std::pair<const toml::key*, const toml::node*>> entries;
  for (const auto& [name, value] : *table) entries.emplace_back(&name, &value);
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
    return Before(a.first->source(), b.first->source());
  });
  std::vector<Each> all;
  for (const auto& [name, value] : entries) {
    const std::string full = std::string(key) + "." + std::string(name->str());
    Each each = {.name = std::string(name->str()), .at = PlaceOf(m_file, name->source())};
    each.words = value->is_array();
    each.values = each.words
                      ? TextsOf(m_file, *value, full)
                      : std::vector{TextOf(m_file, *value, full,
                                           "a string (a pattern of paths) or a list of strings")};
    if (each.values.empty()) throw UsageError{each.at + full + " is an empty list"};
    all.push_back(std::move(each));
  }
  return all;
}

toml::table ParseSuite(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error))
    throw UsageError{path + " is a folder, not a suite"};
  if (!std::filesystem::exists(path, error)) {
    throw UsageError{"cannot read " + path + ": " + (error ? error.message() : strerror(ENOENT))};
  }
  try {
    return toml::parse_file(path);
  } catch (const toml::parse_error& problem) {
    throw UsageError{PlaceOf(path, problem.source()) + std::string(problem.description())};
  }
}

}  // namespace host
