#include "base/wrap_text.h"

#include <algorithm>

namespace host {

std::string WrapText(std::string_view text, std::string_view head, size_t indent, size_t width) {
  std::string lines;
  std::string line(head);
  bool first = true;  // A line holds at least one word, however long that is.
  while (!text.empty()) {
    const size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    if (!first && line.size() + 1 + word.size() > width) {
      lines += line + "\n";
      line.assign(indent, ' ');
      first = true;
    }
    if (!first) line += ' ';
    line += word;
    first = false;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines + line + "\n";
}

}  // namespace host
