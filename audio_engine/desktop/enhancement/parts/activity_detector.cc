#include "desktop/enhancement/parts/activity_detector.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace desktop {
namespace {

constexpr double kEdges[] = {100,  200,  300,  400,  510,  630,  770,  920, 1080,
                             1270, 1480, 1720, 2000, 2320, 2700, 3150, 3800};  // Hz

// The power that is added to every band, so that sounds below about -75 dBFS do not count.
constexpr float kGate = 37.5f;

constexpr NoiseTracker::Speed kSpeed = {4.0f, 0.9f, 0.7f};
constexpr float kMemory = 0.9f;
constexpr float kMaxPosteriorRatio = 1000.0f;

float Decibels(float power) { return 10.0f * std::log10(power); }

float Sum(std::span<const float> values) {
  return std::accumulate(values.begin(), values.end(), 0.0f);
}

std::vector<size_t> BandEdges(const ShortTimeSpectrum& spectrum, int rate) {
  std::vector<size_t> edges;
  for (const double edge : kEdges) {
    const size_t bin = spectrum.BinOf(edge / rate);
    if (edges.empty() || bin > edges.back()) edges.push_back(bin);
  }
  return edges;
}

}  // namespace

ActivityDetector::ActivityDetector(int rate, size_t hop)
    : m_spectrum(hop),
      m_edges(BandEdges(m_spectrum, rate)),
      m_noise(m_edges.size() - 1, kSpeed),
      m_power(m_edges.size() - 1),
      m_speech(m_power.size()) {}

bool ActivityDetector::Process(std::span<const float> samples, bool steady) {
  const bool silent =
      std::all_of(samples.begin(), samples.end(), [](float sample) { return sample == 0.0f; });
  MeasureBands(samples);
  m_noise.Update(m_power, steady);
  if (silent) {
    std::fill(m_speech.begin(), m_speech.end(), 0.0f);
    m_hangOver = 0;
    return false;
  }
  if (LikelihoodRatio() > m_threshold) {
    FollowSpeechRatio();
    m_hangOver = HangOver();
    return true;
  }
  const bool hangingOver = m_hangOver > 0;
  m_hangOver = std::max(m_hangOver - 1, 0);
  return hangingOver;
}

void ActivityDetector::MeasureBands(std::span<const float> samples) {
  const std::span<const kiss_fft_cpx> bins = m_spectrum.Analyse(samples);
  for (size_t band = 0; band < m_power.size(); ++band) {
    float sum = 0.0f;
    for (size_t i = m_edges[band]; i < m_edges[band + 1]; ++i) sum += Power(bins[i]);
    m_power[band] = sum / static_cast<float>(m_edges[band + 1] - m_edges[band]) + kGate;
  }
}

// The decision-directed a-priori ratio is that of Ephraim and Malah, 1984.
float ActivityDetector::LikelihoodRatio() {
  float sum = 0.0f;
  for (size_t band = 0; band < m_power.size(); ++band) {
    const float noise = std::max(m_noise.Noise()[band], kGate);
    const float posterior = std::min(m_power[band] / noise, kMaxPosteriorRatio);
    const float prior =
        kMemory * m_speech[band] / noise + (1.0f - kMemory) * std::max(posterior - 1.0f, 0.0f);
    const float gain = prior / (1.0f + prior);
    m_speech[band] = gain * gain * posterior * noise;
    sum += posterior * gain - std::log1p(prior);
  }
  return sum / static_cast<float>(m_power.size());
}

// Follows the ratio of speech to noise up within a syllable and down within seconds.
void ActivityDetector::FollowSpeechRatio() {
  const float gates = kGate * static_cast<float>(m_power.size());
  const float ratio = Decibels(Sum(m_power)) - Decibels(std::max(Sum(m_noise.Noise()), gates));
  m_speechRatio += (ratio > m_speechRatio ? 0.1f : 0.01f) * (ratio - m_speechRatio);
}

// Returns for how many blocks a decision for speech holds on: 8 at a ratio of 12 dB and below, 1 at
// 28 dB and above. In quiet recordings the decision itself is good to a block; in noise the ends of
// words are lost in it.
int ActivityDetector::HangOver() const {
  const float quiet = std::clamp((m_speechRatio - 12.0f) / 16.0f, 0.0f, 1.0f);
  return static_cast<int>(std::lround(8.0f - 7.0f * quiet));
}

}  // namespace desktop
