#pragma once

#include <toml++/toml.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A text of a suite file, and where it stands.
struct PlacedText {
  std::string text;
  std::string at;  // "suite.toml:3:12: "
};

// What one name of `each` goes through.
struct Each {
  std::string name;
  std::string at;
  bool words = false;  // A list of words; else `values` is the one pattern of paths.
  std::vector<PlacedText> values = {};
};

// A table of a suite file, or of the user's own one of scorers. Whatever is not as expected is a
// UsageError that begins with file, line and column, and says what was expected.
class SuiteTable {
 public:
  // `table` stays alive. Refuses keys that are not among `keys`, and suggests one of them.
  SuiteTable(const toml::table& table, const std::string& file,
             std::span<const std::string_view> keys);

  // Nothing where the key is not there.
  std::optional<PlacedText> Text(std::string_view key) const;
  std::optional<std::vector<PlacedText>> Texts(std::string_view key) const;
  std::optional<std::vector<std::pair<PlacedText, PlacedText>>> TextsByName(
      std::string_view key) const;
  std::optional<double> Seconds(std::string_view key) const;  // Above 0, up to 1000000.
  std::optional<bool> Flag(std::string_view key) const;
  std::optional<int> Count(std::string_view key) const;  // 1 to 10000.
  // Sample rates, Hz.
  std::optional<std::vector<int>> Rates(std::string_view key) const;
  std::vector<Each> AllOf(std::string_view key) const;  // In the order of the file.

  // Where the table begins.
  const std::string& at() const { return m_at; }

 private:
  const toml::table& m_table;
  const std::string& m_file;
  std::string m_at;
};

// The tables of such a file. Throws UsageError when it is none.
toml::table ParseSuite(const std::string& path);

// "suite.toml:3:12: "
std::string PlaceOf(const std::string& file, const toml::source_region& source);

}  // namespace host
