#include "guards/treatments.h"

#include <algorithm>
#include <cmath>

#include "support/drum_loop.h"
#include "support/talk.h"
#include "support/voice.h"

namespace {

// One voice or instrument, panned: `right` times as loud on the right.
void Pan(const std::vector<short>& samples, double left, double right, Sound& sound) {
  const auto stride = static_cast<size_t>(sound.channels);
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    const double gain = i % stride == 0 ? left : right;
    sound.samples[i] += static_cast<float>(gain * samples[i / stride] / 32768);
  }
}

template <typename Change>
Sound ForEachSample(Sound sound, Change change) {
  for (size_t i = 0; i < sound.samples.size(); ++i) sound.samples[i] = change(i, sound.samples[i]);
  return sound;
}

}  // namespace

Sound Speech(double seconds, int channels, int rate) {
  Sound sound = Silence(seconds, channels, rate);
  Pan(Babble(rate, seconds), 1, 0.4, sound);
  Pan(Talk(rate, seconds, 3, -26), 0.3, 1, sound);
  return sound;
}

Sound Music(double seconds, int channels, int rate) {
  Sound sound = Silence(seconds, channels, rate);
  Pan(RenderLoop(Groove::kRock, 118, seconds, 0.1, rate).samples, 0.6, 0.4, sound);
  Pan(RenderLoop(Groove::kBallad, 97, seconds, 0, rate).samples, 0.1, 0.3, sound);
  return sound;
}

Sound Noise(double rms, double seconds, unsigned seed) {
  Sound sound = Silence(seconds);
  const std::vector<short> hiss = Hiss(sound.rate, seconds, seed, -20);
  Pan(hiss, 10 * rms, 0, sound);
  return sound;
}

Sound Louder(Sound sound, double decibels) {
  const auto gain = static_cast<float>(std::pow(10, decibels / 20));
  return ForEachSample(std::move(sound), [&](size_t, float sample) { return gain * sample; });
}

Sound Compressed(Sound sound) {
  const auto stride = static_cast<size_t>(sound.channels);
  const double fall = std::exp(-1 / (0.1 * sound.rate));
  const double rise = std::exp(-1 / (0.005 * sound.rate));
  double envelope = 0;
  for (size_t i = 0; i < sound.samples.size(); i += stride) {
    double peak = 0;
    for (size_t c = 0; c < stride; ++c) {
      peak = std::max(peak, static_cast<double>(std::fabs(sound.samples[i + c])));
    }
    const double keep = peak > envelope ? rise : fall;
    envelope = keep * envelope + (1 - keep) * peak;
    const double gain = 2 * (envelope > 0.1 ? std::pow(envelope / 0.1, -0.75) : 1);
    for (size_t c = 0; c < stride; ++c) sound.samples[i + c] *= static_cast<float>(gain);
  }
  return sound;
}

Sound Equalized(Sound sound) {
  // A peaking filter of two poles and two zeros, direct form I, channel by channel.
  const double angle = 2 * M_PI * 1000 / sound.rate;
  const double amplitude = std::pow(10, 8.0 / 40);
  const double alpha = std::sin(angle) / 2;
  const double a0 = 1 + alpha / amplitude;
  const double b[3] = {(1 + alpha * amplitude) / a0, -2 * std::cos(angle) / a0,
                       (1 - alpha * amplitude) / a0};
  const double a[2] = {-2 * std::cos(angle) / a0, (1 - alpha / amplitude) / a0};
  const auto stride = static_cast<size_t>(sound.channels);
  for (size_t c = 0; c < stride; ++c) {
    double x[2] = {};
    double y[2] = {};
    for (size_t i = c; i < sound.samples.size(); i += stride) {
      const auto in = static_cast<double>(sound.samples[i]);
      const double out = b[0] * in + b[1] * x[0] + b[2] * x[1] - a[0] * y[0] - a[1] * y[1];
      x[1] = x[0];
      x[0] = in;
      y[1] = y[0];
      y[0] = out;
      sound.samples[i] = static_cast<float>(out);
    }
  }
  return sound;
}

Sound Reverberant(Sound sound) {
  const std::vector<float> dry = sound.samples;
  float gain = 0.5F;
  for (const int milliseconds : {13, 19, 29, 41, 53, 67}) {
    const auto lag = static_cast<size_t>(sound.rate * milliseconds / 1000 * sound.channels);
    for (size_t i = lag; i < dry.size(); ++i) sound.samples[i] += gain * dry[i - lag];
    gain *= -0.8F;
  }
  return Louder(std::move(sound), -6);
}

Sound Later(const Sound& sound, double seconds) {
  Sound later = sound;
  const auto lag =
      static_cast<size_t>(std::lround(seconds * sound.rate)) * static_cast<size_t>(sound.channels);
  later.samples.insert(later.samples.begin(), lag, 0.0F);
  later.samples.resize(sound.samples.size());
  return later;
}

Sound Inverted(Sound sound) {
  return ForEachSample(std::move(sound), [](size_t, float sample) { return -sample; });
}

Sound Swapped(Sound sound) {
  for (size_t i = 0; i + 1 < sound.samples.size(); i += 2) {
    std::swap(sound.samples[i], sound.samples[i + 1]);
  }
  return sound;
}

Sound Shifted(Sound sound, double offset) {
  return ForEachSample(std::move(sound),
                       [&](size_t, float sample) { return sample + static_cast<float>(offset); });
}

Sound Cut(Sound sound, double from, double seconds) {
  const auto stride = static_cast<size_t>(sound.channels);
  const size_t begin = static_cast<size_t>(std::lround(from * sound.rate)) * stride;
  const size_t end = begin + static_cast<size_t>(std::lround(seconds * sound.rate)) * stride;
  return ForEachSample(std::move(sound),
                       [&](size_t i, float sample) { return i >= begin && i < end ? 0 : sample; });
}

Sound OneIn40Zeroed(Sound sound) {
  const auto stride = static_cast<size_t>(sound.channels);
  return ForEachSample(std::move(sound),
                       [&](size_t i, float sample) { return i / stride % 40 == 0 ? 0 : sample; });
}

Sound FourTimesAndClipped(Sound sound) {
  return ForEachSample(std::move(sound),
                       [](size_t, float sample) { return std::clamp(4 * sample, -1.0F, 1.0F); });
}

Sound Integers(Sound sound) {
  sound.bits = 16;
  return ForEachSample(std::move(sound), [](size_t, float sample) {
    return std::clamp(std::round(sample * 32768), -32768.0F, 32767.0F) / 32768;
  });
}
