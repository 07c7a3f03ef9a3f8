#include "contract/routines/difference.h"

#include <algorithm>
#include <span>

namespace {

using Lines = std::span<const std::string>;

constexpr size_t kMaxCells = 4'000'000;

// The lengths of the longest common subsequences of all pairs of tails.
std::vector<std::vector<int>> CommonTails(Lines a, Lines b) {
  std::vector<std::vector<int>> common(a.size() + 1, std::vector<int>(b.size() + 1));
  for (size_t i = a.size(); i-- > 0;) {
    for (size_t j = b.size(); j-- > 0;) {
      common[i][j] =
          a[i] == b[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  return common;
}

}  // namespace

std::vector<std::string> Difference(const std::vector<std::string>& before,
                                    const std::vector<std::string>& after) {
  const auto [a0, b0] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto [aEnd, bEnd] = std::mismatch(before.rbegin(), std::make_reverse_iterator(a0),
                                          after.rbegin(), std::make_reverse_iterator(b0));
  const Lines a(a0, aEnd.base());
  const Lines b(b0, bEnd.base());
  std::vector<std::string> lines;
  size_t i = 0;
  size_t j = 0;
  if ((a.size() + 1) * (b.size() + 1) <= kMaxCells) {
    const auto common = CommonTails(a, b);
    while (i < a.size() && j < b.size()) {
      if (a[i] == b[j]) {
        ++i;
        ++j;
      } else if (common[i + 1][j] >= common[i][j + 1]) {
        lines.push_back("- " + a[i++]);
      } else {
        lines.push_back("+ " + b[j++]);
      }
    }
  }
  while (i < a.size()) lines.push_back("- " + a[i++]);
  while (j < b.size()) lines.push_back("+ " + b[j++]);
  return lines;
}
