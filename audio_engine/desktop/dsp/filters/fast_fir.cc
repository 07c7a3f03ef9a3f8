// The fast FIR algorithm in steps of two (Z.-J. Mou and P. Duhamel, "Short-length FIR filters and
// their use in fast nonrecursive filtering", IEEE Transactions on Signal Processing 39, 1991). With
// the even and the odd samples x0, x1 and coefficients h0, h1, three convolutions of half the
// length at half the rate serve instead of four:
//
//   y0[k] = (h0 * x0)[k] + (h1 * x1)[k - 1]
//   y1[k] = (h0 * x0)[k] + (h1 * x1)[k] + ((h0 - h1) * (x1 - x0))[k]
//
// This is the form with differences, not the one with h0 + h1 and x0 + x1: neighbouring samples of
// sound are alike, so that the third convolution stays small, and its rounding with it. What is
// loud in the convolutions cancels between them all the same, but not its rounding: so the loudest
// coefficients of each are taken apart and added exactly.

#include "desktop/dsp/filters/fast_fir.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <optional>
#include <vector>

#include "desktop/dsp/filters/fir_kernel.h"
#include "desktop/dsp/filters/pair_kernel.h"

namespace desktop {
namespace {

using Floats = std::vector<float>;

// Takes the largest coefficients out of a response, as multiples of a power of two of which all of
// them together have at most 64. Samples of 16 bits and the differences of up to three steps are
// multiples of 2^-15 below 2^3, so that a sum of their products is a whole number below 2^24 of
// units, which a float holds exactly. None of a response that is silent, not finite or shorter.
std::optional<LoudTaps> TakeLoudTaps(Floats& coefficients) {
  const auto isFinite = [](float value) { return std::isfinite(value); };
  if (coefficients.size() < kLoudTaps || !std::ranges::all_of(coefficients, isFinite)) return {};
  std::vector<size_t> order(coefficients.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::ranges::partial_sort(order, order.begin() + kLoudTaps, std::greater(),
                            [&](size_t tap) { return std::abs(coefficients[tap]); });
  double sum = 0;
  for (size_t i = 0; i < kLoudTaps; ++i) sum += std::abs(double{coefficients[order[i]]});
  if (!std::isnormal(static_cast<float>(sum))) return {};

  // Each may be rounded up by half a unit.
  constexpr double kMostUnits = 64 - kLoudTaps / 2.0;
  const double unit = std::exp2(std::ceil(std::log2(sum / kMostUnits)));
  LoudTaps loud{};
  for (size_t i = 0; i < kLoudTaps; ++i) {
    float& coefficient = coefficients[order[i]];
    loud.at[i] = order[i];
    loud.value[i] = static_cast<float>(std::nearbyint(double{coefficient} / unit) * unit);
    coefficient -= loud.value[i];
  }
  return loud;
}

// One of the convolutions of a step.
class Stage {
 public:
  virtual ~Stage() = default;

  // Where the next `samples` samples go. kPairSlack floats after them may be overwritten as well.
  virtual float* Place(size_t samples) = 0;

  // Filters the samples that were put there into as many outputs. kPairSlack floats after the
  // outputs may be overwritten.
  virtual void FilterPlaced(size_t samples, float* out) = 0;
};

// A convolution as it is defined. Keeps the samples in one array that the input is appended to;
// when it is full, the history moves to its start.
class DirectStage final : public Stage {
 public:
  DirectStage(const float* coefficients, size_t count, size_t maxSamples)
      : m_coefficients(coefficients, coefficients + count),
        m_loud(TakeLoudTaps(m_coefficients)),
        m_samples(count - 1 + kCallsPerMove * maxSamples + kPairSlack),
        m_end(count - 1) {}

  float* Place(size_t samples) override {
    const size_t history = m_coefficients.size() - 1;
    float* start = m_samples.data();
    if (m_end + samples + kPairSlack > m_samples.size()) {
      std::copy_n(start + m_end - history, history, start);
      m_end = history;
    }
    return start + m_end;
  }

  // Whole vectors are faster than a part of one.
  void FilterPlaced(size_t samples, float* out) override {
    const size_t whole = (samples + kWhole - 1) / kWhole * kWhole;
    Convolve(&m_samples[m_end], whole, m_coefficients.data(), m_coefficients.size(),
             m_loud ? &*m_loud : nullptr, out);
    m_end += samples;
  }

 private:
  static constexpr size_t kCallsPerMove = 2;
  static constexpr size_t kWhole = kConvolveOverread;  // A multiple of every vector's length.
  static_assert(kPairSlack >= kWhole - 1 + kConvolveOverread);

  Floats m_coefficients;  // Without the loud ones.
  const std::optional<LoudTaps> m_loud;
  Floats m_samples;
  size_t m_end;  // Where the next samples go, right after the history.
};

// One step of two. A call may end between the two samples of a pair: the first one is filtered and
// heard at once, and waits for the second with its output of the even branch.
class SplitStage final : public FastFir, public Stage {
 public:
  SplitStage(const float* coefficients, size_t count, size_t levels, size_t maxSamples)
      : SplitStage(Coefficients(coefficients, count), levels - 1, maxSamples, maxSamples / 2 + 1) {}

  float* Place(size_t /*samples*/) override { return m_in.data(); }

  void FilterPlaced(size_t samples, float* out) override { Filter(m_in.data(), samples, out); }

  void Filter(const float* in, size_t samples, float* out) override {
    if (samples == 0) return;
    // The first output in the array is the one of the sample that waits, in the even branch, and
    // the one of the pair before, in the odd branch.
    const size_t first = m_waits ? 1 : 0;
    const size_t pairs = (samples - first) / 2;
    const size_t rest = (samples - first) % 2;
    float* evenIn = m_even.stage->Place(pairs + rest);
    float* oddIn = m_odd.stage->Place(first + pairs);
    float* differenceIn = m_difference.stage->Place(first + pairs);
    if (m_waits) {
      oddIn[0] = in[0];
      differenceIn[0] = in[0] - m_waiting;
    }
    SplitPairs(in + first, pairs, evenIn, oddIn + first, differenceIn + first);
    m_waits = rest == 1;
    if (m_waits) evenIn[pairs] = m_waiting = in[samples - 1];

    float* even = m_even.out.data();
    float* odd = m_odd.out.data();
    float* difference = m_difference.out.data();
    m_even.stage->FilterPlaced(pairs + rest, even + first);
    m_odd.stage->FilterPlaced(first + pairs, odd + 1);
    m_difference.stage->FilterPlaced(first + pairs, difference);

    if (first == 1) *out++ = (even[0] + odd[1]) + difference[0];
    JoinPairs(even + first, odd + first, difference + first, pairs, out);
    const size_t last = first + pairs;
    if (m_waits) out[2 * pairs] = even[last] + odd[last];
    even[0] = even[last];
    odd[0] = odd[last];
  }

 private:
  // One of the three convolutions and its outputs.
  struct Branch {
    Branch(const Floats& coefficients, size_t levels, size_t maxSamples)
        : out(1 + maxSamples + kPairSlack) {
      const size_t count = coefficients.size();
      if (levels > 0) {
        stage = std::make_unique<SplitStage>(coefficients.data(), count, levels, maxSamples);
      } else {
        stage = std::make_unique<DirectStage>(coefficients.data(), count, maxSamples);
      }
    }

    std::unique_ptr<Stage> stage;
    Floats out;
  };

  struct Coefficients {
    Coefficients(const float* coefficients, size_t count)
        : even(count / 2), odd(count / 2), difference(count / 2) {
      for (size_t k = 0; k < count / 2; ++k) {
        even[k] = coefficients[2 * k];
        odd[k] = coefficients[2 * k + 1];
        difference[k] = even[k] - odd[k];
      }
    }

    Floats even;
    Floats odd;
    Floats difference;
  };

  SplitStage(const Coefficients& coefficients, size_t levels, size_t maxSamples, size_t maxPairs)
      : m_in(maxSamples + kPairSlack),
        m_even(coefficients.even, levels, maxPairs),
        m_odd(coefficients.odd, levels, maxPairs),
        m_difference(coefficients.difference, levels, maxPairs) {}

  Floats m_in;
  Branch m_even;
  Branch m_odd;
  Branch m_difference;
  bool m_waits = false;
  float m_waiting = 0;
};

}  // namespace

std::unique_ptr<FastFir> MakeFastFir(const float* coefficients, size_t count, size_t levels,
                                     size_t maxSamples) {
  return std::make_unique<SplitStage>(coefficients, count, levels, maxSamples);
}

}  // namespace desktop
