#pragma once

#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "catalogue/arguments.h"

namespace harness {

// The words of a command line, one for each parameter of a routine in the declared order.
using ArgumentWords = std::span<const std::string_view>;

template <typename Function>
struct Invoker;

template <typename Result, typename... Parameters>
struct Invoker<Result(Parameters...)> {
  using Arguments = std::tuple<Argument<Parameters>...>;
  static constexpr size_t kCount = sizeof...(Parameters);
  using Indices = std::index_sequence_for<Parameters...>;

  // Which word does not fit, counted from 0, and what would; kCount when all do.
  template <size_t... index>
  static size_t Parse(ArgumentWords words, Arguments& arguments, std::string& expected,
                      std::index_sequence<index...>) {
    size_t fitting = 0;
    [[maybe_unused]] const auto parse = [&](auto& argument) {
      const bool fits = argument.Parse(words[fitting]);
      if (fits) ++fitting;
      if (!fits) expected = argument.Expected();
      return fits;
    };
    static_cast<void>((parse(std::get<index>(arguments)) && ...));
    return fitting;
  }
};

// Why the words do not fit the parameters of `function`: how many it takes, or which one is wrong
// and what was expected. Empty when they fit.
template <auto function>
std::string ArgumentFault(ArgumentWords words) {
  using Invoker = Invoker<std::remove_pointer_t<decltype(function)>>;
  if (words.size() != Invoker::kCount) {
    return "takes " + std::to_string(Invoker::kCount) +
           (Invoker::kCount == 1 ? " argument, not " : " arguments, not ") +
           std::to_string(words.size());
  }
  typename Invoker::Arguments arguments;
  std::string expected;
  const size_t wrong = Invoker::Parse(words, arguments, expected, typename Invoker::Indices());
  if (wrong == Invoker::kCount) return "";
  std::string fault = "argument " + std::to_string(wrong + 1);
  fault += " of " + std::to_string(Invoker::kCount) + " must be " + expected;
  return fault + ", not \"" + std::string(words[wrong]) + "\"";
}

// Calls `function` with words that fit; nothing happens when they do not.
template <auto function>
void Invoke(ArgumentWords words) {
  using Invoker = Invoker<std::remove_pointer_t<decltype(function)>>;
  if (!ArgumentFault<function>(words).empty()) return;
  typename Invoker::Arguments arguments;
  std::string expected;
  Invoker::Parse(words, arguments, expected, typename Invoker::Indices());
  std::apply([](auto&... argument) { function(argument.Value()...); }, arguments);
}

}  // namespace harness
