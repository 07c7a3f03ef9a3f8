#include "audio_measures/delay_track.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

#include "audio_measures/delay_choice.h"
#include "audio_measures/median.h"

namespace audio_measures {

namespace {

constexpr size_t kLeastDelays = 3;
constexpr double kResolution = 0.02;  // Samples that a tracked delay is uncertain by at least.

DelayLine MedianLine(std::span<const TrackedDelay> delays) {
  std::vector<double> slopes;
  std::ranges::transform(delays, delays.subspan(delays.size() / 2), std::back_inserter(slopes),
                         [](const TrackedDelay& first, const TrackedDelay& second) {
                           return (second.later - first.later) / (second.middle - first.middle);
                         });
  DelayLine line = {.slope = Median(std::move(slopes))};
  std::vector<double> starts;
  for (const auto& [middle, later] : delays) starts.push_back(later - line.slope * middle);
  line.start = Median(std::move(starts));
  return line;
}

DelayLine LeastSquares(std::span<const TrackedDelay> delays) {
  const auto count = static_cast<double>(delays.size());
  double meanPlace = 0;
  double meanLater = 0;
  for (const auto& [middle, later] : delays) {
    meanPlace += middle / count;
    meanLater += later / count;
  }
  double product = 0;
  double squares = 0;
  for (const auto& [middle, later] : delays) {
    product += (middle - meanPlace) * later;
    squares += (middle - meanPlace) * middle;
  }
  DelayLine line = {.slope = product / squares};
  line.start = meanLater - line.slope * meanPlace;
  double rest = 0;
  for (const auto& [middle, later] : delays) rest += std::pow(later - line.At(middle), 2);
  const double variance = std::max(rest / (count - 2), kResolution * kResolution);
  line.slopeError = std::sqrt(variance / squares);
  return line;
}

}  // namespace

std::vector<TrackedDelay> TrackDelay(std::span<const float> reference,
                                     std::span<const float> signal, const Tracking& tracking) {
  std::vector<TrackedDelay> delays;
  const size_t pieces = std::min(tracking.pieces, reference.size() / tracking.pieceFrames);
  double around = tracking.around;
  for (size_t i = 0; i < pieces; ++i) {
    const size_t start =
        pieces == 1 ? 0 : i * (reference.size() - tracking.pieceFrames) / (pieces - 1);
    const DelaySearch search = {.least = static_cast<int64_t>(std::floor(around - tracking.search)),
                                .most = static_cast<int64_t>(std::ceil(around + tracking.search)),
                                .likely = std::llround(around)};
    const auto delay = ChooseDelay(reference, signal, start, tracking.pieceFrames, search).delay;
    if (!delay) continue;
    delays.push_back({static_cast<double>(start) + static_cast<double>(tracking.pieceFrames) / 2,
                      delay->Later()});
    if (tracking.follow) around = delay->Later();
  }
  return delays;
}

std::optional<DelayLine> FitDelayLine(std::span<const TrackedDelay> delays, double tolerance) {
  if (delays.size() < kLeastDelays) return std::nullopt;
  const DelayLine line = MedianLine(delays);
  std::vector<double> distances;
  for (const auto& [middle, later] : delays)
    distances.push_back(std::fabs(later - line.At(middle)));
  const double limit = std::max(tolerance, 4 * Median(distances));
  std::vector<TrackedDelay> near;
  std::ranges::copy_if(delays, std::back_inserter(near), [&](const TrackedDelay& delay) {
    return std::fabs(delay.later - line.At(delay.middle)) <= limit;
  });
  if (near.size() < kLeastDelays) return std::nullopt;
  return LeastSquares(near);
}

}  // namespace audio_measures
