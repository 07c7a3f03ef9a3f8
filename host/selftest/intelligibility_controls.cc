#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 10000;
constexpr size_t kHop = 128;                         // Waveform between two blocks.
constexpr size_t kMiddle = 127;                      // Of a window of 256.
constexpr size_t kSegment = 30;                      // Blocks.
constexpr double kTurn = 2 * std::numbers::pi / 10;  // An envelope repeats itself after 10 blocks.

// One sample in the middle of each block, so that the magnitude of every band is its height.
Waveform Envelope(size_t blocks, double level, double phase, double depth) {
  Waveform samples(kHop * (blocks + 1));
  for (size_t i = 0; i < blocks; ++i) {
    const double wave = std::cos(kTurn * static_cast<double>(i) + phase);
    samples[kMiddle + i * kHop] = static_cast<float>(level * (1 + depth * wave));
  }
  return samples;
}

// The delay is looked for within less than the distance of two blocks, so that an envelope is not
// taken for one that is some blocks later.
Scene Pair(Waveform reference, Waveform output) {
  return {.output = {kRate, {std::move(output)}},
          .reference = {kRate, {std::move(reference)}},
          .searchSeconds = 0.005};
}

Control Turned(double degrees) {
  const double phase = degrees * std::numbers::pi / 180;
  return {"envelopes " + std::to_string(static_cast<int>(degrees)) + " degrees apart",
          "A single sample in the middle of each block gives every band its height as magnitude. "
          "Three whole periods lie in a segment of 30 blocks, so that two of its cosines correlate "
          "with the cosine of the angle between them.",
          [phase] { return Pair(Envelope(300, 0.3, 0, 0.5), Envelope(300, 0.3, phase, 0.5)); },
          {{"stoi", std::cos(phase), 0.005}}};
}

// A filter of linear phase around this share of half the rate, below it or, of the other sign,
// above it, with `reach` taps on either side. What passes 900 Hz on one side has half of the bands.
Waveform Half(std::span<const float> samples, bool low, double share = 0.18, int reach = 40) {
  const auto lead = static_cast<size_t>(reach);
  Waveform filtered(samples.size());
  for (int k = -reach; k <= reach; ++k) {
    const double turn = std::numbers::pi * k;
    const double sinc = k == 0 ? share : std::sin(turn * share) / turn;
    const double tap = sinc * (0.5 + 0.5 * std::cos(turn / (reach + 1)));
    const auto weight = static_cast<float>(low ? tap : (k == 0 ? 1 - tap : -tap));
    for (size_t i = lead; i + lead < samples.size(); ++i) {
      filtered[i] += weight * samples[i - static_cast<size_t>(k + reach) + lead];
    }
  }
  return filtered;
}

// The lower half of the bands swells while the upper one falls.
Waveform Seesaw(double phase) {
  return Sum(Half(Envelope(300, 0.3, phase, 0.5), true),
             Half(Envelope(300, 0.3, phase, -0.5), false));
}

Control Spectra(double degrees) {
  const double phase = degrees * std::numbers::pi / 180;
  return {"spectra that tilt, " + std::to_string(static_cast<int>(degrees)) + " degrees apart",
          "Lower and upper bands swell in turn. Normalised over time each block is one tilt or the "
          "other, as the sign of a cosine has it: ten blocks in a period, of which the share "
          "degrees / 180 differ in sign, count -1. The band in the middle is in neither half.",
          [phase] { return Pair(Seesaw(0), Seesaw(phase)); },
          {{"estoi", 1 - 2 * degrees / 180, 0.05}}};
}

Control SoftPart(double decibels, double stoi, double tolerance) {
  return {
      "a part " + std::to_string(static_cast<int>(decibels)) +
          " dB softer whose envelope is turned by 90 degrees",
      "Segments count alike, loud or soft, until they are 40 dB below the strongest block, when "
      "they are left out. Half of the segments correlate fully, half not at all; those across "
      "the border, 30 of 371, mostly see the step that both have.",
      [=] {
        const double level = 0.3 * std::pow(10, -decibels / 20);
        Waveform reference = Envelope(200, 0.3, 0, 0.2);
        reference.resize(200 * kHop);
        Append(reference, Envelope(200, level, 0, 0.2));
        Waveform output = Envelope(200, 0.3, 0, 0.2);
        output.resize(200 * kHop);
        Append(output, Envelope(200, level, std::numbers::pi / 2, 0.2));
        return Pair(reference, output);
      },
      {{"stoi", stoi, tolerance}}};
}

