#include "cli/seconds_word.h"

#include <charconv>
#include <system_error>

namespace host {

std::string SecondsProblem(const std::string& word) {
  double seconds = 0;
  const char* const end = word.data() + word.size();
  const auto [last, error] = std::from_chars(word.data(), end, seconds);
  const bool fits = error == std::errc() && last == end && seconds > 0 && seconds <= 1e6;
  return fits ? "" : "not a number of seconds between 0 and 1000000: " + word;
}

}  // namespace host
