#include "measure/course.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "audio_measures/measure.h"

namespace host {

namespace {

using audio_measures::Inputs;
using audio_measures::NamedFigure;
using audio_measures::Signal;

constexpr size_t kOverlap = 4;
constexpr size_t kMostFigures = 1000;
// How far the delay of a stretch may be from that of the whole.
constexpr double kSearchSeconds = 0.05;

// The frames from `begin` on; silence does not stand for what is not there.
Signal Cut(const Signal& signal, long begin, size_t frames) {
  const auto all = static_cast<long>(signal.Frames());
  const long first = std::clamp(begin, 0L, all);
  const long last = std::clamp(begin + static_cast<long>(frames), first, all);
  Signal cut = {.rate = signal.rate};
  for (const std::span<const float> channel : signal.channels) {
    cut.channels.push_back(
        channel.subspan(static_cast<size_t>(first), static_cast<size_t>(last - first)));
  }
  return cut;
}

// By how many frames the output is later than a signal; 0 where that cannot be told.
long Delay(const Inputs& inputs, const Signal& signal) {
  if (signal.Empty()) return 0;
  const Inputs pair = {.output = inputs.output, .reference = signal};
  constexpr std::array<std::string_view, 1> kNames = {"delay"};
  for (const NamedFigure& each : audio_measures::Compute(pair, kNames)) {
    if (!each.figure.value) continue;
    return std::lround(*each.figure.value * inputs.output.rate);
  }
  return 0;
}

// The figure of all channels, else the mean of theirs.
std::optional<double> OneFigure(const std::vector<NamedFigure>& figures, std::string& reason) {
  double sum = 0;
  int count = 0;
  for (const NamedFigure& each : figures) {
    if (!each.figure.value || !std::isfinite(*each.figure.value)) {
      reason = each.figure.reason;
      continue;
    }
    if (!each.channel) return each.figure.value;
    sum += *each.figure.value;
    ++count;
  }
  return count == 0 ? std::nullopt : std::optional(sum / count);
}

}  // namespace

Course CourseOf(const Inputs& inputs, std::string_view name) {
  const audio_measures::Measure& measure = *audio_measures::FindMeasure(name);
  const double seconds = std::max(1.0, measure.leastSeconds);
  const int rate = inputs.output.rate;
  const auto frames = static_cast<size_t>(seconds * rate);
  const size_t step = std::max(frames / kOverlap, inputs.output.Frames() / kMostFigures);
  Course course = {.name = std::string(name),
                   .unit = std::string(measure.unit),
                   .step = static_cast<double>(step) / rate,
                   .first = seconds / 2};
  const long ofReference = Delay(inputs, inputs.reference);
  const long ofInput = Delay(inputs, inputs.input);
  const std::array<std::string_view, 1> names = {name};
  for (size_t begin = 0; begin + frames <= inputs.output.Frames(); begin += step) {
    const auto at = static_cast<long>(begin);
    const Inputs stretch = {.output = Cut(inputs.output, at, frames),
                            .reference = Cut(inputs.reference, at - ofReference, frames),
                            .far = Cut(inputs.far, at - ofInput, frames),
                            .near = Cut(inputs.near, at - ofInput, frames),
                            .input = Cut(inputs.input, at - ofInput, frames),
                            .fullScale = inputs.fullScale,
                            .searchSeconds = kSearchSeconds};
    course.figures.push_back(OneFigure(audio_measures::Compute(stretch, names), course.reason));
  }
  const bool any = std::ranges::any_of(course.figures, [](const auto& each) { return !!each; });
  if (any) {
    course.reason.clear();
  } else if (course.figures.empty()) {
    course.reason = audio_measures::kTooShort;
  }
  return course;
}

}  // namespace host
