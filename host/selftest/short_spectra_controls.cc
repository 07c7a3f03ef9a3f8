#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

// 30 ms are 256 samples to a hundredth of one, and 7.5 ms are 64: a window is as long as its
// transform, so that a sine of whole periods in it has three lines.
constexpr int kRate = 8533;
constexpr size_t kWindow = 256;
constexpr size_t kHop = 64;
constexpr size_t kBins = kWindow / 2 + 1;
using Lines = std::array<double, kBins>;

// The delay is looked for within 5 ms, so that what repeats itself is not taken for being late.
Scene Pair(Waveform reference, Waveform output) {
  return {.output = {kRate, {std::move(output)}},
          .reference = {kRate, {std::move(reference)}},
          .searchSeconds = 0.005};
}

// The critical bands of S. Quackenbush et al., Hz: 50 Hz is the middle of the first, and the middle
// of each other one lies the width of the one before above that one's.
constexpr std::array kBandWidths = {70.0,    70.0,    70.0,    70.0,    70.0,    70.0,    70.0,
                                    77.3724, 86.0056, 95.3398, 105.411, 116.256, 127.914, 140.423,
                                    153.823, 168.154, 183.457, 199.776, 217.153, 235.631, 255.255,
                                    276.072, 298.126, 321.465, 346.136};

// What a band of this middle and width has of these magnitudes: bells exp(-11 x^2) of one area,
// down to a thousandth.
double InBand(double middle, double width, const Lines& magnitudes) {
  double sum = 0;
  for (size_t i = 0; i < kBins; ++i) {
    const double hertz = static_cast<double>(i) * kRate / kWindow;
    const double bell = std::exp(-11 * std::pow((hertz - middle) / width, 2));
    if (bell >= 0.001) sum += bell * 70 / width * magnitudes[i];
  }
  return sum;
}

double FwSegSnr(const Lines& reference, const Lines& output) {
  const double strongest = *std::ranges::max_element(reference);
  double sum = 0;
  double weights = 0;
  double middle = 50;
  for (const double width : kBandWidths) {
    const double x = InBand(middle, width, reference);
    const double y = InBand(middle, width, output);
    middle += width;
    if (x <= strongest / 1000) continue;
    const double weight = std::pow(x, 0.2);
    sum += weight * std::clamp(20 * std::log10(x / std::abs(x - y)), -10.0, 35.0);
    weights += weight;
  }
  return sum / weights;
}

double Lsd(const Lines& reference, const Lines& output) {
  const double least = *std::ranges::max_element(reference) / 1000;
  double squares = 0;
  for (size_t i = 0; i < kBins; ++i) {
    const double ratio = std::max(reference[i], least) / std::max(output[i], least);
    squares += std::pow(20 * std::log10(ratio), 2) / kBins;
  }
  return std::sqrt(squares);
}

// A sine of so many periods in a window; none is a constant.
struct Tone {
  size_t periods = 0;
  double amplitude = 0;
  double gain = 1;  // In the output.

  double Power() const { return periods == 0 ? amplitude * amplitude : amplitude * amplitude / 2; }
};

// With a window of Hann, in units of a quarter of it: a sine has its amplitude in the middle and
// half of it to either side, a constant has twice that.
Lines LinesOf(const std::vector<Tone>& tones, bool ofOutput, double common) {
  Lines lines = {};
  for (const Tone& tone : tones) {
    const double height = tone.amplitude * (ofOutput ? tone.gain / common : 1);
    if (tone.periods > 0) {
      lines[tone.periods - 1] = height / 2;
      lines[tone.periods] = height;
    } else {
      lines[0] = 2 * height;
      lines[1] += height / 2;
    }
    lines[tone.periods + 1] += height / 2;
  }
  return lines;
}

