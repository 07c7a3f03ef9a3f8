#include "guards/whole_guards.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "audio_measures/figure.h"
#include "base/counted.h"
#include "base/units.h"

namespace host {

namespace {

// What was made from integers is.
bool IsFinite(const Signal& signal) {
  return signal.bits > 0 || signal.samples.ForEachBlock([](std::span<const float> block) {
    return audio_measures::AreFinite(block);
  });
}

}  // namespace

void CheckLength(const GuardInput& input, GuardHits& hits) {
  if (!hits.IsOn(Guard::kLength) || input.input == nullptr) return;
  const double wanted = input.input->Seconds() * input.rules.lengthFactor;
  const double length = input.output->Seconds();
  if (std::fabs(length - wanted) <= input.rules.lengthTolerance) return;
  GuardHits::Place place;
  if (length < wanted) place.at = length;
  hits.Add(Guard::kLength, place,
           Seconds(length) + " long, not " + Seconds(wanted) + " give or take " +
               Seconds(input.rules.lengthTolerance));
}

void CheckFinite(const GuardInput& input, GuardHits& hits) {
  if (IsFinite(*input.output)) return;
  std::optional<size_t> first;
  uint64_t count = 0;
  size_t before = 0;
  input.output->samples.ForEachBlock([&](std::span<const float> block) {
    const auto isOdd = [](float sample) { return !std::isfinite(sample); };
    if (!first) {
      const auto found = std::ranges::find_if(block, isOdd);
      if (found != block.end()) first = before + static_cast<size_t>(found - block.begin());
    }
    count += static_cast<uint64_t>(std::ranges::count_if(block, isOdd));
    before += block.size();
    return true;
  });
  if (!first) return;
  const auto channels = static_cast<size_t>(input.output->channels);
  const size_t frame = *first / channels;
  std::string text =
      Counted(count, "sample") + (count == 1 ? " that is" : " that are") + " not finite";
  const bool given = input.input != nullptr && !IsFinite(*input.input);
  if (given) text += ", as in the input";
  hits.Add(Guard::kNotFinite,
           {.at = static_cast<double>(frame) / input.output->rate,
            .channel = static_cast<int>(*first % channels)},
           text, !given);
}

}  // namespace host
