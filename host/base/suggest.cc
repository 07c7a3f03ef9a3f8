#include "base/suggest.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string>
#include <utility>

namespace host {

namespace {

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  }
  return lower;
}

// Letters to insert, remove or replace, or neighbours to exchange (Damerau 1964), row by row.
size_t Distance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  std::vector<size_t> above(row.size());
  for (size_t i = 0; i < a.size(); ++i) {
    const std::vector<size_t> twoAbove = std::exchange(above, row);
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t replaced = above[j] + (a[i] == b[j] ? 0 : 1);
      row[j + 1] = std::min({replaced, above[j + 1] + 1, row[j] + 1});
      const bool exchanged = i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j];
      if (exchanged) row[j + 1] = std::min(row[j + 1], twoAbove[j - 1] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string_view> NamesAlike(std::string_view word,
                                         std::span<const std::string_view> names) {
  constexpr size_t kMaxNames = 3;
  const std::string wanted = LowerCase(word);
  if (wanted.empty()) return {};
  const size_t near = std::max<size_t>(1, wanted.size() / 4);
  std::vector<std::pair<size_t, std::string_view>> alike;
  for (const std::string_view name : names) {
    const std::string lower = LowerCase(name);
    const size_t distance = Distance(wanted, lower);
    const bool part = wanted.size() >= 3 && lower.find(wanted) != std::string::npos;
    if (distance <= near || part) alike.emplace_back(distance, name);
  }
  std::stable_sort(alike.begin(), alike.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  if (alike.size() > kMaxNames) alike.resize(kMaxNames);
  std::vector<std::string_view> found;
  for (const auto& [distance, name] : alike) found.push_back(name);
  return found;
}

}  // namespace host
