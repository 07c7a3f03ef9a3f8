#include "engine_api/effects/fir_filter.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "desktop/dsp/filters/fir_kernel.h"
#include "desktop/platform/log.h"

namespace {

// Longer calls are filtered in blocks of at most so many frames, so that they need no larger
// memory.
constexpr size_t kMaxBlockFrames = 2048;

// Keeps the samples in one array that the input is appended to; when it is full, the history moves
// to its start.
class DirectFormFilter final : public zuwebrtc::FIRFilter {
 public:
  // Throws when there is no memory, as SetCoefficients does.
  DirectFormFilter(const float* coefficients, size_t count) {
    SetCoefficients(coefficients, count);
  }

  void Filter(const float* in, size_t length, float* out) override {
    if (m_coefficients.empty()) {
      std::fill_n(out, length, 0.0f);
      return;
    }
    while (length > 0) {
      const size_t samples = std::min(length, kMaxBlockFrames);
      float* block = Append(in, samples);
      desktop::Convolve(block, samples, m_coefficients.data(), m_coefficients.size(), out);
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
    const size_t oldHistory = HistorySamples(m_coefficients.size());
    const size_t newHistory = HistorySamples(count);
    if (m_samples.empty() || newHistory != oldHistory) {
      std::vector<float> newSamples(newHistory + kMaxBlockFrames + desktop::kConvolveOverread);
      const size_t kept = std::min(oldHistory, newHistory);
      const float* end = m_samples.data() + m_end;
      std::copy(end - kept, end, newSamples.data() + newHistory - kept);
      m_samples = std::move(newSamples);
      m_end = newHistory;
    }
    m_coefficients = std::move(newCoefficients);
  }

  // Appends at most kMaxBlockFrames samples to the history and returns where they are.
  float* Append(const float* in, size_t samples) {
    const size_t history = HistorySamples(m_coefficients.size());
    float* start = m_samples.data();
    if (m_end + samples + desktop::kConvolveOverread > m_samples.size()) {
      std::copy_n(start + m_end - history, history, start);
      m_end = history;
    }
    float* block = start + m_end;
    std::copy_n(in, samples, block);
    m_end += samples;
    return block;
  }

  std::vector<float> m_coefficients;
  std::vector<float> m_samples;
  size_t m_end = 0;  // Where the next samples go, right after the history.
};

}  // namespace

zuwebrtc::FIRFilter* zuwebrtc::FIRFilter::Create(const float* coefficients, size_t count,
                                                 size_t /*max_input_length*/) {
  try {
    return std::make_unique<DirectFormFilter>(coefficients, count).release();
  } catch (const std::exception&) {
    desktop::LogRefusal("FIRFilter: no memory for %zu coefficients", count);
    return nullptr;
  }
}
