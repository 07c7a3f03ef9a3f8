#include "guards/true_peak_guard.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "audio_measures/true_peak.h"
#include "guards/thresholds.h"
#include "harness/format_name.h"

namespace host {

namespace {

// Samples that all lie below this, in dBFS, have no crest above full scale between them: the
// interpolation makes no more than 2.5 times of them.
constexpr double kCertain = -8;

bool AreBelow(double limit, const std::vector<ChannelSurvey>& surveys) {
  return std::ranges::all_of(surveys, [limit](const ChannelSurvey& survey) {
    return survey.level.Peak().value.value_or(-INFINITY) < limit;
  });
}

// Passes a signal on in interleaved blocks of a tenth of a second without what is not finite, until
// `use` returns false.
void ForEachBlock(const Signal& signal, const std::function<bool(std::span<const float>)>& use) {
  const size_t length =
      static_cast<size_t>(std::max(1, signal.rate / 10)) * static_cast<size_t>(signal.channels);
  std::vector<float> finite;
  for (size_t first = 0; first < signal.samples.size(); first += length) {
    std::span<const float> block =
        signal.samples.View(first, std::min(length, signal.samples.size() - first));
    if (signal.bits == 0) {
      finite.resize(block.size());
      std::ranges::transform(block, finite.begin(),
                             [](float sample) { return std::isfinite(sample) ? sample : 0; });
      block = finite;
    }
    if (!use(block)) return;
  }
}

// dBTP of each channel; of silence, or where nothing can be said, minus infinity.
std::vector<double> PeaksOf(const Signal& signal) {
  audio_measures::TruePeak peak(signal.channels, signal.rate);
  ForEachBlock(signal, [&](std::span<const float> block) {
    peak.Add(block);
    return true;
  });
  std::vector<double> peaks;
  for (int channel = 0; channel < signal.channels; ++channel) {
    peaks.push_back(peak.Peak(channel).value.value_or(-INFINITY));
  }
  return peaks;
}

// Whether no crest of the input raises what is allowed the output. Of another number of channels
// only the mean was surveyed.
bool IsSoft(const Signal& input, const Signal& output, const Surveys& surveys) {
  return input.channels == output.channels && AreBelow(kCertain - kMoreTruePeak, surveys.input);
}

// The frame at which a channel first goes over its limit, in dBTP, in the block from `first` on.
size_t FrameOver(double limit, const Signal& signal, int channel, size_t first) {
  constexpr size_t kBefore = 64;  // Frames, by which the meter forgets what came before.
  const auto stride = static_cast<size_t>(signal.channels);
  audio_measures::TruePeak peak(1, signal.rate);
  for (size_t frame = first - std::min(first, kBefore); frame < signal.Frames(); ++frame) {
    const float sample = signal.samples[frame * stride + static_cast<size_t>(channel)];
    const float finite = std::isfinite(sample) ? sample : 0;
    peak.Add({&finite, 1});
    if (frame < first || peak.LastPeak(0).value.value_or(-INFINITY) <= limit) continue;
    const bool itself = 20 * std::log10(std::fabs(static_cast<double>(finite))) > limit;
    return itself ? frame : frame - std::min(frame, peak.Delay());
  }
  return first;
}

}  // namespace

void CheckTruePeak(const GuardInput& input, const Surveys& surveys, GuardHits& hits) {
  const Signal& out = *input.output;
  if (!hits.IsOn(Guard::kTruePeak) || AreBelow(kCertain, surveys.output)) return;
  const std::vector<double> peaks = PeaksOf(out);
  if (std::ranges::max(peaks) <= kMaxTruePeak) return;
  std::vector<double> limits(peaks.size(), kMaxTruePeak);
  if (input.input != nullptr && !IsSoft(*input.input, out, surveys)) {
    const std::vector<double> given = PeaksOf(*input.input);
    for (size_t i = 0; i < limits.size(); ++i) {
      const double like = given.size() == limits.size() ? given[i] : std::ranges::max(given);
      limits[i] = std::max(limits[i], like + kMoreTruePeak);
    }
  }
  audio_measures::TruePeak peak(out.channels, out.rate);
  size_t frames = 0;
  ForEachBlock(out, [&](std::span<const float> block) {
    peak.Add(block);
    for (int channel = 0; channel < out.channels; ++channel) {
      if (peak.LastPeak(channel).value.value_or(-INFINITY) <= limits[static_cast<size_t>(channel)])
        continue;
      const size_t frame = FrameOver(limits[static_cast<size_t>(channel)], out, channel, frames);
      hits.Add(Guard::kTruePeak, {.at = static_cast<double>(frame) / out.rate, .channel = channel},
               harness::FormatName("%+.1f dBTP", peaks[static_cast<size_t>(channel)]));
      return false;
    }
    frames += block.size() / static_cast<size_t>(out.channels);
    return true;
  });
}

}  // namespace host
