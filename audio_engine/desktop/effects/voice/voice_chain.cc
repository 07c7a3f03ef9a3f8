#include "desktop/effects/voice/voice_chain.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

size_t FramesOf(double ms, int rate) { return Size(std::lround(ms * rate / 1000)); }

// Without a look-ahead, because a voice is not to lag where its pitch stays. The knee of 2 dB is
// what keeps the first half-wave of a loud sound round: without it that would come out flat.
constexpr LimiterParam kNoClipping = {.fCeiling = -0.1F,
                                      .fThreshold = -2.1F,
                                      .fPreGain = 0,
                                      .fRelease = 90,
                                      .fAttack = 0,
                                      .fLookahead = 0,
                                      .fLookaheadRatio = 0,
                                      .fRMS = 0,
                                      .fStLink = 1};

}  // namespace

float VoiceChain::Line::Before(size_t frames) const {
  const size_t size = samples.size();
  return samples[(next + size - frames) % size];
}

void VoiceChain::Line::Put(float sample) {
  samples[next] = sample;
  next = next + 1 == samples.size() ? 0 : next + 1;
}

VoiceChain::VoiceChain(const VoiceRecipe& recipe, int rate, int channels)
    : m_recipe(recipe), m_rate(rate), m_channels(Size(channels)) {
  if (recipe.semitones != 0) m_shifter.emplace(recipe.semitones, rate, channels);
  // The shifter takes the formants along.
  const double formants = recipe.formants - recipe.semitones;
  if (formants != 0) m_formants.emplace(std::exp2(formants / 12), rate, channels);
  for (size_t c = 0; c < m_channels && recipe.drive > 0; ++c) {
    m_channel[c].overdrive.emplace(recipe.drive, rate);
  }
  for (Channel& channel : m_channel) {
    for (size_t i = 0; i < recipe.filters.size(); ++i) {
      channel.filters[i].Design(recipe.filters[i], rate);
    }
    channel.ring.samples.resize(FramesOf(recipe.ringMs, rate));
    channel.echo.samples.resize(FramesOf(recipe.echoMs, rate));
    channel.past.samples.resize(FramesOf(std::max(recipe.doubleMs[0], recipe.doubleMs[1]), rate));
  }
  if (recipe.roomSeconds > 0) {
    m_room.emplace();
    m_room->SetParameter({.Factor = 1,
                          .Wet = static_cast<float>(recipe.roomDb),
                          .Dry = 0,
                          .Feedback = 0.7F,
                          .Damp1 = 0.3F,
                          .Damp2 = 0,
                          .Damp3 = 0,
                          .ReverbTime = static_cast<float>(recipe.roomSeconds),
                          .Width = 1,
                          .Delay = 15});
    m_room->SetEnabled(true);
  }
  m_gain = static_cast<float>(std::pow(10, recipe.levelDb / 20));
  m_level.emplace(rate, Latency());
  m_limiter.SetParameter(kNoClipping);
  m_limiter.Process(nullptr, channels, 0, rate);  // Takes its memory here.
}

void VoiceChain::Process(float* const* rows, size_t frames) {
  m_level->Listen(rows, m_channels, frames);
  if (m_shifter) m_shifter->Process(rows, frames);
  if (m_formants) m_formants->Process(rows, frames);
  for (size_t c = 0; c < m_channels; ++c) {
    Channel& channel = m_channel[c];
    for (size_t i = 0; i < channel.filters.size(); ++i) {
      if (m_recipe.filters[i].kind != BiquadKind::kNone)
        channel.filters[i].Process(rows[c], frames);
    }
    if (channel.overdrive) channel.overdrive->Process(rows[c], frames);
    if (m_recipe.ringGain > 0) Echo(channel.ring, m_recipe.ringGain, rows[c], frames);
  }
  if (m_recipe.tremoloDepth > 0) Tremolo(rows, frames);
  for (size_t c = 0; c < m_channels; ++c) {
    Channel& channel = m_channel[c];
    if (m_recipe.echoGain > 0) Echo(channel.echo, m_recipe.echoGain, rows[c], frames);
    if (m_recipe.doubleGain > 0) Double(channel, rows[c], frames);
  }
  if (m_room) m_room->Process(rows, Count(m_channels), frames, m_rate);
  for (size_t c = 0; c < m_channels; ++c) {
    for (size_t i = 0; i < frames; ++i) rows[c][i] *= m_gain;
  }
  m_level->Process(rows, m_channels, frames);
  m_limiter.Process(rows, Count(m_channels), frames, m_rate);
}

size_t VoiceChain::Latency() const {
  size_t frames = 0;
  if (m_shifter) frames += m_shifter->Latency();
  if (m_formants) frames += m_formants->Latency();
  if (m_channel[0].overdrive) frames += m_channel[0].overdrive->Latency();
  return frames;
}

// A comb with feedback: an echo, or a resonance where the delay is short (Schroeder 1962).
void VoiceChain::Echo(Line& line, double gain, float* row, size_t frames) const {
  const auto feedback = static_cast<float>(gain);
  for (size_t i = 0; i < frames; ++i) {
    row[i] += feedback * line.Before(line.samples.size());
    line.Put(row[i]);
  }
}

void VoiceChain::Double(Channel& channel, float* row, size_t frames) const {
  const auto gain = static_cast<float>(m_recipe.doubleGain);
  const size_t first = FramesOf(m_recipe.doubleMs[0], m_rate);
  const size_t second = FramesOf(m_recipe.doubleMs[1], m_rate);
  for (size_t i = 0; i < frames; ++i) {
    const float in = row[i];
    row[i] += gain * (channel.past.Before(first) + channel.past.Before(second));
    channel.past.Put(in);
  }
}

void VoiceChain::Tremolo(float* const* rows, size_t frames) {
  const double step = m_recipe.tremoloHz / m_rate;
  for (size_t i = 0; i < frames; ++i) {
    double swing = std::sin(2 * M_PI * m_tremoloPhase);
    // It is a switch, but one that takes a few ms, so that it does not click.
    if (m_recipe.tremoloChops) swing = std::tanh(6 * swing);
    const auto gain = static_cast<float>(1 - m_recipe.tremoloDepth * (0.5 + 0.5 * swing));
    for (size_t c = 0; c < m_channels; ++c) rows[c][i] *= gain;
    m_tremoloPhase += step;
    if (m_tremoloPhase >= 1) m_tremoloPhase -= 1;
  }
}

}  // namespace desktop
