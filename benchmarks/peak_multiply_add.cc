#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "peak_multiply_add.cc"
// As for the filters that it is compared with.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#include <hwy/foreach_target.h>
// After foreach_target.h.
#include <benchmark/benchmark.h>
#include <hwy/highway.h>

#include "peak_multiply_add.h"

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

size_t RunPeakMultiplyAdds(size_t count) {
  const hn::ScalableTag<float> d;
  // Twelve chains: two units of a latency of up to six cycles are never idle, and all of it fits
  // into sixteen registers.
  constexpr size_t kChains = 12;
  const auto factor = hn::Set(d, 0.5f);
  const auto offset = hn::Set(d, 1.0f);
  // Different starts, so that no two chains are one to the compiler.
  auto s0 = hn::Set(d, 0.0f), s1 = hn::Set(d, 0.1f), s2 = hn::Set(d, 0.2f), s3 = hn::Set(d, 0.3f);
  auto s4 = hn::Set(d, 0.4f), s5 = hn::Set(d, 0.5f), s6 = hn::Set(d, 0.6f), s7 = hn::Set(d, 0.7f);
  auto s8 = hn::Set(d, 0.8f), s9 = hn::Set(d, 0.9f), s10 = hn::Set(d, 1.0f), s11 = hn::Set(d, 1.1f);
  const size_t step = kChains * hn::Lanes(d);
  size_t done = 0;
  for (; done < count; done += step) {
    s0 = hn::MulAdd(s0, factor, offset);
    s1 = hn::MulAdd(s1, factor, offset);
    s2 = hn::MulAdd(s2, factor, offset);
    s3 = hn::MulAdd(s3, factor, offset);
    s4 = hn::MulAdd(s4, factor, offset);
    s5 = hn::MulAdd(s5, factor, offset);
    s6 = hn::MulAdd(s6, factor, offset);
    s7 = hn::MulAdd(s7, factor, offset);
    s8 = hn::MulAdd(s8, factor, offset);
    s9 = hn::MulAdd(s9, factor, offset);
    s10 = hn::MulAdd(s10, factor, offset);
    s11 = hn::MulAdd(s11, factor, offset);
  }
  for (const auto& sum : {s0, s1, s2, s3, s4, s5, s6, s7, s8, s9, s10, s11}) {
    benchmark::DoNotOptimize(hn::GetLane(sum));
  }
  return done;
}

}  // namespace
}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(RunPeakMultiplyAdds);

size_t RunPeakMultiplyAdds(size_t count) {
  return HWY_DYNAMIC_DISPATCH(RunPeakMultiplyAdds)(count);
}

#endif
