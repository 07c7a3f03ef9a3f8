#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// `text` behind `head`, broken between words into lines of at most `width` columns. The later lines
// start at column `indent`. Ends in a newline.
std::string WrapText(std::string_view text, std::string_view head, size_t indent, size_t width);

}  // namespace host
