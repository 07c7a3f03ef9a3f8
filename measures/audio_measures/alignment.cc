#include "audio_measures/alignment.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio_measures/copy_samples.h"
#include "audio_measures/delay_finder.h"
#include "audio_measures/phase_fit.h"

namespace audio_measures {

namespace {

Alignment NoAlignment(const char* reason) {
  return {Unknown(reason), Unknown(reason), Unknown(reason), Unknown(reason)};
}

}  // namespace

Alignment Align(std::span<const float> reference, std::span<const float> signal, int rate,
                double least, double most) {
  if (reference.empty() || signal.empty()) return NoAlignment(kNoSamples);
  const auto first = static_cast<int64_t>(std::floor(least * rate));
  const auto last = static_cast<int64_t>(std::ceil(most * rate));
  DelayFinder finder(first, last, std::max(reference.size(), signal.size()));
  std::vector<float> referenceBlock(finder.ReferenceFrames());
  std::vector<float> signalBlock(finder.SignalFrames());
  for (size_t place = 0; place < reference.size(); place += referenceBlock.size()) {
    CopySamples(reference, static_cast<int64_t>(place), referenceBlock);
    CopySamples(signal, static_cast<int64_t>(place) + first, signalBlock);
    finder.Add(referenceBlock, signalBlock);
  }
  const auto peak = finder.Find();
  if (!peak) return NoAlignment(kSilence);
  if (peak->sharpness < DelayFinder::kClear) return NoAlignment("no clear delay");

  const auto skipReference = static_cast<size_t>(std::max<int64_t>(0, -peak->lag));
  const auto skipSignal = static_cast<size_t>(std::max<int64_t>(0, peak->lag));
  const size_t common = std::min(reference.size() - std::min(skipReference, reference.size()),
                                 signal.size() - std::min(skipSignal, signal.size()));
  if (common < PhaseFit::kBlock) return NoAlignment(kTooShort);
  PhaseFit phases;
  phases.Add(reference.subspan(skipReference, common), signal.subspan(skipSignal, common));
  const auto fit = phases.Find(peak->polarity);
  if (!fit) return NoAlignment(kSilence);
  return {.delay = Known((static_cast<double>(peak->lag) + fit->later) / rate),
          .gain = Known(20 * std::log10(std::fabs(fit->gain))),
          .polarity = Known(fit->gain < 0 ? -1 : 1),
          .correlation = Known(std::fabs(fit->correlation))};
}

}  // namespace audio_measures
