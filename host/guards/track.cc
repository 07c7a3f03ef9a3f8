#include "guards/track.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace host {

namespace {

// Samples, at the lower rate, that the filter of the resampler reaches on either side.
constexpr int64_t kReach = 512;

constexpr size_t kKept = 1 << 14;  // Frames that are resampled at once and kept.

float Finite(float sample) {
  return std::fabs(sample) <= std::numeric_limits<float>::max() ? sample : 0;
}

// Copies each sample that lies `stride` after the one before. The loops with a stride that is known
// vectorise.
template <typename Change>
void CopyEach(const float* from, size_t stride, std::span<float> to, Change change) {
  if (stride == 1) {
    for (size_t i = 0; i < to.size(); ++i) to[i] = change(from[i]);
  } else if (stride == 2) {
    for (size_t i = 0; i < to.size(); ++i) to[i] = change(from[2 * i]);
  } else {
    for (size_t i = 0; i < to.size(); ++i) to[i] = change(from[stride * i]);
  }
}

int64_t FloorDivide(int64_t value, int64_t by) { return value / by - (value % by < 0 ? 1 : 0); }

}  // namespace

int64_t Track::Frames() const {
  return static_cast<int64_t>(m_signal.Frames()) * m_rate / m_signal.rate;
}

void Track::Read(int channel, int64_t first, std::span<float> to) const {
  if (m_rate == m_signal.rate) {
    Copy(channel, first, to);
  } else if (to.size() < kKept / 4) {
    ReadKept(channel, first, to);
  } else {
    Resample(channel, first, to);
  }
}

void Track::ReadKept(int channel, int64_t first, std::span<float> to) const {
  const int64_t end = first + static_cast<int64_t>(to.size());
  const int64_t endOfKept = m_kept.first + static_cast<int64_t>(m_kept.samples.size());
  if (channel != m_kept.channel || first < m_kept.first || end > endOfKept) {
    m_kept = {channel, first, std::vector<float>(kKept)};
    Resample(channel, first, m_kept.samples);
  }
  std::copy_n(m_kept.samples.begin() + (first - m_kept.first), to.size(), to.begin());
}

void Track::Copy(int channel, int64_t first, std::span<float> to) const {
  const auto stride = static_cast<size_t>(m_signal.channels);
  const auto frames = static_cast<int64_t>(m_signal.Frames());
  const int64_t begin = std::clamp<int64_t>(first, 0, frames);
  const int64_t end = std::clamp<int64_t>(first + static_cast<int64_t>(to.size()), begin, frames);
  if (begin == end) {
    std::ranges::fill(to, 0.0F);
    return;
  }
  std::ranges::fill(to.first(static_cast<size_t>(begin - first)), 0.0F);
  std::ranges::fill(to.subspan(static_cast<size_t>(end - first)), 0.0F);
  const auto count = static_cast<size_t>(end - begin);
  const float* from =
      m_signal.samples.View(static_cast<size_t>(begin) * stride, count * stride).data();
  float* const sample = to.data() + (begin - first);
  if (channel != kMean || stride == 1) {
    from += std::max(0, channel);
    if (m_signal.bits > 0) {
      CopyEach(from, stride, {sample, count}, [](float value) { return value; });
    } else {
      CopyEach(from, stride, {sample, count}, Finite);
    }
    return;
  }
  for (size_t i = 0; i < count; ++i, from += stride) {
    float sum = 0;
    for (size_t c = 0; c < stride; ++c) sum += Finite(from[c]);
    sample[i] = sum / static_cast<float>(stride);
  }
}

void Track::Resample(int channel, int64_t first, std::span<float> to) const {
  // Both rates have a sample at each multiple of `step`, counted in samples of the track.
  const int64_t common = std::gcd(m_rate, m_signal.rate);
  const int64_t step = m_rate / common;
  const int64_t stepOfSignal = m_signal.rate / common;
  const int64_t reach = kReach * m_rate / std::min(m_rate, m_signal.rate);
  const int64_t steps = FloorDivide(first - reach, step);
  const auto skip = static_cast<size_t>(first - steps * step);
  const size_t wanted = skip + to.size() + static_cast<size_t>(reach);
  std::vector<float> in(wanted / static_cast<size_t>(step) * static_cast<size_t>(stepOfSignal) +
                        static_cast<size_t>(stepOfSignal));
  Copy(channel, steps * stepOfSignal, in);

  std::vector<float> out(wanted);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  size_t done = 0;
  soxr_oneshot(m_signal.rate, m_rate, 1, in.data(), in.size(), nullptr, out.data(), out.size(),
               &done, nullptr, &quality, nullptr);
  std::copy_n(out.begin() + static_cast<int64_t>(skip), to.size(), to.begin());
}

}  // namespace host
