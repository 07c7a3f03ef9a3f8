#include "guards/whole_guards.h"

#include <algorithm>
#include <cmath>

#include "audio_measures/figure.h"
#include "base/counted.h"
#include "base/units.h"

namespace host {

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
  const auto isOdd = [](float sample) { return !std::isfinite(sample); };
  const std::span<const float> samples = input.output->samples;
  if (audio_measures::AreFinite(samples)) return;
  const auto first = std::ranges::find_if(samples, isOdd);
  const auto index = static_cast<size_t>(first - samples.begin());
  const auto channels = static_cast<size_t>(input.output->channels);
  const size_t frame = index / channels;
  const auto count = std::count_if(first, samples.end(), isOdd);
  std::string text = Counted(static_cast<uint64_t>(count), "sample") +
                     (count == 1 ? " that is" : " that are") + " not finite";
  const bool given = input.input != nullptr && !audio_measures::AreFinite(input.input->samples);
  if (given) text += ", as in the input";
  hits.Add(Guard::kNotFinite,
           {.at = static_cast<double>(frame) / input.output->rate,
            .channel = static_cast<int>(index % channels)},
           text, !given);
}

}  // namespace host
