#include "files/plain_text.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace host {

namespace {

using Bytes = std::span<const unsigned char>;

constexpr size_t kFewestBytes = 64;
constexpr ptrdiff_t kFewestValues = 6;

bool IsPrintable(unsigned char byte) {
  return (byte >= 0x20 && byte < 0x7F) || (byte >= '\t' && byte <= '\r');
}

// Returns the length of the UTF-8 sequence of several bytes that begins here; 0 for none.
size_t SequenceBytes(Bytes text) {
  const unsigned char first = text.front();
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
  const Bytes further = text.subspan(1, length - 1);
  const bool continued = std::all_of(further.begin(), further.end(),
                                     [](unsigned char byte) { return (byte & 0xC0) == 0x80; });
  return continued ? length : 0;
}

size_t CountFaults(Bytes text) {
  size_t faults = 0;
  while (!text.empty()) {
    size_t length = 1;
    if (!IsPrintable(text.front())) {
      length = SequenceBytes(text);
      if (length == 0) ++faults;
    }
    text = text.subspan(std::max<size_t>(length, 1));
  }
  return faults;
}

// Returns whether every other byte has one of several values, none of them more than half of the
// time.
bool Varies(Bytes text, size_t first) {
  std::array<size_t, 256> counts = {};
  for (size_t i = first; i < text.size(); i += 2) ++counts[text[i]];
  const auto values = std::count_if(counts.begin(), counts.end(), [](size_t n) { return n > 0; });
  return values >= kFewestValues &&
         *std::max_element(counts.begin(), counts.end()) * 4 <= text.size();
}

bool HasFewFaults(Bytes text) { return CountFaults(text) * 100 <= text.size() * 5; }

}  // namespace

bool IsPlainText(Bytes head) {
  if (head.size() < kFewestBytes || !HasFewFaults(head.first(kFewestBytes))) return false;
  return Varies(head, 0) && Varies(head, 1) && HasFewFaults(head);
}

}  // namespace host
