#pragma once

#include <cstdint>
#include <string>

namespace host {

// "1 byte", "3 bytes": `word` is what one is called.
inline std::string Counted(uint64_t count, const std::string& word) {
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

// "there is 1", "there are 3".
inline std::string ThereAre(uint64_t count) {
  return (count == 1 ? "there is " : "there are ") + std::to_string(count);
}

}  // namespace host
