#pragma once

#include <string_view>

// One declaration per routine: it declares the function and keeps its own words, from which the
// catalogue takes signature and runner.

// Declares a routine of the bench that the host can run by itself, and declared::NAME:
//   ROUTINE(void, TestReverb, const char* pSrcFileName, int preset);
#define ROUTINE(result, name, ...)                                                \
  result name(__VA_ARGS__);                                                       \
  namespace declared {                                                            \
  inline constexpr harness::Routine<::name> name{{#result, #name, #__VA_ARGS__}}; \
  }                                                                               \
  static_assert(true)

// The same for what other routines call and no command line can: it has no runner.
#define HELPER(result, name, ...)                                        \
  result name(__VA_ARGS__);                                              \
  namespace declared {                                                   \
  inline constexpr harness::Helper name{{#result, #name, #__VA_ARGS__}}; \
  }                                                                      \
  static_assert(true)

namespace harness {

// A signature, as it stands in the source.
struct Words {
  std::string_view result;
  std::string_view name;
  std::string_view parameters;  // Separated by ", "; empty for none.
};

template <auto function>
struct Routine {
  Words words;
};

struct Helper {
  Words words;
};

}  // namespace harness
