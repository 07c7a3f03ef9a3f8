#include "audio_measures/level.h"

#include <algorithm>
#include <cmath>

namespace audio_measures {

namespace {

// Sums of so many samples are exact enough in single precision, and vectorise.
constexpr size_t kLanes = 16;
constexpr size_t kRun = 64 * kLanes;

struct Sums {
  float lowest[kLanes];
  float highest[kLanes];
  float sum[kLanes] = {};
  float squares[kLanes] = {};
};

void Gather(std::span<const float> samples, Sums& sums) {
  for (size_t i = 0; i + kLanes <= samples.size(); i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) {
      const float sample = samples[i + lane];
      sums.lowest[lane] = sample < sums.lowest[lane] ? sample : sums.lowest[lane];
      sums.highest[lane] = sample > sums.highest[lane] ? sample : sums.highest[lane];
      sums.sum[lane] += sample;
      sums.squares[lane] += sample * sample;
    }
  }
}

}  // namespace

void Level::Add(std::span<const float> samples) {
  m_samples += samples.size();
  while (!samples.empty()) {
    const size_t count = std::min(kRun, samples.size());
    Sums sums;
    std::ranges::fill(sums.lowest, m_lowest);
    std::ranges::fill(sums.highest, m_highest);
    Gather(samples.first(count), sums);
    for (const float sample : samples.first(count).subspan(count / kLanes * kLanes)) {
      sums.lowest[0] = std::min(sums.lowest[0], sample);
      sums.highest[0] = std::max(sums.highest[0], sample);
      m_sum += static_cast<double>(sample);
      m_squares += static_cast<double>(sample) * static_cast<double>(sample);
    }
    for (size_t lane = 0; lane < kLanes; ++lane) {
      m_lowest = std::min(m_lowest, sums.lowest[lane]);
      m_highest = std::max(m_highest, sums.highest[lane]);
      m_sum += static_cast<double>(sums.sum[lane]);
      m_squares += static_cast<double>(sums.squares[lane]);
    }
    samples = samples.subspan(count);
  }
}

void Level::Add(const Level& next) {
  m_lowest = std::min(m_lowest, next.m_lowest);
  m_highest = std::max(m_highest, next.m_highest);
  m_samples += next.m_samples;
  m_sum += next.m_sum;
  m_squares += next.m_squares;
}

const char* Level::Fault() const {
  if (m_samples == 0) return kNoSamples;
  return std::isfinite(m_squares) ? nullptr : kNotFinite;
}

Figure Level::Peak() const {
  if (const char* fault = Fault()) return Unknown(fault);
  const auto peak = static_cast<double>(std::max(-m_lowest, m_highest));
  return peak > 0 ? Known(20 * std::log10(peak)) : Unknown(kSilence);
}

Figure Level::Rms() const {
  if (const char* fault = Fault()) return Unknown(fault);
  if (m_squares <= 0) return Unknown(kSilence);
  return Known(10 * std::log10(m_squares / static_cast<double>(m_samples)));
}

Figure Level::Crest() const {
  const Figure rms = Rms();
  return rms.value ? Known(*Peak().value - *rms.value) : rms;
}

Figure Level::Dc() const {
  if (const char* fault = Fault()) return Unknown(fault);
  return Known(m_sum / static_cast<double>(m_samples));
}

Figure Level::Swing() const {
  if (const char* fault = Fault()) return Unknown(fault);
  return Known(static_cast<double>(m_highest) - static_cast<double>(m_lowest));
}

}  // namespace audio_measures