Waveform Sounding(const std::vector<Tone>& tones, bool ofOutput) {
  std::array<double, kWindow> period = {};
  for (const Tone& tone : tones) {
    const double height = tone.amplitude * (ofOutput ? tone.gain : 1);
    for (size_t i = 0; i < kWindow; ++i) {
      const auto turns = static_cast<double>(tone.periods * i) / kWindow;
      const double phase = 2 * std::numbers::pi * turns + static_cast<double>(tone.periods);
      period[i] += height * (tone.periods == 0 ? 1 : std::sin(phase));
    }
  }
  Waveform samples = WhiteNoise(34 * kWindow, 1e-7, 37);
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] += static_cast<float>(period[i % kWindow]);
  }
  return samples;
}

Control Tones(const std::string& name, const std::vector<Tone>& tones, double tolerance) {
  double product = 0;
  double power = 0;
  for (const Tone& tone : tones) {
    product += tone.gain * tone.Power();
    power += tone.Power();
  }
  const Lines reference = LinesOf(tones, false, 1);
  const Lines output = LinesOf(tones, true, product / power);
  return {name,
          "Sines of whole periods in each window: three lines each, of known height. The gain that "
          "is taken out is their mean, weighted by power. What bands and bins have follows from "
          "the definitions; noise at -140 dB leaves so "
          "much of the softest.",
          [tones] { return Pair(Sounding(tones, false), Sounding(tones, true)); },
          {{"fw_seg_snr", FwSegSnr(reference, output), tolerance},
           {"lsd", Lsd(reference, output), tolerance}}};
}

// A constant and a sine every 100 Hz from 100 Hz to 3.8 kHz, softer and changed at random. Or sines
// from 67 Hz on, where bands see two that saw one.
Control RandomTones(double softest, double largestGain, uint64_t seed, double tolerance,
                    size_t lowest = 3) {
  Random random(seed);
  std::vector<Tone> tones;
  if (lowest == 3) tones.push_back({0, 0.1, 0.7});
  for (size_t periods = lowest; periods <= 114; periods += 3) {
    const double decibels = softest * random.Uniform();
    const double change = std::pow(10, -2.2 + (2.2 + largestGain) * random.Uniform());
    tones.push_back({periods, 0.1 * std::pow(10, decibels / 20), 1 + change});
  }
  return Tones("sines down to " + std::to_string(softest) + " dB, each with a gain, no. " +
                   std::to_string(seed),
               tones, tolerance);
}

// One sample in each window: `height` and, in the output, `changed`.
struct Peak {
  double height = 0.05;
  double changed = 0.05;
};

// The last one ends the signal, so that it is in the last window alone, as the first one is in the
// first.
Waveform Peaked(const std::vector<Peak>& peaks, bool ofOutput) {
  Waveform samples((peaks.size() - 1) * kWindow + kHop);
  for (size_t i = 0; i < peaks.size(); ++i) {
    samples[i * kWindow + kHop / 2] =
        static_cast<float>(ofOutput ? peaks[i].changed : peaks[i].height);
  }
  return samples;
}

// The values of a window with this peak, whose spectrum is flat, at these heights in both.
struct OfPeak {
  double snr = 0;
  double distance = 0;
};

OfPeak Window(double height, double changed, double highest) {
  const double snr = -20 * std::log10(std::abs(1 - changed / height));
  const double least = highest / 1000;
  const double ratio = std::max(height, least) / std::max(changed, least);
  return {std::clamp(snr, -10.0, 35.0), std::abs(20 * std::log10(ratio))};
}