// Correlation, over a segment, of an envelope with itself where one block is so many times as
// high, scaled to the same norm and cut off 15 dB of distortion above the envelope.
double CutOff(size_t loud, double times) {
  std::vector<double> x;
  std::vector<double> y;
  double ofX = 0;
  double ofY = 0;
  for (size_t i = 0; i < kSegment; ++i) {
    x.push_back(1 + 0.5 * std::cos(kTurn * static_cast<double>(i)));
    y.push_back(x.back() * (i == loud ? times : 1));
    ofX += x.back() * x.back();
    ofY += y.back() * y.back();
  }
  double meanX = 0;
  double meanY = 0;
  for (size_t i = 0; i < kSegment; ++i) {
    y[i] = std::min(y[i] * std::sqrt(ofX / ofY), x[i] * (1 + std::pow(10, 0.75)));
    meanX += x[i] / kSegment;
    meanY += y[i] / kSegment;
  }
  double product = 0;
  double squaresX = 0;
  double squaresY = 0;
  for (size_t i = 0; i < kSegment; ++i) {
    product += (x[i] - meanX) * (y[i] - meanY);
    squaresX += (x[i] - meanX) * (x[i] - meanX);
    squaresY += (y[i] - meanY) * (y[i] - meanY);
  }
  return product / std::sqrt(squaresX * squaresY);
}

Control LoudBlocks(double times) {
  constexpr size_t loud = 5;
  return {
      "one block in thirty " + std::to_string(times) + " times as high",
      "Every segment has one such block. Scaled to the norm of the reference's and cut off at 1 "
      "+ 10^(15/20) of it, its correlation follows from the ten heights of a period.",
      [times] {
        const Waveform reference = Envelope(300, 0.1, 0, 0.5);
        Waveform output = reference;
        for (size_t i = loud; i < 300; i += kSegment) {
          output[kMiddle + i * kHop] *= static_cast<float>(times);
        }
        return Pair(reference, output);
      },
      {{"stoi", CutOff(loud, times), 0.01}}};
}

Control LowBandsTurned() {
  return {
      "the bands below 900 Hz turned by 90 degrees",
      "Eight of the 15 bands have their middle below 900 Hz and do not correlate, seven do: 7 / "
      "15, to what the band at the edge sees of both.",
      [] {
        const Waveform plain = Envelope(300, 0.3, 0, 0.5);
        const Waveform turned = Envelope(300, 0.3, std::numbers::pi / 2, 0.5);
        return Pair(plain, Sum(Half(turned, true), Half(plain, false)));
      },
      {{"stoi", 7.0 / 15, 0.06}}};
}

// The same at twice the rate, and as much again above.
Waveform AtTwiceTheRate(const Waveform& samples) {
  Waveform sparse(2 * samples.size());
  for (size_t i = 0; i < samples.size(); ++i) sparse[2 * i] = samples[i];
  return sparse;
}

Control OfTwiceTheRate() {
  return {"at 20 kHz, what is below 900 Hz turned by 90 degrees",
          "What is above 5 kHz does not count, so that it is as at 10 kHz: 7 / 15.",
          [] {
            const Waveform plain = AtTwiceTheRate(Envelope(300, 0.3, 0, 0.5));
            const Waveform turned = AtTwiceTheRate(Envelope(300, 0.3, std::numbers::pi / 2, 0.5));
            Scene scene =
                Pair(plain, Sum(Half(turned, true, 0.09, 80), Half(plain, false, 0.09, 80)));
            scene.output.rate = scene.reference.rate = 2 * kRate;
            return scene;
          },
          {{"stoi", 7.0 / 15, 0.06}}};
}

