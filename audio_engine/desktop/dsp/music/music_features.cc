#include "desktop/dsp/music/music_features.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <utility>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr double kTop = 3600;   // Hz
constexpr double kBottom = 60;  // Hz

// The length of what is transformed: it gives a bin for each 15.6 Hz.
constexpr double kLookSeconds = 0.064;

// The power of -110 dBFS.
constexpr double kFloor = 1e-11;
constexpr double kSilence = -75;  // dBFS

// A peak stands out of so many bins on either side, by so many dB.
constexpr size_t kNeighbours = 8;
constexpr double kProminence = 6;
constexpr int kSustainedLooks = 10;

struct Spread {
  double sum = 0, squares = 0, count = 0;
  void Add(double value) {
    sum += value;
    squares += value * value;
    count += 1;
  }
  double Deviation() const {
    const double mean = sum / count;
    return std::sqrt(std::max(0.0, squares / count - mean * mean));
  }
};

}  // namespace

void MusicFeatures::Reset(int sampleRate) {
  m_sampleRate = sampleRate;
  m_hop = Size(sampleRate / 100);
  const int size = kiss_fftr_next_fast_size_real(static_cast<int>(kLookSeconds * sampleRate));
  m_fftSize = Size(size);
  m_bins = static_cast<size_t>(kTop * size / sampleRate);
  m_fft.reset(kiss_fftr_alloc(size, 0, nullptr, nullptr));
  if (!m_fft) throw std::bad_alloc();
  m_window.resize(m_fftSize);
  for (size_t i = 0; i < m_fftSize; ++i) {
    m_window[i] = static_cast<float>(0.5 - 0.5 * std::cos(2 * std::numbers::pi * Real(i) / size));
  }
  for (Channel& channel : m_channel) channel.samples.resize(m_fftSize);
  m_windowed.resize(m_fftSize);
  m_spectrum.resize(m_fftSize / 2 + 1);
  m_power.resize(m_bins);
  m_standing.resize(m_bins);
  m_stood.resize(m_bins);
  m_lowPassStep = 1 - std::exp(-2 * std::numbers::pi * kTop / sampleRate);
  Restart();
}

void MusicFeatures::Restart() {
  for (Channel& channel : m_channel) {
    std::fill(channel.samples.begin(), channel.samples.end(), 0.0f);
    channel.lowPassed = 0;
  }
  std::fill(m_standing.begin(), m_standing.end(), 0);
  m_bands.fill(-90);
  m_energy = 0;
  m_at = 0;
  m_inBlock = 0;
  m_block = m_looks = m_silentLooks = 0;
}

// A channel that begins to be heard has the past of the first one.
void MusicFeatures::SetChannels(size_t channels) {
  for (size_t c = m_channels; c < channels; ++c) m_channel[c] = m_channel[0];
  m_channels = channels;
}

bool MusicFeatures::Push(const float* frame, int channels) {
  if (Size(channels) != m_channels) SetChannels(Size(channels));
  for (size_t c = 0; c < m_channels; ++c) {
    Channel& channel = m_channel[c];
    channel.samples[m_at] = frame[c];
    channel.lowPassed += m_lowPassStep * (frame[c] - channel.lowPassed);
    m_energy += channel.lowPassed * channel.lowPassed / Real(m_channels);
  }
  m_at = m_at + 1 == m_fftSize ? 0 : m_at + 1;
  if (++m_inBlock < m_hop) return false;
  m_levels[m_block] = 10 * std::log10(m_energy / Real(m_hop) + kFloor);
  m_inBlock = 0;
  m_energy = 0;
  m_block = 1 - m_block;
  if (m_block != 0) return false;
  TakeLook();
  return true;
}

void MusicFeatures::TakeLook() {
  std::fill(m_power.begin(), m_power.end(), 0.0);
  const double scale = 16.0 / (3.0 * Real(m_fftSize) * Real(m_fftSize) * Real(m_channels));
  for (size_t c = 0; c < m_channels; ++c) {
    const std::vector<float>& samples = m_channel[c].samples;
    for (size_t i = 0; i < m_fftSize; ++i) {
      const size_t at = m_at + i < m_fftSize ? m_at + i : m_at + i - m_fftSize;
      m_windowed[i] = samples[at] * m_window[i];
    }
    kiss_fftr(m_fft.get(), m_windowed.data(), m_spectrum.data());
    for (size_t k = 0; k < m_power.size(); ++k) {
      const double re = m_spectrum[k].r, im = m_spectrum[k].i;
      m_power[k] += (re * re + im * im) * scale;
    }
  }
  for (double& power : m_power) power = 10 * std::log10(power + kFloor * 1e-2);
  Look look;
  std::copy_n(m_levels, 2, look.level);
  FollowPeaks(look);
  CompareBands(look);
  m_history[Size(m_looks % kHistory)] = look;
  ++m_looks;
  m_silentLooks = std::max(m_levels[0], m_levels[1]) < kSilence ? m_silentLooks + 1 : 0;
}

