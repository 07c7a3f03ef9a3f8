#include "catalogue/vad_files.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <climits>
#include <cstddef>
#include <string>

#include "catalogue/file_use.h"

namespace harness {

namespace {

constexpr int kMaxSegments = 15;       // With more of them the batch ends.
constexpr size_t kMaxNameBytes = 255;  // What follows is taken for something else.

// Reads a text as the batch reads its file by fscanf, each byte once.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : m_left(text) {}

  // As "%d".
  bool ReadInteger(int& number) {
    SkipSpace();
    const bool minus = m_left.starts_with('-');
    // A sign is read even where no number follows it.
    if (minus || m_left.starts_with('+')) m_left.remove_prefix(1);
    unsigned long long digits = 0;
    const auto [last, error] = std::from_chars(m_left.begin(), m_left.end(), digits);
    if (last == m_left.begin()) return false;
    // The C library stops at the greatest long and keeps its low bits.
    const bool fits = error == std::errc() && digits <= LLONG_MAX;
    long long value = fits ? static_cast<long long>(digits) : LLONG_MAX;
    if (minus) value = fits ? -value : LLONG_MIN;
    number = static_cast<int>(value);
    m_left.remove_prefix(static_cast<size_t>(last - m_left.begin()));
    return true;
  }

  // As "%255s".
  bool ReadWord(std::string_view& word) {
    SkipSpace();
    const auto isSpace = [](unsigned char letter) { return std::isspace(letter) != 0; };
    const auto end = std::find_if(m_left.begin(), m_left.end(), isSpace);
    const auto length = static_cast<size_t>(end - m_left.begin());
    word = m_left.substr(0, std::min(length, kMaxNameBytes));
    m_left.remove_prefix(word.size());
    return !word.empty();
  }

  // Reads a number and the comma after it: each may be missing.
  bool ReadNumber(int& number) {
    if (!ReadInteger(number) || !m_left.starts_with(',')) return false;
    m_left.remove_prefix(1);
    return true;
  }

 private:
  void SkipSpace() {
    while (!m_left.empty() && std::isspace(static_cast<unsigned char>(m_left.front())) != 0) {
      m_left.remove_prefix(1);
    }
  }

  std::string_view m_left;
};

}  // namespace

std::vector<FileUse> VadRecordings(std::string_view description) {
  Scanner scanner(description);
  std::vector<FileUse> recordings;
  int count = 0;
  scanner.ReadInteger(count);
  for (int i = 0; i < count; ++i) {
    std::string_view name;
    if (!scanner.ReadWord(name)) break;
    int segments = 0;
    scanner.ReadNumber(segments);
    if (segments > kMaxSegments) break;
    // A zero byte is read like a letter, and ends the name that is opened.
    name = name.substr(0, name.find('\0'));
    recordings.push_back(MonoWave("F:/Stream/vad/input/" + std::string(name)));
    for (int pair = 0; pair < segments; ++pair) {
      int start = 0;
      int samples = 0;
      if (scanner.ReadNumber(start)) scanner.ReadNumber(samples);
    }
  }
  return recordings;
}

}  // namespace harness
