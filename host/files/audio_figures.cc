#include "files/audio_figures.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <utility>

#include "files/sample_reader.h"

namespace host {

namespace {

// Figures are gathered in so many lanes side by side, so that the loop vectorises.
constexpr size_t kLanes = 16;

// So many values of a lane are summed in single precision.
constexpr size_t kRun = 64;
static_assert(SampleReader::kBlockValues % (kRun * kLanes) == 0, "blocks are whole runs");

// What a vector register of any machine holds. The compiler does not find this by itself.
using Floats = float __attribute__((vector_size(16)));
using Bits = int32_t __attribute__((vector_size(16)));
constexpr size_t kVectors = kLanes * sizeof(float) / sizeof(Floats);

struct Lanes {
  std::array<int32_t, kLanes> peak = {};  // Bits of floats: positive ones order as integers do.
  std::array<float, kLanes> squares = {};
};

// Gathers the figures of `values` samples, which are a multiple of kLanes.
Lanes Gather(const float* samples, size_t values) {
  Bits peak[kVectors] = {};
  Floats squares[kVectors] = {};
  for (size_t i = 0; i < values; i += kLanes) {
    for (size_t vector = 0; vector < kVectors; ++vector) {
      Floats value;
      memcpy(&value, samples + i + vector * kLanes / kVectors, sizeof value);
      const Bits magnitude = std::bit_cast<Bits>(value) & 0x7FFFFFFF;
      peak[vector] = magnitude > peak[vector] ? magnitude : peak[vector];
      squares[vector] += value * value;
    }
  }
  Lanes lanes;
  memcpy(lanes.peak.data(), peak, sizeof peak);
  memcpy(lanes.squares.data(), squares, sizeof squares);
  return lanes;
}

// Measures sample by sample, also what is not finite or too large to square in single precision.
void MeasureEach(std::span<const float> samples, std::span<ChannelFigures> channels) {
  size_t channel = 0;
  for (const float sample : samples) {
    ChannelFigures& figures = channels[channel];
    const double value = std::fabs(static_cast<double>(sample));
    if (std::isfinite(value)) {
      figures.peak = std::max(figures.peak, value);
      figures.sumOfSquares += value * value;
    } else {
      ++figures.notFinite;
    }
    channel = channel + 1 == channels.size() ? 0 : channel + 1;
  }
}

bool AllFinite(const Lanes& lanes) {
  float sum = 0;
  for (const float squares : lanes.squares) sum += squares;
  return std::isfinite(sum);
}

// Measures a block of whole frames.
void MeasureBlock(std::span<const float> block, std::span<ChannelFigures> channels) {
  const size_t count = channels.size();
  for (ChannelFigures& figures : channels) figures.samples += block.size() / count;
  if (kLanes % count == 0) {
    while (block.size() >= kLanes) {
      const size_t values = std::min(kRun * kLanes, block.size() / kLanes * kLanes);
      const Lanes lanes = Gather(block.data(), values);
      if (AllFinite(lanes)) {
        for (size_t lane = 0; lane < kLanes; ++lane) {
          ChannelFigures& figures = channels[lane % count];
          figures.peak =
              std::max(figures.peak, static_cast<double>(std::bit_cast<float>(lanes.peak[lane])));
          figures.sumOfSquares += static_cast<double>(lanes.squares[lane]);
        }
      } else {
        MeasureEach(block.first(values), channels);
      }
      block = block.subspan(values);
    }
  }
  MeasureEach(block, channels);
}

std::optional<double> Level(double ratio) {
  if (ratio <= 0) return std::nullopt;
  return 20 * std::log10(ratio);
}

}  // namespace

std::optional<double> ChannelFigures::PeakLevel() const { return Level(peak); }

std::optional<double> ChannelFigures::RmsLevel() const {
  if (samples == notFinite) return std::nullopt;
  return Level(std::sqrt(sumOfSquares / static_cast<double>(samples - notFinite)));
}

std::string ForEachSampleBlock(FILE* file, const AudioLayout& layout,
                               const std::function<bool(std::span<const float>)>& use) {
  SampleReader reader(file, layout);
  for (std::span<const float> block = reader.Next(); !block.empty(); block = reader.Next()) {
    if (!use(block)) return kStopped;
  }
  return reader.fault();
}

Measurement MeasureAudio(FILE* file, const AudioLayout& layout, const std::function<bool()>& goOn) {
  std::vector<ChannelFigures> channels(static_cast<size_t>(layout.channels));
  const std::string fault = ForEachSampleBlock(file, layout, [&](std::span<const float> block) {
    MeasureBlock(block, channels);
    return goOn();
  });
  if (!fault.empty()) return {.fault = fault};
  return {.channels = std::move(channels)};
}

double Peak(std::span<const ChannelFigures> channels) {
  double peak = 0;
  for (const ChannelFigures& figures : channels) peak = std::max(peak, figures.peak);
  return peak;
}

}  // namespace host
