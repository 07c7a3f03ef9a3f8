#include "support/transcript.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace {

constexpr size_t kAround = 3;  // Lines shown on each side of the one that differs.

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line = line.substr(0, line.find("  # "));
    const size_t first = line.find_first_not_of(' ');
    if (first == std::string_view::npos) continue;
    lines.emplace_back(line.substr(first, line.find_last_not_of(' ') + 1 - first));
  }
  return lines;
}

void Show(const std::vector<std::string>& lines, size_t at, const char* whose, std::ostream& out) {
  out << "\n" << whose << ":";
  const size_t first = at - std::min(at, kAround);
  const size_t end = std::min(lines.size(), at + kAround + 1);
  for (size_t i = first; i < end; ++i) {
    out << "\n" << (i == at ? "> " : "  ") << i + 1 << "  " << lines[i];
  }
  if (at >= lines.size()) out << "\n> ends after " << lines.size() << " lines";
}

class TranscriptMatcher : public testing::MatcherInterface<const std::vector<std::string>&> {
 public:
  explicit TranscriptMatcher(std::vector<std::string> expected) : m_expected(std::move(expected)) {}

  bool MatchAndExplain(const std::vector<std::string>& calls,
                       testing::MatchResultListener* listener) const override {
    const auto [call, line] =
        std::mismatch(calls.begin(), calls.end(), m_expected.begin(), m_expected.end());
    if (call == calls.end() && line == m_expected.end()) return true;
    if (std::ostream* const out = listener->stream()) {
      const auto at = static_cast<size_t>(call - calls.begin());
      *out << "which differ in line " << at + 1;
      Show(m_expected, at, "expected", *out);
      Show(calls, at, "called", *out);
    }
    return false;
  }

  void DescribeTo(std::ostream* out) const override {
    *out << "are the " << m_expected.size() << " calls of the transcript";
  }

 private:
  std::vector<std::string> m_expected;
};

}  // namespace

testing::Matcher<const std::vector<std::string>&> Transcript(std::string_view text) {
  return Transcript(Lines(text));
}

testing::Matcher<const std::vector<std::string>&> Transcript(std::vector<std::string> calls) {
  return testing::Matcher<const std::vector<std::string>&>(new TranscriptMatcher(std::move(calls)));
}

std::string Times(int count, std::string_view text) {
  std::string all;
  for (int i = 0; i < count; ++i) all.append(text).append("\n");
  return all;
}
