#include "audio_measures/echo_loss.h"

#include <algorithm>
#include <cmath>

#include "audio_measures/activity.h"
#include "audio_measures/alignment.h"
#include "audio_measures/difference.h"
#include "audio_measures/median.h"

namespace audio_measures {

namespace {

constexpr size_t kWindow = 10;       // Blocks.
constexpr double kConverged = 20;    // dB
constexpr double kBlockTime = 0.02;  // s

// By how much the second is later; 0 where that is not clear.
size_t SamplesLater(std::span<const float> first, std::span<const float> second, int rate,
                    double searchSeconds) {
  const Figure delay = Align(first, second, rate, 0, searchSeconds).delay;
  return static_cast<size_t>(std::lround(std::max(0.0, delay.value.value_or(0)) * rate));
}

std::span<const float> From(std::span<const float> samples, size_t first) {
  return samples.subspan(std::min(first, samples.size()));
}

EchoLoss Without(const char* reason) { return {Unknown(reason), Unknown(reason)}; }

double Erle(double before, double after) {
  if (!(after > 0)) return kHighestSnr;
  return std::min(kHighestSnr, 10 * std::log10(before / after));
}

struct Block {
  double seconds = 0;
  double before = 0;  // Energies.
  double after = 0;
};

EchoLoss Summed(const std::vector<Block>& blocks) {
  if (blocks.size() < kWindow) return Without("too little of the far end alone");
  EchoLoss loss;
  std::vector<double> ratios;
  loss.convergence = Unknown("the echo is never 20 dB down");
  for (size_t i = 0; i + kWindow <= blocks.size(); ++i) {
    double before = 0;
    double after = 0;
    for (size_t k = i; k < i + kWindow; ++k) {
      before += blocks[k].before;
      after += blocks[k].after;
    }
    if (!(before > 0)) continue;
    const double erle = Erle(before, after);
    if (erle >= kConverged && !loss.convergence.value) {
      loss.convergence = Known(static_cast<double>(i) * kBlockTime);
    }
    loss.track.push_back({blocks[i].seconds, erle});
    ratios.push_back(erle);
  }
  if (ratios.empty()) return Without(kSilence);
  loss.erle = Known(Median(ratios));
  return loss;
}

}  // namespace

EchoLoss MeasureEchoLoss(std::span<const float> far, std::span<const float> microphone,
                         std::span<const float> near, std::span<const float> output, int rate,
                         double searchSeconds) {
  const Activity talk = ActivityOf(far, rate);
  if (*talk.fault != '\0') return Without(talk.fault);
  const size_t echoLater = SamplesLater(far, microphone, rate, searchSeconds);
  const size_t outputLater = SamplesLater(microphone, output, rate, searchSeconds);
  const std::vector<double> before = BlockEnergies(From(microphone, echoLater), rate);
  const std::vector<double> after = BlockEnergies(From(output, echoLater + outputLater), rate);
  const Activity nearTalk = ActivityOf(From(near, echoLater), rate);

  const size_t count = std::min({talk.active.size(), before.size(), after.size()});
  const double start = static_cast<double>(echoLater) / rate;
  std::vector<Block> blocks;
  for (size_t i = 0; i < count; ++i) {
    const bool nearPauses = i >= nearTalk.pause.size() || nearTalk.pause[i] != 0;
    if (talk.active[i] == 0 || !nearPauses) continue;
    blocks.push_back({start + static_cast<double>(i) * kBlockTime, before[i], after[i]});
  }
  return Summed(blocks);
}

}  // namespace audio_measures
