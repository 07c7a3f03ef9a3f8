#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// Returns `head` followed by `text`, broken between words into lines of at most `width` columns; a
// word that is longer has a line of its own. The lines after the first are indented by `indent`
// columns. Ends in a newline.
std::string WrapText(std::string_view text, std::string_view head, size_t indent, size_t width);

}  // namespace host
