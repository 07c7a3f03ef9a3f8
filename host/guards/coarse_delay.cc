#include "guards/coarse_delay.h"

#include <algorithm>
#include <span>
#include <vector>

#include "audio_measures/delay_finder.h"
#include "guards/places.h"

namespace host {

namespace {

constexpr int kRate = 8000;        // Hz, at the least, that delays are looked for at.
constexpr int64_t kStretches = 6;  // That are looked at, at the most.
constexpr double kPlain = 2 * audio_measures::DelayFinder::kClear;

// Frames of a track of which each is the mean of `factor`.
void ReadMeans(const Track& track, int channel, int64_t first, int64_t factor,
               std::vector<float>& frames, std::span<float> to) {
  if (factor == 1) return track.Read(channel, first, to);
  const auto each = static_cast<size_t>(factor);
  frames.resize(to.size() * each);
  track.Read(channel, first * factor, frames);
  for (size_t i = 0; i < to.size(); ++i) {
    float sum = 0;
    for (size_t j = 0; j < each; ++j) sum += frames[i * each + j];
    to[i] = sum / static_cast<float>(each);
  }
}

}  // namespace

std::optional<int64_t> CoarseDelay(const Channels& both, int64_t least, int64_t most) {
  const int64_t factor = std::max(1, both.rate / kRate);
  // Towards 0.
  const int64_t earliest = least / factor;
  const int64_t lags = most / factor - earliest + 1;
  const int64_t frames = std::max(both.input.Frames(), both.output.Frames()) / factor;
  audio_measures::DelayFinder finder(earliest, earliest + lags - 1,
                                     static_cast<uint64_t>(std::min(frames, 2 * lags)));
  std::vector<float> in(finder.ReferenceFrames());
  std::vector<float> out(finder.SignalFrames());
  std::vector<float> whole;
  for (const int64_t place : FromTheMiddle(
           Places(both.input.Frames() / factor, static_cast<int64_t>(in.size()), kStretches))) {
    ReadMeans(both.input, both.source, place, factor, whole, in);
    ReadMeans(both.output, both.channel, place + earliest, factor, whole, out);
    finder.Add(in, out);
    const auto peak = finder.Find();
    if (!peak || peak->sharpness < kPlain) continue;
    if (peak->polarity < 0) return std::nullopt;
    return peak->lag * factor;
  }
  return std::nullopt;
}

}  // namespace host
