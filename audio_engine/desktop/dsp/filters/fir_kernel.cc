// Direct-form convolution, blocked for registers. Neighbouring vectors of outputs need the same
// vectors of samples for taps that are one vector length apart: a tile of R vectors of outputs and
// M such taps takes R * M multiply-adds but only R + M - 1 loads of samples and M broadcasts of
// coefficients, so that the multipliers and not the loads set the pace.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "desktop/dsp/filters/fir_kernel.cc"
// A tile is an array of vectors. These targets have vectors of unknown length, which no array can
// hold.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#include <hwy/foreach_target.h>
// This header has to come after foreach_target.h.
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>
#include <utility>

#include "desktop/dsp/filters/fir_kernel.h"

HWY_BEFORE_NAMESPACE();
namespace desktop {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::ScalableTag<float>;
using Vector = hn::Vec<Tag>;

constexpr size_t kLanes = hn::MaxLanes(Tag());
static_assert(kLanes <= kConvolveOverread);

// As many sums and shared coefficients as the register file holds: 32 registers or 16.
constexpr bool kManyRegisters = HWY_MAX_BYTES == 64 || HWY_ARCH_ARM_A64;
constexpr size_t kMaxRows = kManyRegisters ? 14 : 8;
constexpr size_t kSharedTaps = kManyRegisters ? 8 : 4;
constexpr size_t kGroupTaps = kLanes * kSharedTaps;

// A few taps are summed on their own before they join the total, and the quiet tail of the response
// goes first: small sums round less than a total does.
constexpr size_t kStepsPerSum = kLanes < 4 ? kLanes : 4;
constexpr size_t kSingleTapsPerSum = 8;  // Of those that make no whole group.

template <size_t... kIndex, typename Function>
HWY_INLINE void Unroll(std::index_sequence<kIndex...>, Function function) {
  (function(std::integral_constant<size_t, kIndex>()), ...);
}

// Keeps the compiler from loading the vector anew for every use: most loads cross a cache line.
HWY_INLINE void KeepInRegister([[maybe_unused]] Vector& vector) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
  __asm__("" : "+v"(vector.raw));
#endif
}

// Adds kSharedTaps taps, the oldest first, to kRows vectors of sums. in: the sample that the first
// output takes with the first coefficient.
template <size_t kRows>
HWY_INLINE void AddSharedTaps(const float* in, const float* coefficients, Vector (&sums)[kRows]) {
  const Tag d;
  Vector shared[kSharedTaps];
  Unroll(std::make_index_sequence<kSharedTaps>(),
         [&](auto tap) HWY_ATTR { shared[tap] = hn::Set(d, coefficients[kLanes * tap]); });
  // One vector of samples serves a diagonal of the tile, row - tap = constant. Along the diagonals
  // every row takes its taps in the same order.
  Unroll(std::make_index_sequence<kRows + kSharedTaps - 1>(), [&](auto diagonal) HWY_ATTR {
    Vector samples = hn::LoadU(d, in - kLanes * (kSharedTaps - 1) + kLanes * diagonal);
    KeepInRegister(samples);
    Unroll(std::make_index_sequence<kSharedTaps>(), [&](auto tap) HWY_ATTR {
      // Above the tile the diagonal wraps round.
      constexpr size_t kRow = diagonal + tap - (kSharedTaps - 1);
      if constexpr (kRow < kRows) sums[kRow] = hn::MulAdd(samples, shared[tap], sums[kRow]);
    });
  });
}

// Adds the loud taps to kRows vectors of totals, with one rounding where their own sum is exact.
template <size_t kRows>
HWY_INLINE void AddLoudTaps(const float* in, const LoudTaps& loud, Vector (&totals)[kRows]) {
  const Tag d;
  Vector values[kLoudTaps];
  Unroll(std::make_index_sequence<kLoudTaps>(),
         [&](auto tap) HWY_ATTR { values[tap] = hn::Set(d, loud.value[tap]); });
  Unroll(std::make_index_sequence<kRows>(), [&](auto row) HWY_ATTR {
    const float* samples = in + kLanes * row;
    Vector sum = hn::Mul(hn::LoadU(d, samples - loud.at[0]), values[0]);
    Unroll(std::make_index_sequence<kLoudTaps - 1>(), [&](auto tap) HWY_ATTR {
      sum = hn::MulAdd(hn::LoadU(d, samples - loud.at[tap + 1]), values[tap + 1], sum);
    });
    totals[row] = hn::Add(totals[row], sum);
  });
}

