#include <cctype>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "fake_engine/fake_engine.h"

namespace {

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    switch (character) {
      case '\n':
        escaped += "\\n";
        break;
      case '\t':
        escaped += "\\t";
        break;
      case '\r':
        escaped += "\\r";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

// One conversion of a printf format, from its '%' to its letter.
struct Conversion {
  std::string text;
  int widths = 0;   // How many '*' stand in it.
  char length = 0;  // 'l' for l, 'q' for ll, 'z' for z, j and t; 0 for the rest.
  char letter = 0;
};

Conversion ReadConversion(const char* at) {
  Conversion found;
  do {
    found.text += *at;
    found.widths += *at == '*' ? 1 : 0;
    if (*at == 'l') found.length = found.length == 'l' ? 'q' : 'l';
    if (*at == 'z' || *at == 'j' || *at == 't') found.length = 'z';
    found.letter = *at;
    ++at;
  } while (*at != '\0' &&
           (found.text == "%" || strchr("diouxXcsfFeEgGaAp%", found.letter) == nullptr));
  return found;
}

template <typename T>
std::string Print(const Conversion& conversion, const int* widths, T value) {
  char text[2048];
  const char* const format = conversion.text.c_str();
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  if (conversion.widths == 2) {
    snprintf(text, sizeof text, format, widths[0], widths[1], value);
  } else if (conversion.widths == 1) {
    snprintf(text, sizeof text, format, widths[0], value);
  } else {
    snprintf(text, sizeof text, format, value);
  }
#pragma GCC diagnostic pop
  return text;
}

// The next argument, consumed and printed as its conversion asks for.
std::string NextArgument(const Conversion& conversion, va_list& arguments) {
  int widths[2] = {};
  for (int i = 0; i < conversion.widths; ++i) widths[i] = va_arg(arguments, int);
  switch (conversion.letter) {
    case 's':
      return Escaped(Print(conversion, widths, va_arg(arguments, const char*)));
    case 'p':
      return Print(conversion, widths, va_arg(arguments, void*));
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
      return Print(conversion, widths, va_arg(arguments, double));
    default:
      break;
  }
  if (conversion.length == 0) return Print(conversion, widths, va_arg(arguments, int));
  return Print(conversion, widths, va_arg(arguments, long));  // As long as the others are.
}

}  // namespace

std::string Quoted(const char* text) { return "\"" + Escaped(text) + "\""; }

std::string FormatAndArguments(const char* format, va_list arguments) {
  static_assert(sizeof(long) == sizeof(long long) && sizeof(long) == sizeof(size_t));
  std::string record = Quoted(format);
  va_list rest;
  va_copy(rest, arguments);
  for (const char* at = strchr(format, '%'); at != nullptr; at = strchr(at, '%')) {
    const Conversion conversion = ReadConversion(at);
    at += conversion.text.size();
    if (conversion.letter != '%') record += ", " + NextArgument(conversion, rest);
  }
  va_end(rest);
  return record;
}
