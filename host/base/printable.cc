#include "base/printable.h"

#include <cstddef>

#include "harness/format_name.h"

namespace host {

namespace {

unsigned Byte(std::string_view text, size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

bool Continues(unsigned byte) { return (byte & 0xC0) == 0x80; }

// How many bytes the character at the start takes (RFC 3629); 0 when it is not to be shown.
size_t ShownLength(std::string_view text) {
  const unsigned first = Byte(text, 0);
  const unsigned second = Byte(text, 1);
  if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
  if (!Continues(second) || first < 0xC2 || first > 0xF4) return 0;
  if (first == 0xC2 && second < 0xA0) return 0;  // The control characters of Latin-1.
  if (first < 0xE0) return 2;
  if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F)) return 0;
  if (!Continues(Byte(text, 2))) return 0;
  if (first < 0xF0) return 3;
  if ((first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F)) return 0;
  return Continues(Byte(text, 3)) ? 4 : 0;
}

std::string Escape(unsigned char byte) {
  switch (byte) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return harness::FormatName("\\x%02x", byte);
  }
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const size_t length = ShownLength(text);
    if (length > 0) {
      shown += text.substr(0, length);
    } else {
      shown += Escape(static_cast<unsigned char>(text.front()));
    }
    text.remove_prefix(length > 0 ? length : 1);
  }
  return shown;
}

}  // namespace host
