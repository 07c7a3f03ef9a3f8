// The additions before and after the filters of a fast FIR step, for the best vector instructions
// of the machine. Every pair takes the same additions, wherever it stands.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "desktop/dsp/filters/pair_kernel.cc"
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#include <hwy/foreach_target.h>
// This header has to come after foreach_target.h.
#include <hwy/highway.h>

#include <cstring>

#include "desktop/dsp/filters/pair_kernel.h"

HWY_BEFORE_NAMESPACE();
namespace desktop {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::ScalableTag<float>;
using Vector = hn::Vec<Tag>;

constexpr size_t kLanes = hn::MaxLanes(Tag());
static_assert(2 * kLanes <= kPairSlack);

void SplitPairs(const float* in, size_t pairs, float* even, float* odd, float* difference) {
  const Tag d;
  for (size_t k = 0; k < pairs; k += kLanes) {
    Vector evens;
    Vector odds;
    hn::LoadInterleaved2(d, in + 2 * k, evens, odds);
    hn::StoreU(evens, d, even + k);
    hn::StoreU(odds, d, odd + k);
    hn::StoreU(hn::Sub(odds, evens), d, difference + k);
  }
}

HWY_INLINE void JoinVector(const float* even, const float* odd, const float* difference,
                           float* out) {
  const Tag d;
  const Vector evens = hn::LoadU(d, even);
  const Vector first = hn::Add(evens, hn::LoadU(d, odd));
  const Vector sum = hn::Add(evens, hn::LoadU(d, odd + 1));
  hn::StoreInterleaved2(first, hn::Add(sum, hn::LoadU(d, difference)), d, out);
}

void JoinPairs(const float* even, const float* odd, const float* difference, size_t pairs,
               float* out) {
  size_t k = 0;
  for (; k + kLanes <= pairs; k += kLanes) {
    JoinVector(even + k, odd + k, difference + k, out + 2 * k);
  }
  if (k < pairs) {
    float whole[2 * kLanes];
    JoinVector(even + k, odd + k, difference + k, whole);
    std::memcpy(out + 2 * k, whole, 2 * (pairs - k) * sizeof(float));
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace desktop
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace desktop {

HWY_EXPORT(SplitPairs);
HWY_EXPORT(JoinPairs);

void SplitPairs(const float* in, size_t pairs, float* even, float* odd, float* difference) {
  HWY_DYNAMIC_DISPATCH(SplitPairs)(in, pairs, even, odd, difference);
}

void JoinPairs(const float* even, const float* odd, const float* difference, size_t pairs,
               float* out) {
  HWY_DYNAMIC_DISPATCH(JoinPairs)(even, odd, difference, pairs, out);
}

}  // namespace desktop

#endif
