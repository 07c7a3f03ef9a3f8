#include "audio_measures/noise_suppression.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio_measures/activity.h"
#include "audio_measures/alignment.h"
#include "audio_measures/difference.h"
#include "audio_measures/interpolation.h"
#include "audio_measures/musical_noise.h"

namespace audio_measures {

namespace {

constexpr size_t kLeastBlocks = 10;
// A delay this close to a whole sample is taken for one: nothing needs to be interpolated.
constexpr double kWhole = 0.1;

Suppression Without(const char* reason) {
  return {Unknown(reason), Unknown(reason), Unknown(reason), Unknown(reason)};
}

// dB; what is nothing beside the other counts as kHighestSnr below it.
double Ratio(double above, double below) {
  return 10 * std::log10(above / std::max(below, above * std::pow(10, -kHighestSnr / 10)));
}

// All three at the time of the input, as far as it reaches into both others.
struct Signals {
  const char* fault = "";
  std::vector<float> reference = {};  // Empty where it is not known.
  std::vector<float> input = {};
  std::vector<float> output = {};
};

// By how many samples the second is later.
Figure Later(std::span<const float> first, std::span<const float> second, int rate, double search) {
  const Figure delay = Align(first, second, rate, -search, search).delay;
  if (!delay.value) return delay;
  const double samples = *delay.value * rate;
  const double whole = std::round(samples);
  return Known(std::fabs(samples - whole) < kWhole ? whole : samples);
}

Signals Together(std::span<const float> reference, std::span<const float> input,
                 std::span<const float> output, int rate, double search) {
  const Figure delay = Later(input, output, rate, search);
  if (!delay.value) return {.fault = delay.reason};
  const double outputLater = *delay.value;
  double first = std::max(0.0, -outputLater);
  double last =
      std::min(static_cast<double>(input.size()), static_cast<double>(output.size()) - outputLater);
  double inputLater = 0;
  if (!reference.empty()) {
    const Figure later = Later(reference, input, rate, search);
    if (!later.value) return {.fault = later.reason};
    inputLater = *later.value;
    first = std::max(first, inputLater);
    last = std::min(last, static_cast<double>(reference.size()) + inputLater);
  }
  first = std::ceil(first);
  if (last < first) return {.fault = kTooShort};
  const auto count = static_cast<size_t>(last - first);
  Signals signals;
  if (!reference.empty()) signals.reference = Interpolate(reference, first - inputLater, 1, count);
  const std::span<const float> overlap = input.subspan(static_cast<size_t>(first), count);
  signals.input.assign(overlap.begin(), overlap.end());
  signals.output = Interpolate(output, first + outputLater, 1, count);
  return signals;
}

// Of the blocks that are marked.
double MeanEnergy(std::span<const float> samples, std::span<const uint8_t> marks, int rate) {
  const std::vector<double> energies = BlockEnergies(samples, rate);
  double sum = 0;
  for (size_t i = 0; i < energies.size(); ++i) sum += marks[i] != 0 ? energies[i] : 0;
  return sum / static_cast<double>(std::ranges::count(marks, 1));
}

double Product(std::span<const float> a, std::span<const float> b, std::span<const uint8_t> marks,
               int rate) {
  const size_t block = ActivityBlock(rate);
  double product = 0;
  for (size_t i = 0; i < marks.size() * block; ++i) {
    if (marks[i / block] != 0) product += static_cast<double>(a[i]) * static_cast<double>(b[i]);
  }
  return product;
}

Figure Retained(const Signals& signals, const Activity& activity, int rate) {
  const std::vector<float>& speech = signals.reference.empty() ? signals.input : signals.reference;
  const double after = Product(signals.output, speech, activity.active, rate);
  const double before = Product(signals.input, speech, activity.active, rate);
  if (after == 0 || before == 0) return Unknown(kSilence);
  return Known(20 * std::log10(std::fabs(after / before)));
}

Figure DeltaSnr(const Signals& signals, const Activity& activity, int rate) {
  if (signals.reference.empty()) return Unknown("no reference");
  double snr[2] = {};
  for (int i = 0; i < 2; ++i) {
    const std::vector<float>& signal = i == 0 ? signals.input : signals.output;
    const double pause = MeanEnergy(signal, activity.pause, rate);
    const double speech = MeanEnergy(signal, activity.active, rate) - pause;
    if (i == 0 && !(pause > 0)) return Unknown(kSilence);
    if (!(speech > 0)) return Unknown("speech that is no louder than the noise");
    snr[i] = Ratio(speech, pause);
  }
  return Known(snr[1] - snr[0]);
}

Figure Musical(const Signals& signals, const Activity& activity, int rate) {
  const size_t block = ActivityBlock(rate);
  MusicalNoise noise(rate);
  size_t start = 0;
  for (size_t i = 0; i <= activity.pause.size(); ++i) {
    if (i < activity.pause.size() && activity.pause[i] != 0) continue;
    const size_t count = (i - start) * block;
    noise.Add(std::span(signals.input).subspan(start * block, count),
              std::span(signals.output).subspan(start * block, count));
    start = i + 1;
  }
  return noise.LogRatio();
}

Figure Reduction(const Signals& signals, const Activity& activity, int rate) {
  const double before = MeanEnergy(signals.input, activity.pause, rate);
  if (!(before > 0)) return Unknown(kSilence);
  return Known(Ratio(before, MeanEnergy(signals.output, activity.pause, rate)));
}

bool Enough(std::span<const uint8_t> marks) {
  return static_cast<size_t>(std::ranges::count(marks, 1)) >= kLeastBlocks;
}

}  // namespace

Suppression MeasureSuppression(std::span<const float> reference, std::span<const float> input,
                               std::span<const float> output, int rate, double searchSeconds) {
  const Signals signals = Together(reference, input, output, rate, searchSeconds);
  if (*signals.fault != '\0') return Without(signals.fault);
  const Activity activity = reference.empty() ? ActivityInNoise(signals.input, rate)
                                              : ActivityOf(signals.reference, rate);
  if (*activity.fault != '\0') return Without(activity.fault);
  Suppression figures = Without("too little pause");
  if (Enough(activity.pause)) {
    figures.noiseReduction = Reduction(signals, activity, rate);
    figures.musical = Musical(signals, activity, rate);
  }
  if (!Enough(activity.active)) {
    figures.speechRetained = figures.deltaSnr = Unknown("too little speech");
    return figures;
  }
  figures.speechRetained = Retained(signals, activity, rate);
  if (Enough(activity.pause)) figures.deltaSnr = DeltaSnr(signals, activity, rate);
  return figures;
}

}  // namespace audio_measures
