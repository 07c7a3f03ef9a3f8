#include "audio_measures/musical_noise.h"

#include <bit>
#include <cmath>

namespace audio_measures {

namespace {

constexpr double kBlock = 0.02;  // s
constexpr size_t kLeastBlocks = 16;
// A window of Hann spreads what is constant over the first two bins, and its image over the last
// two; they have one degree of freedom instead of two.
constexpr size_t kEdge = 2;

size_t BlockSamples(int rate) {
  return std::bit_ceil(static_cast<size_t>(std::ceil(rate * kBlock)));
}

}  // namespace

MusicalNoise::MusicalNoise(int rate) : m_spectrum(Hann(BlockSamples(rate)), BlockSamples(rate)) {
  for (Moments* const moments : {&m_before, &m_after}) {
    moments->first.resize(m_spectrum.Bins());
    moments->second.resize(m_spectrum.Bins());
    moments->fourth.resize(m_spectrum.Bins());
  }
}

void MusicalNoise::Add(std::span<const float> before, std::span<const float> after) {
  const size_t size = m_spectrum.WindowSize();
  for (size_t start = 0; start + size <= before.size(); start += size / 2) {
    Add(before.subspan(start, size), m_before);
    Add(after.subspan(start, size), m_after);
    ++m_blocks;
  }
}

void MusicalNoise::Add(std::span<const float> block, Moments& moments) {
  const std::span<const float> power = m_spectrum.PowerOf(block);
  for (size_t i = 0; i < power.size(); ++i) {
    const auto first = static_cast<double>(power[i]);
    const double second = first * first;
    moments.first[i] += first;
    moments.second[i] += second;
    moments.fourth[i] += second * second;
  }
}

// But for the number of powers, which is the same before and after.
double MusicalNoise::Kurtosis(const Moments& moments) {
  double second = 0;
  double fourth = 0;
  for (size_t i = kEdge; i + kEdge < moments.first.size(); ++i) {
    const double square = moments.first[i] * moments.first[i];
    second += moments.second[i] / square;
    fourth += moments.fourth[i] / (square * square);
  }
  return fourth / (second * second);
}

Figure MusicalNoise::LogRatio() const {
  if (m_blocks < kLeastBlocks) return Unknown("too little pause");
  const double before = Kurtosis(m_before);
  const double after = Kurtosis(m_after);
  // A bin without power has 0 by 0.
  if (!(before > 0) || !(after > 0)) return Unknown(kSilence);
  return Known(std::log(after / before));
}

}  // namespace audio_measures
