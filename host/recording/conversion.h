#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "recording/recording.h"

namespace host {

// What becomes of channels where there is no plain way: the first ones, or the mean of all.
enum class ChannelChoice { kFirst, kMean };

// The part of a recording that is taken, in seconds.
struct Cut {
  double start = 0;
  std::optional<double> seconds = {};  // To the end when not given.

  bool Whole() const { return start <= 0 && !seconds; }
};

// What is done with the samples of a recording, level and precision aside.
struct Conversion {
  int rate = 0;  // Hz
  int channels = 0;
  std::optional<ChannelChoice> choice = {};
  Cut cut = {};
};

// Why a recording of `from` channels is not brought to `to`; empty when it is. To one channel it is
// the mean unless the first is chosen, from one it is copies; all else is a matter of choice.
std::string ChannelFault(int from, int to, std::optional<ChannelChoice> choice);

// Passes the converted samples on, interleaved, full scale at 1, in blocks that the next one
// overwrites, until `use` returns false. The channels of the conversion are without fault. Returns
// why the end was not reached: kStopped, or what is wrong with the recording; empty when it was.
std::string ForEachConvertedBlock(Recording& recording, const Conversion& conversion,
                                  const std::function<bool(std::span<const double>)>& use);

}  // namespace host
