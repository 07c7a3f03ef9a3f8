#include "results/numbers.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace host {

std::optional<double> TakeNumber(std::string_view& text) {
  double value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) value = std::numeric_limits<double>::infinity();
  if (end[-1] == '.') --end;  // Of the sentence.
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return value;
}

}  // namespace host
