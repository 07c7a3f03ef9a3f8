#include "guards/pair_guards.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "base/units.h"
#include "guards/self_inversion.h"
#include "guards/thresholds.h"

namespace host {

namespace {

constexpr size_t kBlock = 8192;     // Samples that are compared at once.
constexpr double kInverted = -0.5;  // Correlation from which on a channel is upside down.

// Whether all that both have in common is the same, with the output `lag` frames later.
bool Same(const Signal& in, const Signal& out, int64_t lag) {
  const auto from = static_cast<size_t>(std::max<int64_t>(0, -lag));
  const auto to = static_cast<size_t>(std::max<int64_t>(0, lag));
  if (from >= in.Frames() || to >= out.Frames()) return false;
  const size_t frames = std::min(in.Frames() - from, out.Frames() - to);
  if (static_cast<double>(frames) < kShortestJudged * out.rate) return false;
  const auto stride = static_cast<size_t>(in.channels);
  for (size_t done = 0; done < frames * stride;) {
    const size_t count = std::min(kBlock, frames * stride - done);
    const bool same = std::ranges::equal(
        in.samples.View(from * stride + done, count), out.samples.View(to * stride + done, count),
        [](float a, float b) { return std::fabs(static_cast<double>(a - b)) <= kSameSample; });
    if (!same) return false;
    done += count;
  }
  return true;
}

}  // namespace

bool IsCopy(const Signal& in, const Signal& out) {
  return in.rate == out.rate && in.channels == out.channels &&
         in.samples.size() == out.samples.size() && Same(in, out, 0);
}

void CheckUnchanged(const GuardInput& input, const Surveys& surveys, const Pairing* pairing,
                    GuardHits& hits) {
  const Signal& in = *input.input;
  const Signal& out = *input.output;
  if (in.rate != out.rate || in.channels != out.channels) return;
  if (std::ranges::all_of(surveys.input, IsStill)) return;
  if (Same(in, out, 0)) {
    hits.Add(Guard::kUnchanged, {}, "the same as the input");
    return;
  }
  const int64_t lag = pairing != nullptr && pairing->Of(0).known ? pairing->Of(0).lag : 0;
  if (lag == 0 || !Same(in, out, lag)) return;
  const double later = static_cast<double>(lag) / out.rate;
  hits.Add(
      Guard::kUnchanged, {},
      "the same as the input, " + Seconds(std::fabs(later)) + (lag > 0 ? " later" : " earlier"));
}

void CheckInverted(const Pairing& pairing, int channels, GuardHits& hits) {
  for (int channel = 0; channel < channels; ++channel) {
    const Match& match = pairing.Of(channel);
    if (!match.known || match.correlation > kInverted) continue;
    if (InvertsItself(pairing.Input(), pairing.Source(channel))) continue;
    hits.Add(Guard::kInverted, {.at = 0, .channel = channel}, "upside down against the input");
    return;
  }
}

void CheckSwapped(const Pairing& pairing, GuardHits& hits) {
  if (!pairing.Swapped()) return;
  // A difference that is a steady tone is turned by a delay as by swapping.
  std::vector<float> right;
  const auto readDifference = [&](int64_t first, std::span<float> to) {
    right.resize(to.size());
    pairing.Input().Read(0, first, to);
    pairing.Input().Read(1, first, right);
    for (size_t i = 0; i < to.size(); ++i) to[i] -= right[i];
  };
  if (InvertsItself(pairing.Input().Frames(), readDifference)) return;
  hits.Add(Guard::kSwapped, {.at = 0}, "left and right are swapped");
}

}  // namespace host
