#pragma once

#include <charconv>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "harness/catalogue/catalogue.h"

// Turns the words of a command line into the arguments of a routine.

namespace invoke {

// One argument, converted from its word. Text is copied, because some routines take it as char*.
template <typename T>
struct Argument;

template <>
struct Argument<const char*> {
  bool Parse(std::string_view word) {
    text = word;
    return true;
  }
  const char* Value() { return text.c_str(); }
  std::string text;
};

template <>
struct Argument<char*> {
  bool Parse(std::string_view word) {
    text = word;
    return true;
  }
  char* Value() { return text.data(); }
  std::string text;
};

template <typename T>
requires std::is_integral_v<T>
struct Argument<T> {
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
  bool Parse(std::string_view word) {
    value = word == "true";
    return value || word == "false";
  }
  bool Value() { return value; }
  bool value = false;
};

template <typename Result, typename... Parameters, size_t... Index>
bool Call(Result (*routine)(Parameters...), Ask ask, std::span<const std::string_view> words,
          std::index_sequence<Index...>) {
  std::tuple<Argument<Parameters>...> arguments;
  if (words.size() != sizeof...(Parameters)) return false;
  if (!(std::get<Index>(arguments).Parse(words[Index]) && ...)) return false;
  if (ask == Ask::kToRun) routine(std::get<Index>(arguments).Value()...);
  return true;
}

template <typename Result, typename... Parameters>
bool Call(Result (*routine)(Parameters...), Ask ask, std::span<const std::string_view> words) {
  return Call(routine, ask, words, std::index_sequence_for<Parameters...>());
}

}  // namespace invoke

// The runner of Routine. It takes one word per parameter: text as it stands, decimal integers,
// "true" or "false". False, and nothing is called, when the number of words or one of them does not
// fit.
template <auto Routine>
bool Invoke(Ask ask, std::span<const std::string_view> words) {
  return invoke::Call(Routine, ask, words);
}
