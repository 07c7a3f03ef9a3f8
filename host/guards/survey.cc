#include "guards/survey.h"

#include <algorithm>
#include <cmath>

#include "guards/thresholds.h"
#include "guards/track.h"

namespace host {

void MeanOffset::Add(double meanOfBlock) {
  ++m_blocks;
  m_sum += meanOfBlock;
  m_squares += meanOfBlock * meanOfBlock;
}

std::optional<double> MeanOffset::Error() const {
  if (m_blocks < 5) return std::nullopt;
  const auto blocks = static_cast<double>(m_blocks);
  const double variance = std::max(0.0, m_squares / blocks - Mean() * Mean());
  return std::sqrt(variance / (blocks - 1));
}

namespace {

// Whether a block has so many zeros in a row, of which one in as many is looked at.
bool HasZeros(std::span<const float> block, size_t count) {
  for (size_t at = count - 1; at < block.size(); at += count) {
    if (block[at] != 0) continue;
    size_t start = at;
    while (start > 0 && block[start - 1] == 0) --start;
    while (at < block.size() && block[at] == 0) ++at;
    if (at - start >= count) return true;
  }
  return false;
}

// A block of one channel; `whole` when it is as long as the others.
void AddBlock(std::span<const float> block, bool whole, bool integers, ChannelSurvey& survey) {
  audio_measures::Level level;
  level.Add(block);
  survey.level.Add(level);
  survey.active.Add(block);
  if (integers) survey.clipped.Add(block);
  if (!whole) return;
  // A block with a sample that is not finite has no mean.
  if (const auto mean = level.Dc().value) survey.offset.Add(*mean);
}

}  // namespace

std::vector<ChannelSurvey> SurveyOf(const Signal& signal, int channels) {
  const bool each = channels == signal.channels;
  const float fullScale = 1 - std::ldexp(1.0F, 1 - std::max(signal.bits, 2));
  const ChannelSurvey fresh{.level = {},
                            .active = audio_measures::ActiveLevel(signal.rate),
                            .clipped = audio_measures::Clipped(fullScale)};
  std::vector<ChannelSurvey> surveys(each ? static_cast<size_t>(channels) : 1, fresh);
  std::vector<float> block(static_cast<size_t>(std::max(1, signal.rate / 10)));
  // Of a drop-out that goes from one block to the next, one has half.
  const size_t zeros = (ShortestDropout(signal.rate) + 1) / 2;
  const Track track(signal, signal.rate);
  const size_t frames = signal.Frames();
  for (size_t first = 0; first < frames; first += block.size()) {
    const size_t count = std::min(block.size(), frames - first);
    const auto part = std::span(block).first(count);
    for (size_t channel = 0; channel < surveys.size(); ++channel) {
      track.Read(each ? static_cast<int>(channel) : Track::kMean, static_cast<int64_t>(first),
                 part);
      AddBlock(part, count == block.size(), signal.bits > 0, surveys[channel]);
      bool& longZeros = surveys[channel].longZeros;
      longZeros = longZeros || HasZeros(part, zeros);
    }
  }
  surveys.resize(static_cast<size_t>(channels), surveys.front());
  return surveys;
}

}  // namespace host
