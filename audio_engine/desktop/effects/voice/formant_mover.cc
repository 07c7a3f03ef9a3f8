#include "desktop/effects/voice/formant_mover.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

constexpr double kHopMs = 8;
constexpr size_t kHopsPerBlock = 4;

// The amplitude (full scale 1) under which a spectrum counts as empty.
constexpr double kFloor = 1e-5;

// The pitches that are looked for, in Hz, and how like itself a sound must be after one period.
constexpr double kLowestPitch = 80;
constexpr double kHighestPitch = 1000;
constexpr float kVoiced = 0.4F;

// How wide the envelope is smoothed: by so much of the pitch, and without one.
constexpr double kWidthPerPitch = 1.2;
constexpr double kLeastWidth = 200;     // Hz.
constexpr double kUnvoicedWidth = 300;  // Hz.

// How far one part of the spectrum may be changed, as a natural logarithm: 18 dB up, 30 dB down.
constexpr float kMostGain = 2.07F;
constexpr float kLeastGain = -3.45F;

// Beyond half the rate an envelope is taken to fall by 6 dB an octave.
constexpr float kSlope = 0.693F;

// The share of the way to the wanted gain that each hop goes.
constexpr float kFollow = 0.5F;

// Products of small primes transform fast.
size_t HopOf(int rate) {
  size_t hop = Size(std::lround(rate * kHopMs / 1000));
  const auto isSmooth = [](size_t n) {
    for (const size_t prime : {2U, 3U, 5U}) {
      while (n % prime == 0) n /= prime;
    }
    return n == 1;
  };
  while (!isSmooth(hop)) ++hop;
  return hop;
}

}  // namespace

FormantMover::FormantMover(double ratio, int rate, int channels)
    : m_ratio(ratio),
      m_rate(rate),
      m_channels(desktop::Size(channels)),
      m_hop(HopOf(rate)),
      m_fft(m_hop * kHopsPerBlock),
      m_window(m_fft.Size()),
      m_block(m_fft.Size()),
      m_bins(m_fft.Bins()),
      m_power(m_fft.Bins()),
      m_envelope(m_fft.Bins()),
      m_sums(m_fft.Bins() + 1),
      m_gain(m_fft.Bins()) {
  for (size_t i = 0; i < m_window.size(); ++i) {
    const double phase = 2 * M_PI * Real(i) / Real(m_window.size());
    m_window[i] = static_cast<float>(std::sqrt(0.5 - 0.5 * std::cos(phase)));
  }
  for (size_t c = 0; c < m_channels; ++c) {
    m_channel[c].past.resize(m_fft.Size());
    m_channel[c].sum.resize(m_fft.Size());
    m_channel[c].spectrum.resize(m_fft.Bins());
  }
  m_fft.Forward(m_window.data(), m_bins.data());
  for (std::complex<float>& bin : m_bins) bin = std::norm(bin);
  m_windowLikeness.resize(m_fft.Size());
  m_fft.Inverse(m_bins.data(), m_windowLikeness.data());
  const float whole = m_windowLikeness[0];
  for (float& likeness : m_windowLikeness) likeness /= whole;
  // The most that FollowPeaks asks for, so that it needs no memory later.
  m_highest.Reset(Count(m_fft.Bins()));
}

void FormantMover::Process(float* const* rows, size_t frames) {
  for (size_t i = 0; i < frames; ++i) {
    for (size_t c = 0; c < m_channels; ++c) {
      Channel& channel = m_channel[c];
      channel.past[channel.past.size() - m_hop + m_filled] = rows[c][i];
      rows[c][i] = channel.sum[m_filled];
    }
    if (++m_filled < m_hop) continue;
    m_filled = 0;
    Move();
  }
}

