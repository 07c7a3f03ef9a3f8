#pragma once

#include <charconv>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "engine_api/codec/local_codec.h"

// Words of a command line as arguments of a routine, one type of argument each. `Parse` is true
// when the word fits, and then `Value` is the argument, alive as long as this object; `kExpected`
// says what fits. A word without data, which no command line holds, is a null name.

namespace harness {

template <typename T>
struct Argument;

template <>
struct Argument<const char*> {
  static std::string Expected() { return "a name"; }
  bool Parse(std::string_view word) {
    isNull = word.data() == nullptr;
    text = word;
    return true;
  }
  const char* Value() { return isNull ? nullptr : text.c_str(); }
  bool isNull = false;
  std::string text;
};

// Copied, because the routine may write to it.
template <>
struct Argument<char*> : Argument<const char*> {
  char* Value() { return isNull ? nullptr : text.data(); }
};

template <typename T>
requires std::is_integral_v<T>
struct Argument<T> {
  static std::string Expected() { return "a whole number"; }
  bool Parse(std::string_view word) {
    const char* end = word.data() + word.size();
    const auto [last, error] = std::from_chars(word.data(), end, value);
    return error == std::errc() && last == end;
  }
  T Value() { return value; }
  T value = 0;
};

template <>
struct Argument<bool> {
  static std::string Expected() { return "true or false"; }
  bool Parse(std::string_view word) {
    value = word == "true";
    return value || word == "false";
  }
  bool Value() { return value; }
  bool value = false;
};

// The names of an enumeration's values; to be specialised for each one that a routine takes.
template <typename Enumeration>
struct Enumerator {
  std::string_view name;
  Enumeration value;
};
template <typename Enumeration>
std::span<const Enumerator<Enumeration>> Enumerators();

// By the name of the enumerator or by its decimal value.
template <typename T>
requires std::is_enum_v<T>
struct Argument<T> {
  static std::string Expected() {
    std::string names;
    for (const auto& known : Enumerators<T>()) {
      names += (names.empty() ? "" : ", ") + std::string(known.name) + " (" +
               std::to_string(static_cast<int>(known.value)) + ")";
    }
    return "one of " + names;
  }
  bool Parse(std::string_view word) {
    for (const auto& known : Enumerators<T>()) {
      if (word != known.name && word != std::to_string(static_cast<int>(known.value))) continue;
      value = known.value;
      return true;
    }
    return false;
  }
  T Value() { return value; }
  T value{};
};

// Speech segments for a detector to keep: "1200,5000,9000,4000" is start and length of each,
// "none" a null pointer. What the routine gets ends in -1.
template <>
struct Argument<int*> {
  static constexpr size_t kMaxPairs = 15;
  static std::string Expected() {
    return "\"none\" or up to 15 pairs of numbers such as 1200,5000,9000,4000";
  }
  bool Parse(std::string_view word);
  int* Value() { return numbers.empty() ? nullptr : numbers.data(); }
  std::vector<int> numbers;
};

}  // namespace harness
