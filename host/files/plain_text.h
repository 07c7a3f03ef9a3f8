#pragma once

#include <span>

namespace host {

// Whether these first bytes of a file are those of a text: 64 bytes or more, of each hundred no
// more than five that are neither printable nor white space in ASCII or UTF-8; and both in the even
// and in the odd places at least six different values, none of them in more than half of the
// places, because samples near a constant may be printable, too.
bool IsPlainText(std::span<const unsigned char> head);

}  // namespace host
