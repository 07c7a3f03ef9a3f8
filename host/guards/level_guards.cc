#include "guards/level_guards.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "base/units.h"
#include "guards/thresholds.h"
#include "harness/format_name.h"

namespace host {

namespace {

// The active level of all channels together, as a power; 0 where none is known.
double ActivePower(const std::vector<ChannelSurvey>& surveys) {
  double sum = 0;
  for (const ChannelSurvey& survey : surveys) {
    const audio_measures::Figure level = survey.active.Level();
    if (level.value) sum += std::pow(10, *level.value / 10);
  }
  return sum / static_cast<double>(surveys.size());
}

// By how much louder the output is, as a factor of amplitude; 1 where that is not known.
double Gain(const Surveys& surveys) {
  const double in = surveys.input.empty() ? 0 : ActivePower(surveys.input);
  const double out = ActivePower(surveys.output);
  return in > 0 && out > 0 ? std::sqrt(out / in) : 1;
}

}  // namespace

void CheckSilence(const GuardInput& input, const Surveys& surveys, GuardHits& hits) {
  if (input.output->samples.empty()) return;
  if (input.facts.nullDevice) {
    const bool zeros = input.output->samples.ForEachBlock([](std::span<const float> block) {
      return std::ranges::all_of(block, [](float sample) { return sample == 0; });
    });
    if (zeros) {
      hits.Add(Guard::kDigitalSilence, {},
               "nothing but zeros, recorded from a device that hears nothing");
    }
    return;
  }
  if (surveys.input.empty()) {
    if (std::ranges::all_of(surveys.output, IsStill)) {
      hits.Add(Guard::kSilent, {.at = 0}, "silent; its input is not known", false);
    }
    return;
  }
  if (input.input->Seconds() < kShortestJudged) return;
  for (size_t channel = 0; channel < surveys.output.size(); ++channel) {
    const audio_measures::Figure level = surveys.input[channel].level.Rms();
    if (!IsStill(surveys.output[channel]) || IsStill(surveys.input[channel]) ||
        level.value < kHeardLevel) {
      continue;
    }
    hits.Add(Guard::kSilent, {.at = 0, .channel = static_cast<int>(channel)},
             "silent, where the input has " + Decibels(level.value));
    return;
  }
}

void CheckClipped(const GuardInput& input, const Surveys& surveys, GuardHits& hits) {
  std::optional<uint64_t> first;
  size_t channel = 0;
  double worst = 0;
  uint64_t runs = 0;
  for (size_t i = 0; i < surveys.output.size(); ++i) {
    const audio_measures::Clipped& clipped = surveys.output[i].clipped;
    const double given =
        surveys.input.empty() ? 0 : surveys.input[i].clipped.Share().value.value_or(0);
    const double beyond = clipped.Share().value.value_or(0) - kMoreClipped * given;
    if (clipped.Samples() == 0 || beyond <= 0) continue;
    worst = std::max(worst, beyond);
    runs += clipped.Runs();
    if (first && *first <= *clipped.First()) continue;
    first = clipped.First();
    channel = i;
  }
  if (!first) return;
  hits.Add(Guard::kClipped,
           {.at = static_cast<double>(*first) / input.output->rate,
            .channel = static_cast<int>(channel)},
           harness::FormatName(
               "%.2g %% of the samples beyond those of the input stand at full scale, in %s",
               100 * worst, (std::to_string(runs) + (runs == 1 ? " run" : " runs")).c_str()),
           worst >= kGraveClipping);
}

void CheckDc(const Surveys& surveys, GuardHits& hits) {
  const double gain = std::max(1.0, Gain(surveys));
  for (size_t channel = 0; channel < surveys.output.size(); ++channel) {
    const MeanOffset& out = surveys.output[channel].offset;
    if (!out.Error()) continue;
    double given = 0;
    if (!surveys.input.empty()) given = gain * std::fabs(surveys.input[channel].offset.Mean());
    const double beyond = std::fabs(out.Mean()) - given;
    if (beyond < kMaxDc || beyond < kSureErrors * *out.Error()) continue;
    hits.Add(Guard::kDc, {.at = 0, .channel = static_cast<int>(channel)},
             harness::FormatName("a mean of %.2g %% of full scale", 100 * out.Mean()));
    return;
  }
}

void CheckLevel(const GuardInput& input, const Surveys& surveys, GuardHits& hits) {
  if (surveys.input.empty()) return;
  const double in = ActivePower(surveys.input);
  const double out = ActivePower(surveys.output);
  if (!(in > 0) || !(out > 0)) return;
  const double change = 10 * std::log10(out / in);
  if (change >= input.rules.leastLevel && change <= input.rules.mostLevel) return;
  hits.Add(Guard::kLevel, {},
           harness::FormatName("active level %+.1f dB against the input's, not %+.0f to %+.0f dB",
                               change, input.rules.leastLevel, input.rules.mostLevel));
}

}  // namespace host
