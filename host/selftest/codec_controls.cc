#include <cmath>

#include "selftest/control.h"

namespace host {

namespace {

Control Stream() {
  return {"a stream of 12345 bytes and 77 frames for 1.5 s",
          "98760 bits in 1.5 s are 65840 bit/s; frames are counted.",
          [] {
            return Scene{
                .output = {16000, {Samples(24000, 0.1F)}}, .codedBytes = 12345, .codedFrames = 77};
          },
          {{"bit_rate", 65840, 1e-6}, {"frames", 77, 1e-9}}};
}

Control Late(double later) {
  return {"a decoder " + std::to_string(later) + " samples late",
          "The delay is known to 0.002 of a sample, as noise is read at moved places.",
          [later] {
            const TimedNoise noise(33000, 0.1, 41);
            return Scene{.output = {48000, {noise.At(400 - later, 1, 32000)}},
                         .input = {48000, {noise.At(400, 1, 32000)}}};
          },
          {{"codec_delay", later / 48000, 0.002 / 48000}}};
}

// Tones, 0.5 dB softer from 100 Hz to 100 Hz above `edge`: by 15 dB from there on, then by 25 dB.
Control BandLimited(double edge, int rate) {
  return {
      "a codec that ends at " + std::to_string(static_cast<int>(edge)) + " Hz, at " +
          std::to_string(rate) + " Hz",
      "Noise through a filter of linear phase, designed as a sinc in a window of Blackman of "
      "40 ms whose half-amplitude point is the edge: its response falls from 0 to -74 dB within "
      "138 Hz, and passes -20 dB within 30 Hz above the edge. A mean over 9 bins moves that by "
      "half of it, 55 Hz at most.",
      [=] {
        const Samples noise = WhiteNoise(Frames(rate, 3), 0.1, 42);
        const auto half = static_cast<std::ptrdiff_t>(0.02 * rate);
        std::vector<double> taps;
        for (std::ptrdiff_t i = -half; i <= half; ++i) {
          const double x = static_cast<double>(i);
          const double turn = 3.14159265358979 * x / static_cast<double>(half);
          const double window = 0.42 + 0.5 * std::cos(turn) + 0.08 * std::cos(2 * turn);
          const double cut = 2 * edge / rate;
          const double angle = 3.14159265358979 * x;
          taps.push_back(window * (i == 0 ? cut : std::sin(angle * cut) / angle));
        }
        Samples output(noise.size());
        for (size_t i = 0; i < noise.size(); ++i) {
          double sum = 0;
          for (size_t k = 0; k < taps.size(); ++k) {
            const size_t place = i + static_cast<size_t>(half) - k;
            if (place < noise.size()) sum += taps[k] * noise[place];
          }
          output[i] = static_cast<float>(sum);
        }
        return Scene{.output = {rate, {output}}, .input = {rate, {noise}}};
      },
      {{"band_limit", edge + 30, 60}}};
}

}  // namespace

std::vector<Control> CodecControls() {
  return {Stream(),
          Late(0),
          Late(312),
          Late(-7.5),
          Late(0.25),
          BandLimited(3400, 16000),
          BandLimited(5000, 12000)};
}

}  // namespace host
