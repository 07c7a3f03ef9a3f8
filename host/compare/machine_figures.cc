#include "compare/machine_figures.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace host {

bool IsOfTheMachine(const MeasureKind& kind) {
  constexpr std::string_view kNames[] = {"rtf",       "cpu",       "peak_memory", "block_p50",
                                         "block_p99", "underruns", "overruns"};
  if (std::find(std::begin(kNames), std::end(kNames), kind.name) != std::end(kNames)) return true;
  // What a routine logs of its own processing: "time", "encode_time".
  const bool time = kind.name == "time" || kind.name.ends_with("_time");
  return time && kind.better == "lower";
}

}  // namespace host