// A tone at a bin of 512, of an envelope of its own.
Control ToneAt(int bin, int bands) {
  return {"a tone of " + std::to_string(bin * kRate / 512) + " Hz, turned by 90 degrees",
          "The last two bands end before bins 174 and 219, the nearest to 2^(1/6) above their "
          "middles. What a window leaves of a tone five bins beside it is a thousandth. The band "
          "in which it is by far the strongest does not correlate, all others do.",
          [bin] {
            const Waveform reference = Envelope(300, 0.3, 0, 0.5);
            Waveform output = reference;
            for (size_t i = 0; i < output.size(); ++i) {
              const double time = static_cast<double>(i) - kMiddle;
              const double envelope = 1 - 0.5 * std::sin(kTurn * time / kHop);
              const double tone = std::sin(2 * std::numbers::pi * bin * time / 512);
              output[i] += static_cast<float>(0.2 * envelope * tone);
            }
            return Pair(reference, output);
          },
          {{"stoi", bands / 15.0, 0.02}}};
}

Control TopBandTurned() {
  return {"what is above 3.4 kHz turned by 90 degrees",
          "The last of 15 bands goes from 3.4 to 4.3 kHz and does not correlate, all others do: 14 "
          "/ 15, to what the bands at the edge see of both.",
          [] {
            constexpr double kEdge = 3394.0 / 5000;
            const Waveform plain = Envelope(300, 0.3, 0, 0.5);
            const Waveform turned = Envelope(300, 0.3, std::numbers::pi / 2, 0.5);
            return Pair(plain, Sum(Half(plain, true, kEdge), Half(turned, false, kEdge)));
          },
          {{"stoi", 14.0 / 15, 0.03}}};
}

// A copy of samples of which it is seen how many blocks count: a segment takes 30.
Control Counted(const std::string& name, const std::string& theory, bool enough,
                const std::function<Waveform()>& make) {
  const std::string reason = enough ? "" : audio_measures::kTooShort;
  return {name,
          theory,
          [make] {
            const Waveform samples = make();
            return Pair(samples, samples);
          },
          {{"stoi", 1, 1e-4, reason}, {"estoi", 1, 1e-4, reason}}};
}

// In so many of the 39 blocks of a signal that ends with the last one.
Control SomeBlocks(size_t first, size_t blocks) {
  return Counted("samples in " + std::to_string(blocks) + " of 39 blocks from " +
                     std::to_string(first) + " on",
                 "A segment has 30 blocks.", blocks >= kSegment, [=] {
                   Waveform samples(40 * kHop);
                   Random random(97);
                   for (size_t i = first; i < first + blocks; ++i) {
                     samples[kMiddle + i * kHop] = static_cast<float>(0.1 + random.Uniform());
                   }
                   return samples;
                 });
}

// One in two hops, at this place of the first of two blocks and 128 samples before it in the
// second.
Control AtPlace(size_t place) {
  return Counted("20 samples, each at " + std::to_string(place) +
                     " of one block, 128 before in "
                     "the next",
                 "A window of sin^2(pi (i + 1) / 257) has 0.989 at 119 and 120, 0.0121 at 247, "
                 "above a hundredth of that, and 0.0095 at 248, below it: 40 blocks count, or 20.",
                 place == 247, [place] {
                   Waveform samples(44 * kHop);
                   for (size_t i = 0; i < 20; ++i) {
                     samples[place + 2 * i * kHop] = i % 3 == 0 ? 0.5F : 0.501F;
                   }
                   return samples;
                 });
}

Control Softer(double decibels) {
  return Counted(
      "20 blocks of one height, 20 that are " + std::to_string(decibels) + " dB softer",
      "Blocks down to 40 dB below the strongest count: 40 or 20.", decibels < 40, [decibels] {
        Waveform samples = Envelope(40, 0.5, 0, 0);
        for (size_t i = 0; i < 20; ++i) {
          samples[kMiddle + i * kHop] *= static_cast<float>(std::pow(10, -decibels / 20));
        }
        return samples;
      });
}

}  // namespace

std::vector<Control> IntelligibilityControls() {
  return {Turned(0),
          Turned(30),
          Turned(60),
          LoudBlocks(100),
          LoudBlocks(10),
          TopBandTurned(),
          LowBandsTurned(),
          OfTwiceTheRate(),
          ToneAt(168, 14),
          ToneAt(180, 14),
          ToneAt(224, 15),
          Spectra(0),
          Spectra(36),
          Spectra(72),
          SoftPart(45, 1, 0.005),
          SoftPart(30, 0.54, 0.04),
          SomeBlocks(10, 29),
          SomeBlocks(9, 30),
          SomeBlocks(0, 30),
          AtPlace(247),
          AtPlace(248),
          Softer(39.8),
          Softer(40.2)};
}

}  // namespace host
