#include "harness/format_name.h"

#include <cstdarg>
#include <cstdio>

namespace harness {

std::string FormatName(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  const int length = vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string name(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  vsnprintf(name.data(), name.size() + 1, format, again);
  va_end(again);
  return name;
}

}  // namespace harness