// Computes kRows * kLanes outputs.
template <size_t kRows>
void ConvolveTile(const float* in, const float* coefficients, size_t count, const LoudTaps* loud,
                  float* out) {
  const Tag d;
  // A low tile has too few sums to keep the multipliers busy: it makes two partial sums at a time.
  constexpr size_t kChains = 2 * kRows <= kMaxRows && 2 * kStepsPerSum <= kLanes ? 2 : 1;
  Vector totals[kRows];
  Unroll(std::make_index_sequence<kRows>(), [&](auto row) HWY_ATTR { totals[row] = hn::Zero(d); });

  // The oldest taps, which make no whole group, one by one: padding them with zeros would let an
  // infinite sample reach further than the response.
  size_t tap = count;
  for (const size_t end = count - count % kGroupTaps; tap > end;) {
    Vector sums[kRows];
    Unroll(std::make_index_sequence<kRows>(), [&](auto row) HWY_ATTR { sums[row] = hn::Zero(d); });
    for (size_t left = std::min(tap - end, kSingleTapsPerSum); left > 0; --left) {
      --tap;
      const Vector coefficient = hn::Set(d, coefficients[tap]);
      Unroll(std::make_index_sequence<kRows>(), [&](auto row) HWY_ATTR {
        sums[row] = hn::MulAdd(hn::LoadU(d, in + kLanes * row - tap), coefficient, sums[row]);
      });
    }
    Unroll(std::make_index_sequence<kRows>(),
           [&](auto row) HWY_ATTR { totals[row] = hn::Add(totals[row], sums[row]); });
  }

  while (tap > 0) {
    tap -= kGroupTaps;
    for (size_t first = tap + kLanes; first > tap; first -= kChains * kStepsPerSum) {
      Vector sums[kChains][kRows];
      Unroll(std::make_index_sequence<kChains * kRows>(),
             [&](auto at) HWY_ATTR { sums[at / kRows][at % kRows] = hn::Zero(d); });
      for (size_t step = 1; step <= kStepsPerSum; ++step) {
        Unroll(std::make_index_sequence<kChains>(), [&](auto chain) HWY_ATTR {
          const size_t newest = first - chain * kStepsPerSum - step;
          AddSharedTaps(in - newest, coefficients + newest, sums[chain]);
        });
      }
      Unroll(std::make_index_sequence<kChains * kRows>(), [&](auto at) HWY_ATTR {
        totals[at % kRows] = hn::Add(totals[at % kRows], sums[at / kRows][at % kRows]);
      });
    }
  }

  if (loud != nullptr) AddLoudTaps(in, *loud, totals);
  Unroll(std::make_index_sequence<kRows>(),
         [&](auto row) HWY_ATTR { hn::StoreU(totals[row], d, out + kLanes * row); });
}

using Tile = void (*)(const float* in, const float* coefficients, size_t count,
                      const LoudTaps* loud, float* out);

template <size_t... kIndex>
constexpr std::array<Tile, sizeof...(kIndex)> Tiles(std::index_sequence<kIndex...>) {
  return {ConvolveTile<kIndex + 1>...};
}

// These are the tiles of 1 row, of 2 rows and so on.
constexpr auto kTiles = Tiles(std::make_index_sequence<kMaxRows>());

void Convolve(const float* in, size_t length, const float* coefficients, size_t count,
              const LoudTaps* loud, float* out) {
  while (length > 0) {
    // All tiles get about the same height, because a low one wastes loads.
    const size_t rows = (length + kLanes - 1) / kLanes;
    const size_t tiles = (rows + kMaxRows - 1) / kMaxRows;
    const size_t height = (rows + tiles - 1) / tiles;
    const size_t samples = std::min(length, height * kLanes);
    const Tile tile = kTiles[height - 1];
    if (samples == height * kLanes) {
      tile(in, coefficients, count, loud, out);
    } else {
      float whole[kMaxRows * kLanes];
      tile(in, coefficients, count, loud, whole);
      std::memcpy(out, whole, samples * sizeof(float));
    }
    in += samples;
    out += samples;
    length -= samples;
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace desktop
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace desktop {

HWY_EXPORT(Convolve);

void Convolve(const float* in, size_t length, const float* coefficients, size_t count,
              const LoudTaps* loud, float* out) {
  HWY_DYNAMIC_DISPATCH(Convolve)(in, length, coefficients, count, loud, out);
}

}  // namespace desktop

#endif
