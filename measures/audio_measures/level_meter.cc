#include "audio_measures/level_meter.h"

#include <algorithm>
#include <optional>

#include "audio_measures/active_level.h"
#include "audio_measures/bandwidth.h"
#include "audio_measures/clipped.h"
#include "audio_measures/groups.h"
#include "audio_measures/level.h"
#include "audio_measures/loudness.h"
#include "audio_measures/noise_floor.h"
#include "audio_measures/true_peak.h"

namespace audio_measures {

namespace {

constexpr size_t kBlock = 4096;  // Frames.

// What one channel is measured with, as far as it is wanted.
struct ChannelMeters {
  ChannelMeters(const Collector& collector, int rate, float fullScale) {
    if (collector.Wants("clipped")) clipped.emplace(fullScale);
    if (collector.Wants("active_level") || collector.Wants("activity")) active.emplace(rate);
    if (collector.Wants("noise_floor")) noiseFloor.emplace(rate);
    if (collector.Wants("bandwidth") || collector.Wants("bandwidth_40db")) bandwidth.emplace(rate);
  }

  void Add(std::span<const float> samples) {
    level.Add(samples);
    if (clipped) clipped->Add(samples);
    if (active) active->Add(samples);
    if (noiseFloor) noiseFloor->Add(samples);
    if (bandwidth) bandwidth->Add(samples);
  }

  Level level = {};
  std::optional<Clipped> clipped = {};
  std::optional<ActiveLevel> active = {};
  std::optional<NoiseFloor> noiseFloor = {};
  std::optional<Bandwidth> bandwidth = {};
};

void Collect(const ChannelMeters& meters, int channel, Collector& collector) {
  collector.Add("peak", channel, meters.level.Peak());
  collector.Add("rms", channel, meters.level.Rms());
  if (meters.active) collector.Add("active_level", channel, meters.active->Level());
  if (meters.active) collector.Add("activity", channel, meters.active->Activity());
  collector.Add("dc", channel, meters.level.Dc());
  if (meters.noiseFloor) collector.Add("noise_floor", channel, meters.noiseFloor->Floor());
  collector.Add("crest", channel, meters.level.Crest());
  if (meters.clipped) collector.Add("clipped", channel, meters.clipped->Share());
  if (meters.bandwidth) collector.Add("bandwidth", channel, meters.bandwidth->OfEnergy());
  if (meters.bandwidth) collector.Add("bandwidth_40db", channel, meters.bandwidth->Of40Db());
}

}  // namespace

struct LevelMeter::State {
  State(int channelCount, int rate, float fullScale, std::span<const std::string_view> names)
      : wanted(names.begin(), names.end()), samples(kBlock) {
    const Collector collector(wanted);
    for (int i = 0; i < channelCount; ++i) channels.emplace_back(collector, rate, fullScale);
    if (collector.Wants("true_peak")) truePeak.emplace(channelCount, rate);
    if (collector.Wants("loudness") || collector.Wants("loudness_range")) {
      loudness.emplace(channelCount, rate);
    }
  }

  void Add(std::span<const float> frames) {
    if (truePeak) truePeak->Add(frames);
    if (loudness) loudness->Add(frames);
    if (channels.size() == 1) return channels.front().Add(frames);
    const std::span<float> own = std::span(samples).first(frames.size() / channels.size());
    for (size_t channel = 0; channel < channels.size(); ++channel) {
      size_t place = channel;
      for (float& sample : own) {
        sample = frames[place];
        place += channels.size();
      }
      channels[channel].Add(own);
    }
  }

  std::vector<std::string_view> wanted;
  std::vector<ChannelMeters> channels = {};
  std::optional<TruePeak> truePeak = {};
  std::optional<Loudness> loudness = {};
  std::vector<float> samples;
};

LevelMeter::LevelMeter(int channels, int rate, float fullScale,
                       std::span<const std::string_view> names)
    : m_state(std::make_unique<State>(channels, rate, fullScale, names)) {}
LevelMeter::~LevelMeter() = default;
LevelMeter::LevelMeter(LevelMeter&&) noexcept = default;
LevelMeter& LevelMeter::operator=(LevelMeter&&) noexcept = default;

void LevelMeter::Add(std::span<const float> frames) {
  const size_t most = kBlock * m_state->channels.size();
  while (!frames.empty()) {
    const size_t count = std::min(frames.size(), most);
    m_state->Add(frames.first(count));
    frames = frames.subspan(count);
  }
}

std::vector<NamedFigure> LevelMeter::Figures() const {
  Collector collector(m_state->wanted);
  for (size_t i = 0; i < m_state->channels.size(); ++i) {
    const int channel = static_cast<int>(i);
    if (m_state->truePeak) collector.Add("true_peak", channel, m_state->truePeak->Peak(channel));
    Collect(m_state->channels[i], channel, collector);
  }
  if (m_state->loudness) {
    collector.Add("loudness", std::nullopt, m_state->loudness->Integrated());
    collector.Add("loudness_range", std::nullopt, m_state->loudness->Range());
  }
  return {collector.Figures().begin(), collector.Figures().end()};
}

}  // namespace audio_measures
