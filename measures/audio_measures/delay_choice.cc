#include "audio_measures/delay_choice.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio_measures/copy_samples.h"
#include "audio_measures/delay_finder.h"
#include "audio_measures/figure.h"

namespace audio_measures {

namespace {

constexpr double kClearlyMore = 1e-3;  // Of correlation.
constexpr int kAsItLies = 0;           // A polarity that is not known yet.

// Block by block, the part of the signal beside each that the search may reach.
void AddAll(std::span<const float> piece, std::span<const float> signal, int64_t start,
            DelayFinder& finder, int64_t least) {
  std::vector<float> block(finder.ReferenceFrames());
  std::vector<float> beside(finder.SignalFrames());
  for (size_t place = 0; place < piece.size(); place += block.size()) {
    CopySamples(piece, static_cast<int64_t>(place), block);
    CopySamples(signal, start + static_cast<int64_t>(place) + least, beside);
    finder.Add(block, beside);
  }
}

// What is beside the piece at the lag, as far as there is a signal.
std::optional<PhaseFit::Fit> FitAt(std::span<const float> piece, std::span<const float> signal,
                                   int64_t start, const DelayFinder::Peak& peak) {
  const int64_t first = start + peak.lag;
  const auto size = static_cast<int64_t>(signal.size());
  const int64_t begin = std::clamp<int64_t>(first, 0, size);
  const int64_t end = std::clamp<int64_t>(first + static_cast<int64_t>(piece.size()), begin, size);
  if (begin == end) return std::nullopt;
  const auto count = static_cast<size_t>(end - begin);
  PhaseFit phases;
  phases.Add(piece.subspan(static_cast<size_t>(begin - first), count),
             signal.subspan(static_cast<size_t>(begin), count));
  return phases.Find(peak.polarity == kAsItLies ? phases.Polarity() : peak.polarity);
}

}  // namespace

DelayChoice ChooseDelay(std::span<const float> reference, std::span<const float> signal,
                        size_t start, size_t count, const DelaySearch& search) {
  const std::span<const float> piece = reference.subspan(start, count);
  const auto place = static_cast<int64_t>(start);
  DelayFinder finder(search.least, search.most, count);
  AddAll(piece, signal, place, finder, search.least);
  const auto sharp = finder.Find();
  const auto strong = finder.FindUnweighted();
  if (!sharp || !strong) return {.reason = kSilence};

  // Of a sound that repeats itself the likely delay comes first, then the one at which most of the
  // signal overlaps.
  std::vector<DelayFinder::Peak> candidates;
  const auto propose = [&](const DelayFinder::Peak& peak) {
    const auto known = std::ranges::find(candidates, peak.lag, &DelayFinder::Peak::lag);
    if (known == candidates.end()) candidates.push_back(peak);
  };
  if (search.likely) propose({.lag = *search.likely, .polarity = kAsItLies});
  propose(*strong);
  propose(*sharp);
  DelayChoice choice = {.reason = kTooShort};
  double most = 0;
  for (const DelayFinder::Peak& candidate : candidates) {
    const auto fit = FitAt(piece, signal, place, candidate);
    if (!fit || std::fabs(fit->correlation) < most + kClearlyMore) continue;
    most = std::fabs(fit->correlation);
    choice.delay = ChosenDelay{candidate.lag, *fit};
  }
  if (choice.delay && sharp->sharpness < DelayFinder::kClear && most < kAlike) {
    return {.reason = "no clear delay"};
  }
  return choice;
}

}  // namespace audio_measures
