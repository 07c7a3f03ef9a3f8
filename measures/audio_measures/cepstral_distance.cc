#include "audio_measures/cepstral_distance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>
#include <optional>
#include <vector>

namespace audio_measures {

namespace {

constexpr double kBlock = 0.03;  // s
constexpr double kHop = 0.0075;  // s
constexpr double kKept = 0.95;
constexpr double kNoise = 1e-9;  // 90 dB.
constexpr double kMost = 10;     // dB
constexpr size_t kMostOrder = 16;

// By lag, or by the place of a coefficient from 1 on.
using Lags = std::array<double, kMostOrder + 1>;

// The cepstra of the linear predictors of blocks.
class PredictorCepstrum {
 public:
  explicit PredictorCepstrum(int rate)
      : m_order(rate < 10000 ? 10 : kMostOrder),
        m_window(static_cast<size_t>(std::lround(rate * kBlock))),
        m_block(m_window.size() + kMostOrder) {
    const double turn = 2 * M_PI / static_cast<double>(m_window.size());
    for (size_t i = 0; i < m_window.size(); ++i) {
      m_window[i] = 0.5 - 0.5 * std::cos(turn * static_cast<double>(i));
    }
  }

  size_t Order() const { return m_order; }
  size_t BlockSize() const { return m_window.size(); }

  // Nothing for digital silence.
  std::optional<Lags> Of(std::span<const float> block) {
    std::ranges::transform(m_window, block, m_block.begin(), std::multiplies());
    Lags correlation = {};
    for (size_t i = 0; i < m_window.size(); ++i) {
      const double now = m_block[i];
      for (size_t lag = 0; lag <= kMostOrder; ++lag) correlation[lag] += now * m_block[i + lag];
    }
    if (!(correlation[0] > 0)) return std::nullopt;
    correlation[0] *= 1 + kNoise;
    return Cepstrum(Predictor(correlation));
  }

 private:
  // By the recursion of Levinson and Durbin: x[n] is predicted as the sum of a[k] x[n - k].
  Lags Predictor(const Lags& correlation) const {
    Lags predictor = {};
    double error = correlation[0];
    for (size_t i = 1; i <= m_order; ++i) {
      double rest = correlation[i];
      for (size_t k = 1; k < i; ++k) rest -= predictor[k] * correlation[i - k];
      const double reflection = rest / error;
      const Lags before = predictor;
      for (size_t k = 1; k < i; ++k) predictor[k] -= reflection * before[i - k];
      predictor[i] = reflection;
      error *= 1 - reflection * reflection;
    }
    return predictor;
  }

  Lags Cepstrum(const Lags& predictor) const {
    Lags cepstrum = {};
    for (size_t n = 1; n <= m_order; ++n) {
      cepstrum[n] = predictor[n];
      for (size_t k = 1; k < n; ++k) {
        cepstrum[n] +=
            static_cast<double>(k) / static_cast<double>(n) * cepstrum[k] * predictor[n - k];
      }
    }
    return cepstrum;
  }

  size_t m_order;
  std::vector<double> m_window;
  std::vector<double> m_block;
};

}  // namespace

Figure CepstralDistance(std::span<const float> reference, std::span<const float> signal, int rate) {
  PredictorCepstrum cepstrum(rate);
  const size_t block = cepstrum.BlockSize();
  const auto hop = static_cast<size_t>(std::lround(rate * kHop));
  if (reference.size() < block) return Unknown(kTooShort);
  std::vector<double> distances;
  for (size_t start = 0; start + block <= reference.size(); start += hop) {
    const auto wanted = cepstrum.Of(reference.subspan(start, block));
    const auto got = cepstrum.Of(signal.subspan(start, block));
    if (!wanted || !got) continue;
    double squares = 0;
    for (size_t i = 1; i <= cepstrum.Order(); ++i) {
      squares += ((*wanted)[i] - (*got)[i]) * ((*wanted)[i] - (*got)[i]);
    }
    distances.push_back(std::min(kMost, 10 / std::log(10) * std::sqrt(2 * squares)));
  }
  if (distances.empty()) return Unknown(kSilence);
  const auto kept =
      static_cast<std::ptrdiff_t>(std::round(kKept * static_cast<double>(distances.size())));
  std::ranges::sort(distances);
  return Known(std::accumulate(distances.begin(), distances.begin() + kept, 0.0) /
               static_cast<double>(kept));
}

}  // namespace audio_measures
