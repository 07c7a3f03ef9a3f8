#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace host {

// Cuts a stream into lines. A line that is not ended may be torn, and one that is too long is none
// of those that are looked for: both are left out.
class LineCutter {
 public:
  // Calls `take` with each whole line, without its end.
  void Add(std::string_view bytes, const std::function<void(std::string_view line)>& take);

 private:
  static constexpr size_t kMaxLine = 1000;

  std::string m_line;  // Begun.
  bool m_tooLong = false;
};

}  // namespace host