void FormantMover::Move() {
  std::fill(m_power.begin(), m_power.end(), 0.0F);
  for (size_t c = 0; c < m_channels; ++c) {
    Channel& channel = m_channel[c];
    for (size_t i = 0; i < m_block.size(); ++i) m_block[i] = channel.past[i] * m_window[i];
    m_fft.Forward(m_block.data(), channel.spectrum.data());
    for (size_t k = 0; k < m_power.size(); ++k) m_power[k] += std::norm(channel.spectrum[k]);
    std::move(channel.past.begin() + Offset(m_hop), channel.past.end(), channel.past.begin());
  }
  FollowPeaks(Spacing());
  UpdateGains();
  // Four windows overlap, whose squares add up to 2.
  constexpr float kScale = 0.5F;
  for (size_t c = 0; c < m_channels; ++c) {
    Channel& channel = m_channel[c];
    for (size_t k = 0; k < m_bins.size(); ++k) {
      m_bins[k] = channel.spectrum[k] * (kScale * std::exp(m_gain[k]));
    }
    m_fft.Inverse(m_bins.data(), m_block.data());
    std::move(channel.sum.begin() + Offset(m_hop), channel.sum.end(), channel.sum.begin());
    std::fill(channel.sum.end() - Offset(m_hop), channel.sum.end(), 0.0F);
    for (size_t i = 0; i < m_block.size(); ++i) channel.sum[i] += m_block[i] * m_window[i];
  }
}

// Returns how many bins wide the envelope must be smoothed for the harmonics not to show in it.
size_t FormantMover::Spacing() {
  for (size_t k = 0; k < m_bins.size(); ++k) m_bins[k] = m_power[k];
  m_fft.Inverse(m_bins.data(), m_block.data());
  const auto first = static_cast<size_t>(m_rate / kHighestPitch);
  const auto last = static_cast<size_t>(m_rate / kLowestPitch);
  const float whole = std::max(m_block[0], 1e-20F);
  const auto likeness = [&](size_t lag) { return m_block[lag] / whole / m_windowLikeness[lag]; };
  const auto isPeak = [&](size_t lag) {
    return likeness(lag) >= likeness(lag - 1) && likeness(lag) > likeness(lag + 1);
  };
  float best = 0;
  for (size_t lag = first; lag <= last; ++lag) {
    if (isPeak(lag)) best = std::max(best, likeness(lag));
  }
  double width = kUnvoicedWidth;
  if (best > kVoiced) {
    // The shortest that is about as good: twice a period fits as well.
    size_t lag = first;
    while (!isPeak(lag) || likeness(lag) < 0.85F * best) ++lag;
    width = std::max(kWidthPerPitch * m_rate / Real(lag), kLeastWidth);
  }
  return Size(std::lround(width * Real(m_fft.Size()) / m_rate));
}

// Draws the envelope: the highest within `width` bins, then a mean over half as many, twice.
void FormantMover::FollowPeaks(size_t width) {
  const size_t bins = m_power.size();
  const size_t half = std::max<size_t>(width / 2, 1);
  const double amplitude = kFloor * Real(m_fft.Size()) / 4;
  const auto floor = static_cast<float>(amplitude * amplitude);
  m_highest.Reset(Count(2 * half + 1));
  for (size_t k = 0; k < bins + half; ++k) {
    const float power = k < bins ? m_power[k] : 0;
    const float highest = m_highest.Push(0.5F * std::log1p(power / floor));
    if (k >= half) m_envelope[k - half] = highest;
  }
  const size_t reach = std::max<size_t>(half / 2, 1);
  for (int turn = 0; turn < 2; ++turn) {
    for (size_t k = 0; k < bins; ++k) m_sums[k + 1] = m_sums[k] + m_envelope[k];
    for (size_t k = 0; k < bins; ++k) {
      const size_t from = k - std::min(k, reach);
      const size_t to = std::min(k + reach + 1, bins);
      m_envelope[k] = (m_sums[to] - m_sums[from]) / static_cast<float>(to - from);
    }
  }
}

void FormantMover::UpdateGains() {
  const size_t last = m_envelope.size() - 1;
  for (size_t k = 0; k <= last; ++k) {
    const double from = Real(k) / m_ratio;
    const size_t whole = std::min(static_cast<size_t>(from), last);
    float wanted = m_envelope[whole];
    if (whole < last) {
      const auto share = static_cast<float>(from - Real(whole));
      wanted += share * (m_envelope[whole + 1] - m_envelope[whole]);
    } else {
      wanted -= kSlope * static_cast<float>(std::log2(from / Real(last)));
    }
    const float gain = std::clamp(wanted - m_envelope[k], kLeastGain, kMostGain);
    m_gain[k] += kFollow * (gain - m_gain[k]);
  }
}

}  // namespace desktop