Control Peaks(const std::string& name, const std::vector<Peak>& peaks) {
  double product = 0;
  double energy = 0;
  for (const Peak& peak : peaks) {
    product += peak.height * peak.changed;
    energy += peak.height * peak.height;
  }
  const auto weight = [](size_t place) {
    return std::pow(std::sin(std::numbers::pi * static_cast<double>(place) / kWindow), 2);
  };
  // Windows start every 64 samples, so that the place of the peak goes from 32 down by 64, round.
  struct Seen {
    Peak peak;
    double weight;
  };
  std::vector<Seen> windows;
  double highest = 0;
  for (size_t start = 0; start + kWindow <= Peaked(peaks, false).size(); start += kHop) {
    const size_t peak = (start + kWindow - kHop / 2 - 1) / kWindow;
    windows.push_back({peaks[peak], weight(peak * kWindow + kHop / 2 - start)});
    highest = std::max(highest, windows.back().weight * windows.back().peak.height);
  }
  double snr = 0;
  double distance = 0;
  double counted = 0;
  for (const Seen& each : windows) {
    if (each.peak.height == 0) continue;
    const OfPeak values = Window(each.peak.height * each.weight,
                                 each.peak.changed * each.weight / (product / energy), highest);
    snr += values.snr;
    distance += values.distance;
    ++counted;
  }
  return {name,
          "Each window has one sample, so that its spectrum is flat and all bands and bins have "
          "the ratio of that sample; the first and the last are in one window, all others in four. "
          "Windows in which the reference is silent do not count, and what is 60 dB below the "
          "highest spectrum counts as that.",
          [peaks] { return Pair(Peaked(peaks, false), Peaked(peaks, true)); },
          {{"fw_seg_snr", snr / counted, 0.002}, {"lsd", distance / counted, 0.002}}};
}

constexpr size_t kPeaks = 40;

std::vector<Control> PeakControls() {
  std::vector<Peak> peaks(kPeaks);
  peaks[5] = {0, 0.02};
  peaks[9] = {0.05, 0};
  std::vector<Peak> first = peaks;
  first.front() = {0.9, 0.9};
  std::vector<Peak> last = peaks;
  last.back() = {0.9, 0.9};
  return {Peaks("samples of which the first is highest and one is gone", first),
          Peaks("samples of which the last is highest and one is gone", last)};
}

// A sine above all critical bands, and samples where it is 0.
Control HighSine() {
  constexpr double kHeight = 0.03;
  constexpr size_t kChanged = kPeaks / 2;
  std::vector<Peak> peaks(kPeaks, {0, 0});
  std::fill_n(peaks.begin(), kChanged, Peak{0.05, 0.025});
  const double ofSine = kHeight * kHeight / 2 * ((kPeaks - 1) * kWindow + kHop);
  const double ofPeaks = kChanged * 0.05 * 0.05;
  const double common = (ofSine + ofPeaks / 2) / (ofSine + ofPeaks);
  return {"a sine of 4133 Hz, and samples that are changed in its first half",
          "Windows of the sine alone have nothing in the critical bands; in all bands of the "
          "others the samples have half the height over the common gain.",
          [peaks] {
            const Waveform noise = WhiteNoise(2 * kRate, 1e-7, 38);
            const Waveform sine = Sum(Sine(kRate, 2, 124.0 * kRate / kWindow, kHeight), noise);
            return Pair(Sum(Peaked(peaks, false), sine), Sum(Peaked(peaks, true), sine));
          },
          {{"fw_seg_snr", -20 * std::log10(1 - 0.5 / common), 0.01}}};
}

Control HighSineAlone() {
  return {
      "a sine of 4133 Hz",
      "It is above all critical bands, and as it was.",
      [] {
        const Waveform sine =
            Sum(Sine(kRate, 1, 124.0 * kRate / kWindow, 0.03), WhiteNoise(kRate, 1e-7, 38));
        return Pair(sine, sine);
      },
      {{.measure = "fw_seg_snr", .reason = "nothing in the critical bands"}, {"lsd", 0, 0.001}}};
}

}  // namespace

std::vector<Control> ShortSpectraControls() {
  std::vector<Control> controls = PeakControls();
  controls.push_back(RandomTones(-20, 0.5, 1, 5e-4));
  controls.push_back(RandomTones(-20, 1.2, 4, 5e-4));
  controls.push_back(RandomTones(-60, 0.9, 2, 0.002));
  controls.push_back(RandomTones(-80, 0, 3, 0.002));
  controls.push_back(RandomTones(-20, 0.5, 5, 5e-4, 2));
  controls.push_back(HighSine());
  controls.push_back(HighSineAlone());
  return controls;
}

}  // namespace host