// A peak stands still while it is the largest of its surroundings at the same bin or the next one.
void MusicFeatures::FollowPeaks(Look& look) {
  std::swap(m_standing, m_stood);
  const size_t first = static_cast<size_t>(kBottom * Real(m_fftSize) / m_sampleRate) + 1;
  std::fill(m_standing.begin(), m_standing.end(), 0);
  double loudest = -200;
  for (size_t k = first; k < m_bins; ++k) loudest = std::max(loudest, m_power[k]);
  std::array<int, 5> steadiest{};
  for (size_t bin = first; bin + 1 < m_bins; ++bin) {
    if (m_power[bin] < loudest - 50 || m_power[bin] < m_power[bin - 1] ||
        m_power[bin] <= m_power[bin + 1]) {
      continue;
    }
    double around = 0;
    const size_t from = bin - std::min(bin, kNeighbours);
    const size_t to = std::min(m_bins - 1, bin + kNeighbours);
    for (size_t i = from; i <= to; ++i) around += m_power[i];
    if (m_power[bin] < around / Real(to - from + 1) + kProminence) continue;
    m_standing[bin] = 1 + std::max({m_stood[bin - 1], m_stood[bin], m_stood[bin + 1]});
    look.peaks += 1;
    if (m_standing[bin] >= kSustainedLooks) look.sustained += 1;
    auto least = std::min_element(steadiest.begin(), steadiest.end());
    *least = std::max(*least, std::min(m_standing[bin], 50));
  }
  for (const int looks : steadiest) look.steadiest += looks / 5.0;
}

// Eighteen bands of equal width on a scale like the ear's.
void MusicFeatures::CompareBands(Look& look) {
  std::array<double, kBands> bands{};
  double low = 0, high = 0;
  size_t k = 1;
  const double perHertz = Real(m_fftSize) / m_sampleRate;
  const double octaves = std::log1p(kTop / 500) / kBands;
  for (size_t b = 0; b < kBands; ++b) {
    const double edge = 500 * std::expm1(octaves * Real(b + 1)) * perHertz;
    double sum = 0;
    for (; k < m_power.size() && Real(k) <= edge; ++k) {
      sum += std::pow(10.0, m_power[k] / 10);
    }
    (b < kBands * 2 / 3 ? low : high) += sum;
    bands[b] = 10 * std::log10(sum + kFloor);
  }
  look.colour = 10 * std::log10((high + kFloor) / (low + kFloor));
  double mean = 0, onset = 0;
  for (size_t b = 0; b < kBands; ++b) mean += (bands[b] - m_bands[b]) / kBands;
  for (size_t b = 0; b < kBands; ++b) {
    look.flux += std::abs(bands[b] - m_bands[b] - mean) / kBands;
    onset += std::clamp(bands[b] - m_bands[b], 0.0, 20.0) / kBands;
  }
  m_onsets[Size(m_looks % kOnsets)] = onset;
  m_bands = bands;
}

double MusicFeatures::BeatStrength() const {
  const int count = std::min(m_looks, kOnsets);
  const auto onset = [&](int back) { return m_onsets[Size((m_looks - 1 - back) % kOnsets)]; };
  double mean = 0, energy = 0;
  for (int i = 0; i < count; ++i) mean += onset(i) / count;
  for (int i = 0; i < count; ++i) energy += (onset(i) - mean) * (onset(i) - mean);
  const auto likeness = [&](int lag) {
    double sum = 0;
    for (int i = 0; i + lag < count; ++i) sum += (onset(i) - mean) * (onset(i + lag) - mean);
    return sum / (count - lag) * count / (energy + 1e-9);
  };
  double best = 0;
  for (int lag = 6; lag <= 50 && lag * 6 <= count; ++lag) {
    best = std::max(best, (likeness(lag) + likeness(2 * lag) + likeness(3 * lag)) / 3);
  }
  return best;
}

MusicFeatures::Values MusicFeatures::Measure() const {
  const int count = std::min(m_looks, kHistory);
  double loudest = -200;
  for (int i = 0; i < count; ++i) {
    loudest = std::max({loudest, Recent(i).level[0], Recent(i).level[1]});
  }
  Spread level, colour;
  double peaks = 0, sustained = 0, tonal = 0, flux = 0;
  for (int i = 0; i < count; ++i) {
    const Look& look = Recent(i);
    for (const double decibels : look.level) level.Add(std::max(decibels, loudest - 40));
    if (std::max(look.level[0], look.level[1]) < loudest - 30) continue;
    colour.Add(look.colour);
    peaks += look.peaks;
    sustained += look.sustained;
    tonal += look.steadiest;
    flux += look.flux;
  }
  Values values{};
  values[kLevelDeviation] = level.Deviation();
  values[kSustained] = sustained / std::max(peaks, 1.0);
  // At least the loudest look is counted.
  values[kTonal] = tonal / colour.count;
  values[kFlux] = flux / colour.count;
  values[kColourDeviation] = colour.Deviation();
  values[kBeat] = BeatStrength();
  return values;
}

}  // namespace desktop
