#include "desktop/dsp/reverb/reverb.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"

namespace desktop {

namespace {

// Mixes sixteen values in place by an orthogonal matrix.
void Hadamard(float* values) {
  for (int half = 1; half < kReverbLines; half *= 2) {
    for (int start = 0; start < kReverbLines; start += 2 * half) {
      for (int i = start; i < start + half; ++i) {
        const float sum = values[i] + values[i + half];
        values[i + half] = values[i] - values[i + half];
        values[i] = sum;
      }
    }
  }
  for (int i = 0; i < kReverbLines; ++i) values[i] *= 0.25f;
}

// The signs of the lines in each output, which are unrelated to each other and to the rows of the
// mix.
constexpr float kSigns[2][kReverbLines] = {
    {1, 1, -1, 1, 1, -1, -1, 1, -1, 1, 1, 1, -1, -1, 1, -1},
    {1, -1, -1, -1, 1, 1, -1, -1, -1, -1, 1, -1, -1, 1, 1, 1}};

}  // namespace

void Reverb::Line::Reset(int delay) {
  samples.assign(Size(delay), 0.0f);
  at = 0;
}

void Reverb::Fader::Set(float value, float frames) {
  target = value;
  step = frames > 0 ? (target - now) / frames : 0;
  if (step == 0) now = target;
}

float Reverb::Fader::Next() {
  if (step != 0) {
    now += step;
    if (step > 0 ? now >= target : now <= target) {
      now = target;
      step = 0;
    }
  }
  return now;
}

void Reverb::SetParameter(const NreverbFv3Parameter& parameter) {
  const NreverbFv3Parameter next = InRange(parameter);
  const NreverbFv3Parameter& last = m_parameter;
  m_redesign = m_redesign || next.Factor != last.Factor || next.Feedback != last.Feedback ||
               next.Damp1 != last.Damp1 || next.Damp2 != last.Damp2 || next.Damp3 != last.Damp3 ||
               next.ReverbTime != last.ReverbTime || next.Delay != last.Delay;
  m_remix = true;
  m_parameter = next;
}

// Equal inputs and unrelated ones give the same level at every width.
void Reverb::Retarget(bool smooth) {
  const float frames = smooth ? static_cast<float>(m_sampleRate) / 50 : 0;
  const double wet = m_enabled ? FromDecibels(m_parameter.Wet) : 0;
  const double dry = m_enabled ? FromDecibels(m_parameter.Dry) : 1;
  const float width = m_channels == 2 ? m_parameter.Width : 1;
  const float tail =
      static_cast<float>(wet / std::sqrt(m_design.tailEnergy)) * std::sqrt(2 / (1 + width * width));
  m_dry.Set(static_cast<float>(dry), frames);
  m_same.Set(tail * (1 + width) / 2, frames);
  m_cross.Set(tail * (1 - width) / 2, frames);
}

void Reverb::Prepare(int channels, int sampleRate) {
  // Should there be no memory, the next call tries again.
  m_sampleRate = 0;
  m_design = DesignReverb(m_parameter, sampleRate);
  for (size_t c = 0; c < 2; ++c) {
    m_preDelay[c].Reset(m_design.preDelay + 1);
    for (size_t k = 0; k < kReverbDiffusers; ++k) m_diffuser[c][k].Reset(m_design.diffusers[c][k]);
  }
  for (size_t i = 0; i < kReverbLines; ++i) m_line[i].Reset(m_design.lines[i].delay);
  m_high = {};
  m_low = {};
  m_output = {};
  m_sampleRate = sampleRate;
  m_channels = channels;
  m_redesign = false;
}

float Reverb::Diffuse(int channel, float sample) {
  for (Line& line : m_diffuser[Size(channel)]) {
    const float delayed = line.Oldest();
    const float in = sample - m_design.diffusion * delayed;
    line.Oldest() = in;
    line.Advance();
    sample = delayed + m_design.diffusion * in;
  }
  return sample;
}

// Passes one frame through the network: two diffused inputs, two outputs.
void Reverb::Room(const float* in, float* out) {
  float values[kReverbLines];
  for (size_t i = 0; i < kReverbLines; ++i) values[i] = m_line[i].Oldest();
  for (size_t i = 0; i < kReverbLines; ++i) {
    const ReverbLine& line = m_design.lines[i];
    m_high[i] += m_design.highStep * (values[i] - m_high[i]);
    float value = values[i] - line.highLoss * (values[i] - m_high[i]);
    m_low[i] += m_design.lowStep * (value - m_low[i]);
    value -= line.lowLoss * m_low[i];
    values[i] = line.gain * value;
  }
  for (size_t c = 0; c < 2; ++c) {
    out[c] = in[c];
    for (size_t i = 0; i < kReverbLines; ++i) out[c] += kSigns[c][i] * values[i];
    m_output[c] += m_design.highStep * (out[c] - m_output[c]);
    out[c] -= m_design.outputHighLoss * (out[c] - m_output[c]);
  }
  Hadamard(values);
  for (size_t i = 0; i < kReverbLines; ++i) {
    // What each of its eight lines gets of one input.
    constexpr float kShare = 0.35355339f;
    m_line[i].Oldest() = values[i] + kShare * in[i % 2];
    m_line[i].Advance();
  }
}

void Reverb::Process(float* const* rows, int channels, size_t frames, int sampleRate) {
  const bool idle = m_dry.step == 0 && m_same.step == 0 && !m_wasEnabled;
  const bool playing = std::exchange(m_lastRate, sampleRate) == sampleRate;
  if (!m_enabled && idle) {
    // A tail from before the pause is not wanted.
    m_sampleRate = 0;
    return;
  }
  const bool fresh = m_redesign || m_sampleRate != sampleRate || m_channels != channels;
  if (fresh) Prepare(channels, sampleRate);
  if (fresh || m_remix || m_enabled != m_wasEnabled) Retarget(playing);
  m_remix = false;
  m_wasEnabled = m_enabled;
  for (size_t i = 0; i < frames; ++i) {
    float in[2];
    for (int c = 0; c < 2; ++c) {
      Line& delay = m_preDelay[Size(c)];
      delay.Oldest() = rows[std::min(c, channels - 1)][i];
      delay.Advance();
      in[c] = Diffuse(c, delay.Oldest());
    }
    float tail[2];
    Room(in, tail);
    const float dry = m_dry.Next();
    const float same = m_same.Next();
    const float cross = m_cross.Next();
    for (int c = 0; c < channels; ++c) {
      rows[c][i] = dry * rows[c][i] + same * tail[c] + cross * tail[1 - c];
    }
  }
}

}  // namespace desktop
