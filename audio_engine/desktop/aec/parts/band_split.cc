#include "desktop/aec/parts/band_split.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr size_t kTapsPerBand = 32;
constexpr double kKaiserBeta = 8.0;  // About 80 dB beside a band.

// A low-pass filter of unit gain, the window method with a Kaiser window. cutoff: radians per
// sample.
std::vector<double> LowPass(size_t taps, double cutoff) {
  std::vector<double> filter(taps);
  const double middle = Real(taps - 1) / 2;
  for (size_t i = 0; i < taps; ++i) {
    const double at = Real(i) - middle;
    const double place = at / middle;
    const double window = std::cyl_bessel_i(0.0, kKaiserBeta * std::sqrt(1 - place * place)) /
                          std::cyl_bessel_i(0.0, kKaiserBeta);
    const double sinc = at == 0 ? cutoff : std::sin(cutoff * at) / at;
    filter[i] = window * sinc / std::numbers::pi;
  }
  return filter;
}

double Response(const std::vector<double>& filter, double frequency) {
  const double middle = Real(filter.size() - 1) / 2;
  double sum = 0;
  for (size_t i = 0; i < filter.size(); ++i) {
    sum += filter[i] * std::cos(frequency * (Real(i) - middle));
  }
  return sum;
}

// The prototype whose shifted copies add up to a flat response: 3 dB down where two bands meet.
std::vector<double> Prototype(size_t bands, size_t taps) {
  const double edge = std::numbers::pi / Real(2 * bands);
  double low = 0.5 * edge;
  double high = 1.5 * edge;
  for (size_t i = 0; i < 50; ++i) {
    const double cutoff = (low + high) / 2;
    (Response(LowPass(taps, cutoff), edge) < std::sqrt(0.5) ? low : high) = cutoff;
  }
  return LowPass(taps, low);
}

}  // namespace

BandSplit::BandSplit(size_t bands, size_t frames)
    : m_bands(bands),
      m_frames(frames),
      m_taps(kTapsPerBand * bands),
      m_analysis(bands * m_taps),
      m_synthesis(bands * m_taps),
      m_in(m_taps - 1 + frames),
      m_out(m_taps - 1 + frames) {
  const std::vector<double> prototype = Prototype(bands, m_taps);
  for (size_t band = 0; band < bands; ++band) {
    for (size_t i = 0; i < m_taps; ++i) {
      const double phase =
          std::numbers::pi / Real(bands) * (Real(band) + 0.5) * (Real(i) - Real(m_taps - 1) / 2);
      const double turn = (band % 2 == 0 ? 1 : -1) * std::numbers::pi / 4;
      const double tap = 2 * prototype[i];
      m_analysis[band * m_taps + i] = static_cast<float>(tap * std::cos(phase + turn));
      m_synthesis[band * m_taps + i] =
          static_cast<float>(Real(bands) * tap * std::cos(phase - turn));
    }
  }
}

void BandSplit::Analyse(const int16_t* block, int16_t* const* bands) {
  std::copy(m_in.end() - Offset(m_taps - 1), m_in.end(), m_in.begin());
  std::copy(block, block + m_frames, m_in.begin() + Offset(m_taps - 1));
  for (size_t band = 0; band < m_bands; ++band) {
    const float* const filter = &m_analysis[band * m_taps];
    for (size_t at = 0; at < m_frames / m_bands; ++at) {
      const float* const newest = &m_in[at * m_bands + m_taps - 1];
      float sum = 0;
      for (size_t i = 0; i < m_taps; ++i) sum += filter[i] * *(newest - i);
      bands[band][at] = static_cast<int16_t>(std::lrint(std::clamp(sum, -32768.0f, 32767.0f)));
    }
  }
}

void BandSplit::Synthesise(const int16_t* const* bands, int16_t* block) {
  std::copy(m_out.begin() + Offset(m_frames), m_out.end(), m_out.begin());
  std::fill(m_out.end() - Offset(m_frames), m_out.end(), 0.0f);
  for (size_t band = 0; band < m_bands; ++band) {
    const float* const filter = &m_synthesis[band * m_taps];
    for (size_t at = 0; at < m_frames / m_bands; ++at) {
      float* const out = &m_out[at * m_bands];
      for (size_t i = 0; i < m_taps; ++i) out[i] += filter[i] * bands[band][at];
    }
  }
  for (size_t i = 0; i < m_frames; ++i) {
    block[i] = static_cast<int16_t>(std::lrint(std::clamp(m_out[i], -32768.0f, 32767.0f)));
  }
}

}  // namespace desktop
