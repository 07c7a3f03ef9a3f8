#include "audio_measures/activity.h"

#include <algorithm>
#include <cmath>

#include "audio_measures/active_level.h"
#include "audio_measures/noise_floor.h"

namespace audio_measures {

namespace {

constexpr double kOverNoise = 6;    // dB
constexpr double kSoftest = -60;    // dBFS
constexpr size_t kHangover = 10;    // Blocks,
constexpr size_t kBeforeOnset = 3;  // and before the first one of a word.

// limit: RMS, dBFS.
Activity Above(std::span<const float> samples, int rate, double limit) {
  const double least = std::pow(10, limit / 10) * static_cast<double>(ActivityBlock(rate));
  Activity activity;
  for (const double energy : BlockEnergies(samples, rate)) {
    activity.active.push_back(energy >= least ? 1 : 0);
  }
  const size_t blocks = activity.active.size();
  activity.talk.assign(blocks, 0);
  activity.pause.assign(blocks, 1);
  for (size_t i = 0; i < blocks; ++i) {
    if (activity.active[i] == 0) continue;
    for (size_t k = i; k < std::min(blocks, i + kHangover + 1); ++k) activity.talk[k] = 1;
    for (size_t k = i - std::min(i, kBeforeOnset); k < i; ++k) activity.pause[k] = 0;
  }
  for (size_t i = 0; i < blocks; ++i) {
    if (activity.talk[i] != 0) activity.pause[i] = 0;
  }
  return activity;
}

}  // namespace

size_t ActivityBlock(int rate) { return static_cast<size_t>(std::lround(rate * 0.02)); }

std::vector<double> BlockEnergies(std::span<const float> samples, int rate) {
  const size_t block = ActivityBlock(rate);
  std::vector<double> energies;
  for (size_t start = 0; start + block <= samples.size(); start += block) {
    double energy = 0;
    for (const float sample : samples.subspan(start, block)) {
      energy += static_cast<double>(sample) * static_cast<double>(sample);
    }
    energies.push_back(energy);
  }
  return energies;
}

Activity ActivityOf(std::span<const float> speech, int rate) {
  ActiveLevel meter(rate);
  meter.Add(speech);
  const Figure level = meter.Level();
  if (!level.value) return {.fault = level.reason};
  if (*level.value < kSoftest) return {.fault = "nothing as loud as speech"};
  return Above(speech, rate, *level.value - ActiveLevel::kMargin);
}

Activity ActivityInNoise(std::span<const float> noisy, int rate) {
  NoiseFloor meter(rate);
  meter.Add(noisy);
  const Figure floor = meter.Floor();
  if (!floor.value) return {.fault = floor.reason};
  return Above(noisy, rate, *floor.value + kOverNoise);
}

}  // namespace audio_measures
