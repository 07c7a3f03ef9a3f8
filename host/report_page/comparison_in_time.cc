#include "report_page/comparison_in_time.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "audio_measures/aligned_pair.h"
#include "audio_measures/difference.h"
#include "audio_measures/echo_loss.h"

namespace host {

namespace {

constexpr double kStep = 0.1;          // s, of curves.
constexpr double kFineSearch = 0.005;  // s, once the delay is taken out.
constexpr double kEchoSearch = 1;      // s

std::vector<std::vector<float>> Beside(const SoundPart& output, const SoundPart& other,
                                       const FrameRange& range, double delay) {
  const FrameRange beside = RangeBeside(range, output.rate, delay, other.rate);
  return CutFrames(other, beside.first, beside.count);
}

audio_measures::AlignedPair Aligned(const SoundPart& output, const SoundPart& other,
                                    const FrameRange& range, double delay) {
  const ChannelPair pair = ChannelsBeside(output, other);
  const auto here = CutFrames(output, range.first, range.count);
  const auto there = Beside(output, other, range, delay);
  return audio_measures::AlignPair(there[pair.other], here[pair.output], output.rate, kFineSearch);
}

double EnergyOf(std::span<const float> samples) {
  double energy = 0;
  for (const float sample : samples) {
    energy += static_cast<double>(sample) * static_cast<double>(sample);
  }
  return energy;
}

double DifferenceEnergy(std::span<const float> one, std::span<const float> other) {
  double energy = 0;
  for (size_t i = 0; i < one.size(); ++i) {
    const double difference = static_cast<double>(one[i]) - static_cast<double>(other[i]);
    energy += difference * difference;
  }
  return energy;
}

Json Decibels(double ratio) { return ratio > 0 ? Json(10 * std::log10(ratio)) : Json(); }

double StartOf(const SoundPart& output, const FrameRange& range) {
  return static_cast<double>(range.first) / output.rate;
}

Json CurveJson(const char* name, double from, Json values) {
  return {{"name", name},
          {"unit", "dB"},
          {"from", from},
          {"step", kStep},
          {"values", std::move(values)}};
}

std::vector<float> OneChannel(const SoundPart* part) {
  return part == nullptr ? std::vector<float>() : part->channels[LoudestChannel(*part)];
}

}  // namespace

Json DifferenceJson(const SoundPart& output, const SoundPart& other, const FrameRange& range,
                    double delay) {
  if (CutFrames(output, range.first, range.count) == Beside(output, other, range, delay)) {
    return {{"of", Json()}, {"db", Json()}, {"relative", Json()}, {"gain", 0}, {"identical", true}};
  }
  const audio_measures::AlignedPair pair = Aligned(output, other, range, delay);
  if (!pair.gain.value || pair.signal.empty()) return {};
  const double energy = DifferenceEnergy(pair.signal, pair.reference);
  const double gain = *pair.gain.value;
  // The pair is at the gain of the reference, the difference at that of the output.
  const double level = energy * std::pow(10, gain / 10) / static_cast<double>(pair.signal.size());
  return {{"of", Json()},
          {"db", Decibels(level)},
          {"relative", Decibels(energy / EnergyOf(pair.reference))},
          {"gain", gain},
          {"identical", false}};
}

Json SnrCurve(const SoundPart& output, const SoundPart& reference, const FrameRange& range,
              double delay) {
  const audio_measures::AlignedPair pair = Aligned(output, reference, range, delay);
  const auto block = static_cast<size_t>(kStep * output.rate);
  if (block == 0 || pair.signal.size() < block) return {};
  Json values = Json::array();
  for (size_t i = 0; i + block <= pair.signal.size(); i += block) {
    const auto wanted = std::span(pair.reference).subspan(i, block);
    const double energy = EnergyOf(wanted);
    const double error = DifferenceEnergy(wanted, std::span(pair.signal).subspan(i, block));
    const double most = audio_measures::kHighestSnr;
    const double snr = error > 0 ? std::min(most, 10 * std::log10(energy / error)) : most;
    values.push_back(energy > 0 ? Json(snr) : Json());
  }
  return CurveJson("SNR", StartOf(output, range), std::move(values));
}

Json EchoLossCurve(const SoundPart& output, const EchoSounds& sounds, const FrameRange& range) {
  const auto loss = audio_measures::MeasureEchoLoss(
      OneChannel(sounds.far), OneChannel(sounds.input), OneChannel(sounds.near),
      OneChannel(&output), output.rate, kEchoSearch);
  const double start = StartOf(output, range);
  const double seconds = static_cast<double>(range.count) / output.rate;
  const auto steps = static_cast<size_t>(std::ceil(seconds / kStep));
  std::vector<double> sums(steps);
  std::vector<int> counts(steps);
  for (const auto& each : loss.track) {
    const double at = sounds.input->Start() + each.seconds + sounds.delay - start;
    if (at < 0 || at >= static_cast<double>(steps) * kStep) continue;
    const size_t step = std::min(steps - 1, static_cast<size_t>(at / kStep));
    sums[step] += each.erle;
    ++counts[step];
  }
  if (std::ranges::all_of(counts, [](int count) { return count == 0; })) return {};
  Json values = Json::array();
  for (size_t i = 0; i < steps; ++i) {
    values.push_back(counts[i] > 0 ? Json(sums[i] / counts[i]) : Json());
  }
  return CurveJson("ERLE", start, std::move(values));
}

}  // namespace host
