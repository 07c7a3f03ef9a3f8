#include "engine_api/effects/fir_filter.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "desktop/dsp/filters/fast_fir.h"
#include "desktop/dsp/filters/fir_kernel.h"
#include "desktop/dsp/filters/pair_kernel.h"
#include "desktop/platform/log.h"

namespace {

// Longer calls are filtered in blocks of at most so many frames, so that they need no larger memory
// and stay in the nearest cache.
constexpr size_t kMaxBlockFrames = 512;

// A step of the fast algorithm pays while the parts of the response keep so many coefficients:
// whole groups of the kernel.
constexpr size_t kMinPartTaps = 128;
constexpr size_t kMaxLevels = 2;

size_t FastLevels(size_t taps) {
  size_t levels = 0;
  while (levels < kMaxLevels && taps >> (levels + 1) >= kMinPartTaps) ++levels;
  return levels;
}

static_assert(desktop::kPairSlack >= desktop::kConvolveOverread);

// The newest part of the response, as many coefficients as the fast algorithm can take, goes
// through that; the oldest ones that are left over are added in direct form, and a short response
// is filtered so as a whole. Keeps the samples in one array that the input is appended to; when it
// is full, the history moves to its start.
class ContinuousFilter final : public zuwebrtc::FIRFilter {
 public:
  // Throws when there is no memory, as SetCoefficients does.
  ContinuousFilter(const float* coefficients, size_t count) {
    SetCoefficients(coefficients, count);
  }

  void Filter(const float* in, size_t length, float* out) override {
    if (m_coefficients.empty()) {
      std::fill_n(out, length, 0.0f);
      return;
    }
    while (length > 0) {
      const size_t samples = std::min(length, kMaxBlockFrames);
      FilterBlock(Append(in, samples), samples, out);
      in += samples;
      out += samples;
      length -= samples;
    }
  }

  void UpdateCoeffients(const float* coefficients, size_t count) override {
    try {
      SetCoefficients(coefficients, count);
    } catch (const std::exception&) {
      desktop::LogRefusal("FIRFilter: no memory for %zu coefficients, the old ones stay", count);
    }
  }

 private:
  static size_t HistorySamples(size_t taps) { return taps > 0 ? taps - 1 : 0; }

  // Samples from before the first call, and from before what fewer coefficients had to keep, are
  // zero. All stays as it was when there is no memory.
  void SetCoefficients(const float* coefficients, size_t count) {
    std::vector<float> newCoefficients(count);
    std::copy_n(coefficients, count, newCoefficients.data());
    const size_t levels = FastLevels(count);
    const size_t fastTaps = levels > 0 ? count >> levels << levels : 0;
    std::unique_ptr<desktop::FastFir> newFast;
    if (levels > 0) newFast = desktop::MakeFastFir(coefficients, fastTaps, levels, kMaxBlockFrames);

    const size_t oldHistory = HistorySamples(m_coefficients.size());
    const size_t newHistory = HistorySamples(count);
    std::vector<float> newDirect(kMaxBlockFrames);
    if (m_samples.empty() || newHistory != oldHistory) {
      std::vector<float> newSamples(newHistory + 2 * kMaxBlockFrames + desktop::kPairSlack);
      const size_t kept = std::min(oldHistory, newHistory);
      const float* end = m_samples.data() + m_end;
      std::copy(end - kept, end, newSamples.data() + newHistory - kept);
      m_samples = std::move(newSamples);
      m_end = newHistory;
    }
    m_coefficients = std::move(newCoefficients);
    m_direct = std::move(newDirect);
    m_fast = std::move(newFast);
    m_fastTaps = fastTaps;
    HearHistory();
  }

  // Brings a fresh fast part to where it would be had it heard the history.
  void HearHistory() {
    if (m_fast == nullptr) return;
    size_t left = HistorySamples(m_coefficients.size());
    while (left > 0) {
      const size_t samples = std::min(left, kMaxBlockFrames);
      m_fast->Filter(&m_samples[m_end - left], samples, m_direct.data());
      left -= samples;
    }
  }

  // Appends at most kMaxBlockFrames samples to the history and returns where they are.
  const float* Append(const float* in, size_t samples) {
    const size_t history = HistorySamples(m_coefficients.size());
    float* start = m_samples.data();
    if (m_end + samples + desktop::kPairSlack > m_samples.size()) {
      std::copy_n(start + m_end - history, history, start);
      m_end = history;
    }
    float* block = start + m_end;
    std::copy_n(in, samples, block);
    m_end += samples;
    return block;
  }

  void FilterBlock(const float* block, size_t samples, float* out) {
    const float* directTaps = m_coefficients.data() + m_fastTaps;
    const size_t count = m_coefficients.size() - m_fastTaps;
    if (m_fast == nullptr) {
      desktop::Convolve(block, samples, directTaps, count, nullptr, out);
      return;
    }
    m_fast->Filter(block, samples, out);
    if (count == 0) return;
    desktop::Convolve(block - m_fastTaps, samples, directTaps, count, nullptr, m_direct.data());
    for (size_t i = 0; i < samples; ++i) out[i] += m_direct[i];
  }

  std::vector<float> m_coefficients;
  std::vector<float> m_samples;
  size_t m_end = 0;                          // Where the next samples go, right after the history.
  std::unique_ptr<desktop::FastFir> m_fast;  // None for a short response.
  size_t m_fastTaps = 0;
  std::vector<float> m_direct;  // Outputs of the coefficients that are left over.
};

}  // namespace

zuwebrtc::FIRFilter* zuwebrtc::FIRFilter::Create(const float* coefficients, size_t count,
                                                 size_t /*max_input_length*/) {
  try {
    return std::make_unique<ContinuousFilter>(coefficients, count).release();
  } catch (const std::exception&) {
    desktop::LogRefusal("FIRFilter: no memory for %zu coefficients", count);
    return nullptr;
  }
}
