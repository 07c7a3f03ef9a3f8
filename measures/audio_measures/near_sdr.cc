#include "audio_measures/near_sdr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "audio_measures/activity.h"
#include "audio_measures/alignment.h"
#include "audio_measures/difference.h"
#include "audio_measures/interpolation.h"

namespace audio_measures {

namespace {

// For each sample whether it counts.
std::vector<uint8_t> DoubleTalk(const Activity& near, const Activity& far, int rate) {
  const size_t block = ActivityBlock(rate);
  std::vector<uint8_t> marks(std::min(near.talk.size(), far.talk.size()) * block);
  for (size_t i = 0; i < marks.size(); ++i) {
    marks[i] = near.talk[i / block] & far.talk[i / block];
  }
  return marks;
}

// later: samples by which the output is later.
Figure SdrAt(std::span<const float> near, std::span<const float> output, double later,
             std::span<const uint8_t> marks) {
  const std::vector<float> moved = Interpolate(output, later, 1, near.size());
  double ofNear = 0;
  double ofOutput = 0;
  double product = 0;
  for (size_t i = 0; i < marks.size(); ++i) {
    if (marks[i] == 0) continue;
    const auto s = static_cast<double>(near[i]);
    const auto y = static_cast<double>(moved[i]);
    ofNear += s * s;
    ofOutput += y * y;
    product += s * y;
  }
  if (!(ofNear > 0)) return Unknown("no double talk");
  if (!(ofOutput > 0)) return Unknown(kSilence);
  const double retained = product * product / ofNear;  // |g s|^2, at right angles to the rest.
  const double rest = ofOutput - retained;
  if (!(rest > 0)) return Known(kHighestSnr);
  return Known(std::min(kHighestSnr, 10 * std::log10(retained / rest)));
}

}  // namespace

Figure NearSdr(std::span<const float> near, std::span<const float> far,
               std::span<const float> output, int rate, double searchSeconds) {
  const Activity nearTalk = ActivityOf(near, rate);
  if (*nearTalk.fault != '\0') return Unknown(nearTalk.fault);
  const Activity farTalk = ActivityOf(far, rate);
  if (*farTalk.fault != '\0') return Unknown(farTalk.fault);
  const Figure delay = Align(near, output, rate, -searchSeconds, searchSeconds).delay;
  if (!delay.value) return delay;
  const double later = *delay.value * rate;
  const std::vector<uint8_t> marks = DoubleTalk(nearTalk, farTalk, rate);
  const Figure between = SdrAt(near, output, later, marks);
  const Figure whole = SdrAt(near, output, std::round(later), marks);
  return between.value && *between.value > whole.value.value_or(kHighestSnr) ? between : whole;
}

}  // namespace audio_measures
