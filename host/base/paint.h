#pragma once

#include <string>
#include <string_view>

namespace host {

// Whether words on a terminal have colours: as somebody asked for.
enum class Color { kAuto, kAlways, kNever };

// The colours of verdicts. A verdict is a word in any case; the colour only makes it quick to find.
class Paint {
 public:
  // Leaves every word as it is.
  Paint() = default;

  // For what is written to `descriptor`. kAuto: colours on a terminal that has them, unless the
  // environment variable NO_COLOR is set to something (no-color.org).
  Paint(Color color, int descriptor);

  // The word, in the colour of what it says where it has one; blanks after it stay outside.
  std::string Word(std::string_view word) const;

 private:
  bool m_colored = false;
};

}  // namespace host
