#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "selftest/control.h"

namespace host {

namespace {

Control Stream() {
  return {"a stream of 12345 bytes and 77 frames for 1.5 s",
          "98760 bits in 1.5 s are 65840 bit/s; frames are counted.",
          [] {
            return Scene{
                .output = {16000, {Waveform(24000, 0.1F)}}, .codedBytes = 12345, .codedFrames = 77};
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

// Filtered by a sinc in a window of Blackman of 40 ms: of linear phase, half the amplitude at
// `edge`, from 0 to -74 dB within 138 Hz.
Waveform Below(double edge, std::span<const float> samples, int rate) {
  const auto half = static_cast<std::ptrdiff_t>(0.02 * rate);
  const double cut = 2 * edge / rate;
  std::vector<double> taps;
  for (std::ptrdiff_t i = -half; i <= half; ++i) {
    const double angle = std::numbers::pi * static_cast<double>(i);
    const double turn = angle / static_cast<double>(half);
    const double window = 0.42 + 0.5 * std::cos(turn) + 0.08 * std::cos(2 * turn);
    taps.push_back(window * (i == 0 ? cut : std::sin(angle * cut) / angle));
  }
  Waveform below(samples.size());
  for (size_t i = 0; i < samples.size(); ++i) {
    double sum = 0;
    for (size_t k = 0; k < taps.size(); ++k) {
      const size_t place = i + static_cast<size_t>(half) - k;
      if (place < samples.size()) sum += taps[k] * samples[place];
    }
    below[i] = static_cast<float>(sum);
  }
  return below;
}

Control BandLimited(double edge, int rate, double gain) {
  return {"a codec that ends at " + std::to_string(static_cast<int>(edge)) + " Hz, at " +
              std::to_string(rate) + " Hz and gain " + std::to_string(gain),
          "Noise through a filter that falls from 0 to -74 dB within 138 Hz around the edge passes "
          "-20 dB within 30 Hz above it, whatever the gain of all. A mean over 9 bins moves that "
          "by half of it, 55 Hz at most.",
          [=] {
            const Waveform noise = WhiteNoise(Frames(rate, 3), 0.1, 42);
            return Scene{.output = {rate, {Scaled(Below(edge, noise, rate), gain)}},
                         .input = {rate, {noise}}};
          },
          {{"band_limit", edge + 30, 60}}};
}

constexpr int kStepRate = 16000;
constexpr double kStep = 3000;  // Hz
constexpr double kEnd = 6000;

// Single samples, whose spectrum is flat to the last digit.
Waveform Flat() {
  Waveform samples(Frames(kStepRate, 2));
  for (size_t i = 1200; i < samples.size(); i += 2400) samples[i] = 0.5F;
  return samples;
}

// Flat up to kStep, so many dB softer from there to kEnd, and nothing above.
Waveform Stepped(double softer) {
  const Waveform low = Below(kStep, Flat(), kStepRate);
  const Waveform high = Sum(Below(kEnd, Flat(), kStepRate), Scaled(low, -1));
  return Sum(low, Scaled(high, std::pow(10, -softer / 20)));
}

// A codec that keeps the upper band, but softer by so much. `constant` is what the input has beside
// it.
Control SofterBand(double softer, bool kept, float constant) {
  return {"a codec whose upper band is " + std::to_string(softer) + " dB softer" +
              (constant > 0 ? ", of an input beside 0" : ""),
          "3 of 8 kHz are kept and 3 more to so many dB, which makes a gain of all of -4.24 dB; a "
          "band is lost at 20 dB below that, 24.24 dB below the input: at the end of the upper "
          "band or of the lower one, to what a mean over 9 bins moves it. What is constant is in "
          "no band.",
          [=] {
            Waveform input = Flat();
            for (float& sample : input) sample += constant;
            return Scene{.output = {kStepRate, {Stepped(softer)}}, .input = {kStepRate, {input}}};
          },
          {{"band_limit", kept ? kEnd : kStep + 30, 60}}};
}

Control SoftBand(double softer, bool kept) {
  return {"a copy of what has an upper band " + std::to_string(softer) + " dB below the lower one",
          "All is kept of what is no more than 70 dB below the maximum of the input; where all is "
          "below that there is nothing to keep. The filter passes -70 dB within 70 Hz of its "
          "edge.",
          [softer] {
            const Waveform samples = Stepped(softer);
            return Scene{.output = {kStepRate, {samples}}, .input = {kStepRate, {samples}}};
          },
          {{"band_limit", kept ? kEnd : kStep + 60, 60}}};
}

// Where 80 ms are a power of 2 of samples, so that this is the window.
constexpr int kWholeRate = 25600;
constexpr size_t kWindow = 2048;
constexpr double kBin = 12.5;  // Hz

Waveform InMiddle(float first, float second) {
  Waveform samples(Frames(kWholeRate, 0.6));
  samples[kWindow / 2] = first;
  samples[kWindow / 2 + 1] = second;
  return samples;
}

Control Falling(float height) {
  // Bins below half of the rate at which the mean of 4 sin^2 over 9 of them is 1 % of 2: the
  // squares of 4 to either side have the mean 60 / 9.
  const double turn = 2 * std::numbers::pi / kWindow;
  const double below = std::sqrt(0.02 / (turn * turn) - 60.0 / 9);
  return {"a codec that adds the sample before, of " + std::to_string(height),
          "The power is 2 + 2 cos w, 2 in the mean, and so near to half of the rate that of the "
          "distance from it. The first two bins, which do not count, lower the mean by 0.2 %.",
          [height] {
            return Scene{.output = {kWholeRate, {InMiddle(height, height)}},
                         .input = {kWholeRate, {InMiddle(height, 0)}}};
          },
          {{"band_limit", (0.5 * kWindow - below) * kBin, 0.15 * kBin}}};
}

// At a rate at which 80 ms are a window or a little more than half of one.
Control Line(int rate) {
  constexpr size_t kLine = 300;
  const double bin = static_cast<double>(rate) / kWindow;
  return {"a codec that leaves a line of one bin, at " + std::to_string(rate) + " Hz",
          "A window of Hann spreads it by one bin, and the mean over 9 by 4 more; the next one has "
          "what floats leave, towards which 20 dB are lost in less than half a bin.",
          [=] {
            return Scene{.output = {rate, {Sine(rate, 0.6, kLine * bin, 0.5)}},
                         .input = {rate, {InMiddle(0.5F, 0)}}};
          },
          {{"band_limit", (kLine + 5.3) * bin, 0.45 * bin}}};
}

Control NothingKept() {
  return {
      "a codec that makes one line of another",
      "Where the input has its line the output has what floats leave, far more than 20 dB below; "
      "elsewhere there is nothing that could be kept.",
      [] {
        return Scene{.output = {kWholeRate, {Sine(kWholeRate, 0.6, 700 * kBin, 0.5)}},
                     .input = {kWholeRate, {Sine(kWholeRate, 0.6, 300 * kBin, 0.5)}}};
      },
      {{"band_limit", 0, 1e-9}}};
}

Control SilentInput() {
  return {"a codec that makes a noise of silence",
          "Silence has neither a delay nor a band.",
          [] {
            return Scene{.output = {kStepRate, {WhiteNoise(9600, 0.1, 44)}},
                         .input = {kStepRate, {Waveform(9600)}}};
          },
          {{.measure = "codec_delay", .reason = audio_measures::kSilence},
           {.measure = "band_limit", .reason = audio_measures::kSilence}}};
}

// A line and what is flat beside it, so many times as strong as the least that counts.
Control FlatBeside(double share) {
  constexpr size_t kLine = 300;
  constexpr double kAmplitude = 0.5;
  return {"a copy of a line and a flat band at " + std::to_string(share) + " of the least",
          "A window of Hann makes (a n / 4)^2 of a sine in the middle of a bin and a quarter of it "
          "in either neighbour, a sixth in the mean over 9 bins: the maximum. One sample in the "
          "middle of each window has its square in each bin, which counts from 1e-7 of that on.",
          [share] {
            const double line = kAmplitude * kWindow / 4;
            const double height = line * std::sqrt(1e-7 / 6 * share);
            Waveform samples = Sine(kWholeRate, 0.6, kLine * kBin, kAmplitude);
            for (size_t i = kWindow / 2; i < samples.size(); i += kWindow / 2) {
              samples[i] += static_cast<float>(height);
            }
            return Scene{.output = {kWholeRate, {samples}}, .input = {kWholeRate, {samples}}};
          },
          {{"band_limit", share > 1 ? kWholeRate / 2.0 : (kLine + 5) * kBin, 0.01}}};
}

// The sum over the bins of the mean of 9 of them, where there are as many, of this power each.
double SumOfMeans(double (*power)(size_t)) {
  constexpr size_t kBins = kWindow / 2 + 1;
  double sum = 0;
  for (size_t i = 0; i < kBins; ++i) {
    const size_t first = i < 4 ? 0 : i - 4;
    const size_t end = std::min(kBins, i + 5);
    for (size_t k = std::max<size_t>(2, first); k < end; ++k) {
      sum += power(k) / static_cast<double>(end - first);
    }
  }
  return sum;
}

// A low line and what is flat above it, so many times as strong as what is not lost.
Control LowLine(double share) {
  constexpr double kLine = 3;
  const double flat = SumOfMeans([](size_t) { return 1.0; });
  const double line = SumOfMeans([](size_t i) {
    return i == 3 ? 1 : i == 2 || i == 4 ? 0.25 : 0.0;
  });
  return {"a codec that adds a low line, at " + std::to_string(share) + " of what is lost",
          "Means over 9 bins, fewer at the ends, of which the first two have nothing: their sums "
          "give the gain, and 1 % of that is lost. Where that is the line alone, what is kept ends "
          "5 bins above it, towards which it falls.",
          [=] {
            const double ofLine = std::pow(0.5 * kWindow / 4, 2) * line / flat;
            const double height = std::sqrt(ofLine * 0.01 * share / (1 - 0.01 * share));
            Waveform input(Frames(kWholeRate, 0.6));
            for (size_t i = kWindow / 2; i < input.size(); i += kWindow / 2) input[i] = 1;
            const Waveform low = Sine(kWholeRate, 0.6, kLine * kBin, 0.5);
            return Scene{.output = {kWholeRate, {Sum(low, Scaled(input, height))}},
                         .input = {kWholeRate, {input}}};
          },
          {{"band_limit", share > 1 ? kWholeRate / 2.0 : (kLine + 5.5) * kBin, 0.6 * kBin}}};
}

// Silence up to the last 64 ms of 0.704 s.
Control LateBand() {
  return {"sound in nothing but the last half of the last window",
          "At 16 kHz windows have 2048 samples and start every 1024; the one that starts at 9216 "
          "ends with the signal. What is kept of it is all below 3 kHz.",
          [] {
            Waveform samples(11264);
            samples[10752] = 0.5F;
            return Scene{.output = {kStepRate, {Below(kStep, samples, kStepRate)}},
                         .input = {kStepRate, {samples}}};
          },
          {{"band_limit", kStep + 30, 60}}};
}

}  // namespace

std::vector<Control> CodecControls() {
  return {Stream(),
          Late(0),
          Late(312),
          Late(-7.5),
          Late(0.25),
          BandLimited(3400, 16000, 1),
          BandLimited(3400, 16000, 0.05),
          BandLimited(5000, 12000, 20),
          SofterBand(23, true, 0),
          SofterBand(25.5, false, 0),
          SofterBand(25.5, false, 0.5),
          SoftBand(69.5, true),
          SoftBand(71, false),
          LateBand(),
          Falling(0.5F),
          Falling(1e-5F),
          LowLine(1.02),
          LowLine(0.98),
          Line(kWholeRate),
          Line(12806),
          NothingKept(),
          SilentInput(),
          FlatBeside(1.01),
          FlatBeside(0.99)};
}

}  // namespace host
