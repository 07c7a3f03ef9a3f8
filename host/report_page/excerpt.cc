#include "report_page/excerpt.h"

#include <algorithm>
#include <cmath>

#include "audio_measures/alignment.h"

namespace host {

namespace {

constexpr double kSearch = 1;         // s
constexpr double kDriftSearch = 0.2;  // s, from the delay of the whole.
constexpr double kAround = 4;         // s, in which a drifting delay is looked for.
constexpr double kClearlyMore = 1e-3;
constexpr double kBlock = 0.1;  // s
constexpr size_t kWindow = 4;   // Blocks in which a difference is heard.
constexpr size_t kLoudBlocks = 10;

struct Sums {
  double product = 0;
  double ofOutput = 0;
  double ofOther = 0;

  double Correlation() const {
    const double both = std::sqrt(ofOutput * ofOther);
    return both > 0 ? std::fabs(product) / both : 0;
  }
};

Sums SumsOf(std::span<const float> output, std::span<const float> other) {
  Sums sums;
  for (size_t i = 0; i < std::min(output.size(), other.size()); ++i) {
    const auto a = static_cast<double>(output[i]);
    const auto b = static_cast<double>(other[i]);
    sums.product += a * b;
    sums.ofOutput += a * a;
    sums.ofOther += b * b;
  }
  return sums;
}

// The energies of blocks, then the first block of the `window` of them that has the most.
std::optional<size_t> MostOf(const std::vector<double>& blocks, size_t window) {
  std::optional<size_t> at;
  double most = 0;
  for (size_t i = 0; i < blocks.size(); ++i) {
    double sum = 0;
    for (size_t k = i; k < std::min(i + window, blocks.size()); ++k) sum += blocks[k];
    if (sum <= most) continue;
    most = sum;
    at = i;
  }
  return at;
}

std::vector<double> BlocksOf(std::span<const float> samples, int rate) {
  const size_t size = std::max<size_t>(1, static_cast<size_t>(kBlock * rate));
  std::vector<double> blocks((samples.size() + size - 1) / size);
  for (size_t i = 0; i < samples.size(); ++i) {
    blocks[i / size] += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
  }
  return blocks;
}

double MiddleOf(const SoundPart& part, size_t block, size_t window) {
  const double middle = static_cast<double>(block) + static_cast<double>(window) / 2;
  return std::min(part.Start() + middle * kBlock, part.Whole());
}

// One channel of a part from a frame of the recording on.
std::vector<float> ChannelFrom(const SoundPart& part, size_t channel, int64_t first, size_t count) {
  SoundPart one = {.rate = part.rate, .first = part.first, .frames = part.frames};
  one.channels.push_back(part.channels[channel]);
  return CutFrames(one, first, count).front();
}

}  // namespace

ChannelPair ChannelsBeside(const SoundPart& output, const SoundPart& other) {
  const size_t loudest = LoudestChannel(output);
  const bool alike = output.channels.size() == other.channels.size();
  return {loudest, alike ? loudest : LoudestChannel(other)};
}

std::optional<double> DelayAgainst(const SoundPart& output, const SoundPart& other, double place) {
  const ChannelPair pair = ChannelsBeside(output, other);
  const auto whole = audio_measures::Align(other.channels[pair.other], output.channels[pair.output],
                                           output.rate, -kSearch, kSearch);
  if (!whole.delay.value) return std::nullopt;
  const double shift = output.Start() - other.Start();
  const double delay = *whole.delay.value + shift;

  // Where the output drifts, another delay fits better at the place.
  const FrameRange near = RangeAround(output, place, kAround);
  const FrameRange beside = RangeBeside(near, output.rate, delay, output.rate);
  const std::vector<float> here = ChannelFrom(output, pair.output, near.first, near.count);
  const std::vector<float> there = ChannelFrom(other, pair.other, beside.first, beside.count);
  const auto local = audio_measures::Align(there, here, output.rate, -kDriftSearch, kDriftSearch);
  if (!local.delay.value || std::fabs(*local.delay.value) * output.rate < 0.5) return delay;
  const double before = SumsOf(here, there).Correlation();
  return *local.correlation.value > before + kClearlyMore ? delay + *local.delay.value : delay;
}

std::optional<double> LargestDifference(const SoundPart& output, const SoundPart& other,
                                        double delay) {
  const ChannelPair pair = ChannelsBeside(output, other);
  const auto first = static_cast<int64_t>(output.first);
  const FrameRange beside = RangeBeside({first, output.Size()}, output.rate, delay, output.rate);
  const std::span<const float> here = output.channels[pair.output];
  const std::vector<float> there = ChannelFrom(other, pair.other, beside.first, beside.count);
  const Sums sums = SumsOf(here, there);
  if (!(sums.ofOther > 0)) return std::nullopt;
  const double gain = sums.product / sums.ofOther;
  std::vector<float> difference(here.size());
  for (size_t i = 0; i < here.size(); ++i) {
    difference[i] =
        static_cast<float>(static_cast<double>(here[i]) - gain * static_cast<double>(there[i]));
  }
  const auto block = MostOf(BlocksOf(difference, output.rate), kWindow);
  return block ? std::optional(MiddleOf(output, *block, kWindow)) : std::nullopt;
}

double LoudestPlace(const SoundPart& output) {
  const size_t channel = LoudestChannel(output);
  const auto block = MostOf(BlocksOf(output.channels[channel], output.rate), kLoudBlocks);
  return block ? MiddleOf(output, *block, kLoudBlocks) : output.Start();
}

FrameRange RangeAround(const SoundPart& output, double place, double seconds) {
  const auto size = static_cast<int64_t>(output.frames);
  const int64_t count = std::min<int64_t>(size, std::llround(seconds * output.rate));
  const int64_t first = std::llround(place * output.rate) - count / 2;
  return {std::clamp<int64_t>(first, 0, size - count), static_cast<size_t>(count)};
}

FrameRange RangeBeside(const FrameRange& range, int rate, double delay, int otherRate) {
  const double factor = static_cast<double>(otherRate) / rate;
  const double first = static_cast<double>(range.first) * factor - delay * otherRate;
  const double count = static_cast<double>(range.count) * factor;
  return {std::llround(first), static_cast<size_t>(std::llround(count))};
}

}  // namespace host
