#pragma once

#include <span>

namespace host {

// Returns whether these first bytes of a file are those of a text: there are 64 bytes or more, at
// most five of each hundred are neither printable nor white space in ASCII or UTF-8, and there are
// both in the even and in the odd places at least six different values, none of them in more than
// half of the places, because samples near a constant may be printable, too.
bool IsPlainText(std::span<const unsigned char> head);

}  // namespace host
