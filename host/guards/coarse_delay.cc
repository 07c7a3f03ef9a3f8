#include "guards/coarse_delay.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "audio_measures/delay_finder.h"
#include "guards/places.h"

namespace host {

namespace {

constexpr int kRate = 8000;        // Hz, at the least, that delays are looked for at.
constexpr int64_t kStretches = 6;  // That are looked at, at the most.
constexpr int64_t kNear = 400;  // Frames at that rate by which most outputs are later at the most.
constexpr double kPlain = 1.5 * audio_measures::DelayFinder::kClear;
constexpr double kMostNext = 0.7;  // That any other peak may have, so that a tone has none.

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

// Fades a block in and out: of a tone its edges would be all that has a place.
void Fade(std::span<float> block) {
  const size_t length = block.size() / 8;
  for (size_t i = 0; i < length; ++i) {
    const double angle = M_PI * (static_cast<double>(i) + 0.5) / static_cast<double>(length);
    const auto gain = static_cast<float>(0.5 - 0.5 * std::cos(angle));
    block[i] *= gain;
    block[block.size() - 1 - i] *= gain;
  }
}

// Of delays from `least` to `most`, in frames at the lower rate.
std::optional<audio_measures::DelayFinder::Peak> PlainPeak(const ChannelOfEach& both,
                                                           int64_t factor, int64_t least,
                                                           int64_t most) {
  const int64_t frames = std::max(both.input.Frames(), both.output.Frames()) / factor;
  audio_measures::DelayFinder finder(
      least, most, static_cast<uint64_t>(std::min(frames, 2 * (most - least + 1))));
  std::vector<float> in(finder.ReferenceFrames());
  std::vector<float> out(finder.SignalFrames());
  std::vector<float> whole;
  for (const int64_t place : FromTheMiddle(
           Places(both.input.Frames() / factor, static_cast<int64_t>(in.size()), kStretches))) {
    ReadMeans(both.input, both.source, place, factor, whole, in);
    ReadMeans(both.output, both.channel, place + least, factor, whole, out);
    Fade(in);
    Fade(out);
    finder.Add(in, out);
    const auto peak = finder.Find();
    if (peak && peak->sharpness >= kPlain && peak->next <= kMostNext) return peak;
  }
  return std::nullopt;
}

}  // namespace

std::optional<int64_t> CoarseDelay(const ChannelOfEach& both, int64_t least, int64_t most) {
  const int64_t factor = std::max(1, both.rate / kRate);
  // Towards 0.
  const int64_t earliest = least / factor;
  const int64_t latest = most / factor;
  auto peak = PlainPeak(both, factor, std::max(-kNear, earliest), std::min(kNear, latest));
  if (!peak) peak = PlainPeak(both, factor, earliest, latest);
  if (!peak || peak->polarity < 0) return std::nullopt;
  return peak->lag * factor;
}

}  // namespace host
