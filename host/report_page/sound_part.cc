#include "report_page/sound_part.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "base/units.h"
#include "measure/sound.h"
#include "recording/rate_converter.h"

namespace host {

namespace {

constexpr float kFullScaleOf16Bits = 1 - 1.0F / 32768;

// Takes the frames of a part out of what is read block by block.
class PartTaker {
 public:
  PartTaker(SoundPart& part, uint64_t count) : m_part(part), m_count(count) {}

  void Take(std::span<const float> block) {
    const size_t channels = m_part.channels.size();
    for (size_t i = 0; i < block.size(); i += channels, ++m_part.frames) {
      if (m_part.frames < m_part.first || m_part.frames - m_part.first >= m_count) continue;
      for (size_t k = 0; k < channels; ++k) Add(m_part.channels[k], block[i + k]);
    }
  }

 private:
  void Add(std::vector<float>& channel, float sample) {
    const bool finite = std::isfinite(sample);
    if (!finite) ++m_part.notFinite;
    channel.push_back(finite ? sample : 0);
  }

  SoundPart& m_part;
  uint64_t m_count;
};

}  // namespace

SoundPart ReadSoundPart(const MeasuredSource& source, double place) {
  OpenSound sound(source.path, source.raw);
  const RecordingFormat& format = sound.Format();
  SoundPart part = {.rate = format.rate};
  part.bits = sound.FullScale() <= kFullScaleOf16Bits ? 16 : 24;
  part.channels.resize(static_cast<size_t>(format.channels));
  const uint64_t most = kMostPartSamples / static_cast<uint64_t>(format.channels);
  // All of it, unless it is longer than that.
  if (!format.frames || *format.frames > most) {
    const double half = static_cast<double>(most) / 2;
    part.first = static_cast<uint64_t>(std::max(0.0, std::floor(place * part.rate - half)));
  }
  PartTaker taker(part, most);
  sound.ForEachBlock([&](std::span<const float> block) { taker.Take(block); });
  if (part.Size() == 0) throw UnreadableSound{"holds no samples"};
  return part;
}

SoundPart AtRate(const SoundPart& part, int rate) {
  if (rate == part.rate) return part;
  SoundPart converted = {.rate = rate, .bits = part.bits};
  const double factor = static_cast<double>(rate) / part.rate;
  converted.first = static_cast<uint64_t>(std::llround(static_cast<double>(part.first) * factor));
  converted.frames = static_cast<uint64_t>(std::llround(static_cast<double>(part.frames) * factor));
  for (const std::vector<float>& channel : part.channels) {
    RateConverter converter(part.rate, rate, 1);
    const std::vector<double> samples(channel.begin(), channel.end());
    std::vector<double> out;
    if (!converter.Process(samples, out) || !converter.Finish(out)) {
      throw UnreadableSound{"cannot be converted from " + Hertz(part.rate) + " to " + Hertz(rate)};
    }
    std::vector<float>& floats = converted.channels.emplace_back();
    for (const double sample : out) floats.push_back(static_cast<float>(sample));
  }
  return converted;
}

std::vector<std::vector<float>> CutFrames(const SoundPart& part, int64_t first, size_t count) {
  const int64_t start = first - static_cast<int64_t>(part.first);
  const auto size = static_cast<int64_t>(part.Size());
  const int64_t begin = std::clamp<int64_t>(start, 0, size);
  const int64_t end = std::clamp<int64_t>(start + static_cast<int64_t>(count), begin, size);
  std::vector<std::vector<float>> cut;
  for (const std::vector<float>& channel : part.channels) {
    std::vector<float>& samples = cut.emplace_back(count);
    std::copy(channel.begin() + begin, channel.begin() + end, samples.begin() + (begin - start));
  }
  return cut;
}

size_t LoudestChannel(const SoundPart& part) {
  size_t loudest = 0;
  double most = -1;
  for (size_t i = 0; i < part.channels.size(); ++i) {
    double energy = 0;
    for (const float sample : part.channels[i]) {
      energy += static_cast<double>(sample) * static_cast<double>(sample);
    }
    if (energy <= most) continue;
    most = energy;
    loudest = i;
  }
  return loudest;
}

}  // namespace host
