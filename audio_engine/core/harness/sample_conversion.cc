#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "harness/sample_conversion.cc"
#include <hwy/foreach_target.h>
// After foreach_target.h.
#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "harness/sample_conversion.h"

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using Ints = hn::RebindToSigned<Floats>;
using HalfShorts = hn::Rebind<int16_t, Floats>;
using Shorts = hn::Repartition<int16_t, Floats>;

// The first power of two that no 32-bit integer holds.
constexpr float kIntLimit = 0x1p31f;

// From here on floats go past the caches, which could not keep them: 16 MiB.
constexpr size_t kCachedSamples = size_t{4} << 20;

// Calls edge(at) and inner(at) for whole vectors of `lanes` samples that together cover all `count`
// of them, count >= lanes. The edges, the first and the last, may overlap their neighbours; those
// between belong to whole vectors of memory, since a store across two cache lines takes twice as
// long.
template <typename Sample, typename Edge, typename Inner>
HWY_INLINE void ForEachVector(const Sample* dst, size_t count, size_t lanes, Edge edge,
                              Inner inner) {
  const size_t ahead = reinterpret_cast<uintptr_t>(dst) / sizeof(Sample) % lanes;
  edge(0);
  for (size_t at = lanes - ahead; at + lanes <= count; at += lanes) inner(at);
  edge(count - lanes);
}

// Deliberate: no scaling, -32768 stays -32768. The callers feed processing that works in the range
// of 16 bits, and scaled samples would be silence to it.
void ToFloat(const short* HWY_RESTRICT src, float* HWY_RESTRICT dst, size_t count) {
  const size_t lanes = hn::Lanes(Floats());
  if (count < lanes) {
    for (size_t i = 0; i < count; ++i) dst[i] = static_cast<float>(src[i]);
    return;
  }
  const auto convert = [=](size_t at) HWY_ATTR {
    return hn::ConvertTo(Floats(), hn::PromoteTo(Ints(), hn::LoadU(HalfShorts(), src + at)));
  };
  const auto store = [=](size_t at) HWY_ATTR { hn::StoreU(convert(at), Floats(), dst + at); };
  const auto stream = [=](size_t at) HWY_ATTR { hn::Stream(convert(at), Floats(), dst + at); };
  if (count < kCachedSamples) {
    ForEachVector(dst, count, lanes, store, store);
  } else {
    ForEachVector(dst, count, lanes, store, stream);
    hwy::FlushStream();
  }
}

// Truncates toward zero. What no 32-bit integer holds becomes one whose low 16 bits are 0.
HWY_INLINE hn::Vec<Ints> Truncate(hn::Vec<Floats> values) {
#if HWY_ARCH_X86 && HWY_MAX_BYTES == 64
  // The instructions themselves answer 0x80000000; ConvertTo would take time to undo that.
  return hn::Vec<Ints>{_mm512_cvttps_epi32(values.raw)};
#elif HWY_ARCH_X86 && HWY_MAX_BYTES == 32
  return hn::Vec<Ints>{_mm256_cvttps_epi32(values.raw)};
#else
  // 0 for NaN and for what is too large. What is too far below gives the smallest integer.
  const auto limit = hn::Set(Floats(), kIntLimit);
  return hn::ConvertTo(Ints(), hn::IfThenElseZero(hn::Lt(values, limit), values));
#endif
}

// Deliberate: the low 16 bits, without clamping, so that 32768 becomes -32768. The wrap is how an
// engine that leaves the 16-bit range shows in what the bench writes; clamping would hide it.
void EachToShort(const float* HWY_RESTRICT src, short* HWY_RESTRICT dst, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const bool inRange = std::fabs(src[i]) < kIntLimit;
    dst[i] = static_cast<short>(inRange ? static_cast<int32_t>(src[i]) : 0);
  }
}

#if HWY_TARGET == HWY_SCALAR
void ToShort(const float* HWY_RESTRICT src, short* HWY_RESTRICT dst, size_t count) {
  EachToShort(src, dst, count);
}
#else
// Two vectors of integers make one of their low halves, which are the even ones of their halves.
void ToShort(const float* HWY_RESTRICT src, short* HWY_RESTRICT dst, size_t count) {
  const size_t lanes = hn::Lanes(Floats());
  if (count < 2 * lanes) {
    EachToShort(src, dst, count);
    return;
  }
  const auto convert = [=](size_t at) HWY_ATTR {
    const auto low = hn::BitCast(Shorts(), Truncate(hn::LoadU(Floats(), src + at)));
    const auto high = hn::BitCast(Shorts(), Truncate(hn::LoadU(Floats(), src + at + lanes)));
    hn::StoreU(hn::ConcatEven(Shorts(), high, low), Shorts(), dst + at);
  };
  ForEachVector(dst, count, 2 * lanes, convert, convert);
}
#endif

}  // namespace
}  // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(ToFloat);
HWY_EXPORT(ToShort);

void ConvertToFloatForWebrtc(const short* src, float* dst, int count) {
  if (count > 0) HWY_DYNAMIC_DISPATCH(ToFloat)(src, dst, static_cast<size_t>(count));
}

void ConvertToShortForWebrtc(const float* src, short* dst, int count) {
  if (count > 0) HWY_DYNAMIC_DISPATCH(ToShort)(src, dst, static_cast<size_t>(count));
}

#endif
