#include "measure/spectrogram.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <span>

#include "audio_measures/windowed_spectrum.h"

namespace host {

namespace {

constexpr double kLeastBlockSeconds = 0.02;

// The powers of one block, the channels added up, each bin in the row it falls into.
class RowsOfBlock {
 public:
  explicit RowsOfBlock(size_t size) : m_spectrum(audio_measures::Hann(size), size) {}

  void AddTo(const audio_measures::Signal& signal, size_t begin, std::span<float> powers) {
    m_sum.assign(m_spectrum.Bins(), 0);
    for (const std::span<const float> channel : signal.channels) {
      const auto block = m_spectrum.PowerOf(channel.subspan(begin, m_spectrum.WindowSize()));
      for (size_t i = 0; i < m_sum.size(); ++i) m_sum[i] += block[i];
    }
    for (size_t row = 0; row < powers.size(); ++row) {
      const size_t first = row * m_sum.size() / powers.size();
      const size_t last = std::max(first + 1, (row + 1) * m_sum.size() / powers.size());
      for (size_t bin = first; bin < last; ++bin) powers[row] = std::max(powers[row], m_sum[bin]);
    }
  }

  size_t size() const { return m_spectrum.WindowSize(); }

 private:
  audio_measures::WindowedSpectrum m_spectrum;
  std::vector<float> m_sum;
};

}  // namespace

Spectrogram SpectrogramOf(const audio_measures::Signal& signal, int columns, int rows) {
  const size_t frames = signal.Frames();
  const auto least = static_cast<size_t>(kLeastBlockSeconds * signal.rate);
  RowsOfBlock block(std::bit_ceil(std::max<size_t>(least, 16)));
  const size_t step = block.size() / 2;
  const size_t blocks = frames < block.size() ? 0 : (frames - block.size()) / step + 1;
  columns = static_cast<int>(std::clamp<size_t>(blocks, 1, static_cast<size_t>(columns)));
  Spectrogram picture = {.columns = columns, .rows = rows};
  picture.levels.assign(static_cast<size_t>(columns) * static_cast<size_t>(rows), 0);
  for (size_t i = 0; i < blocks; ++i) {
    const size_t column = i * static_cast<size_t>(columns) / blocks;
    block.AddTo(signal, i * step,
                std::span(picture.levels)
                    .subspan(column * static_cast<size_t>(rows), static_cast<size_t>(rows)));
  }
  const float most = *std::ranges::max_element(picture.levels);
  for (float& level : picture.levels) {
    level = level > 0 ? std::max(kLeastLevel, 10 * std::log10(level / most)) : kLeastLevel;
  }
  return picture;
}

}  // namespace host
