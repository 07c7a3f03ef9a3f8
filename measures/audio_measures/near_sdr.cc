#include "audio_measures/near_sdr.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio_measures/activity.h"
#include "audio_measures/alignment.h"
#include "audio_measures/difference.h"
#include "audio_measures/interpolation.h"

namespace audio_measures {

Figure NearSdr(std::span<const float> near, std::span<const float> far,
               std::span<const float> output, int rate, double searchSeconds) {
  const Activity nearTalk = ActivityOf(near, rate);
  if (*nearTalk.fault != '\0') return Unknown(nearTalk.fault);
  const Activity farTalk = ActivityOf(far, rate);
  if (*farTalk.fault != '\0') return Unknown(farTalk.fault);
  const Figure delay = Align(near, output, rate, -searchSeconds, searchSeconds).delay;
  if (!delay.value) return delay;
  const std::vector<float> moved = Interpolate(output, *delay.value * rate, 1, near.size());

  const size_t block = ActivityBlock(rate);
  const size_t count = std::min(nearTalk.talk.size(), farTalk.talk.size());
  double ofNear = 0;
  double ofOutput = 0;
  double product = 0;
  for (size_t i = 0; i < count; ++i) {
    if (nearTalk.talk[i] == 0 || farTalk.talk[i] == 0) continue;
    for (size_t k = i * block; k < (i + 1) * block; ++k) {
      const auto s = static_cast<double>(near[k]);
      const auto y = static_cast<double>(moved[k]);
      ofNear += s * s;
      ofOutput += y * y;
      product += s * y;
    }
  }
  if (!(ofNear > 0)) return Unknown("no double talk");
  if (!(ofOutput > 0)) return Unknown(kSilence);
  const double retained = product * product / ofNear;  // |g s|^2, at right angles to the rest.
  const double rest = ofOutput - retained;
  if (!(rest > 0)) return Known(kHighestSnr);
  return Known(std::min(kHighestSnr, 10 * std::log10(retained / rest)));
}

}  // namespace audio_measures
