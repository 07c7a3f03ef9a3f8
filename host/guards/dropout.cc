#include "guards/dropout.h"

#include <algorithm>
#include <functional>

#include "base/units.h"
#include "guards/presence.h"
#include "guards/thresholds.h"

namespace host {

namespace {

constexpr double kLeeway = 0.015;  // s by which the delay may be off, or wander.
constexpr double kStep = 0.005;    // s between the places of a long run that are looked at.

struct Zeros {
  double from = 0;  // s
  double to = 0;
};

// Passes on each run of zeros in a channel that is long enough to be a drop-out, without padding at
// either end.
void ForEachZeros(const Signal& signal, int channel, const std::function<void(Zeros)>& use) {
  const auto stride = static_cast<size_t>(signal.channels);
  const size_t frames = signal.Frames();
  const auto isZero = [&](size_t frame) {
    return signal.samples[frame * stride + static_cast<size_t>(channel)] == 0;
  };
  // Frames that are so far apart have no run between them that is long enough.
  const size_t shortest = ShortestDropout(signal.rate);
  for (size_t frame = 0; frame < frames;) {
    if (!isZero(frame)) {
      frame += shortest;
      continue;
    }
    size_t start = frame;
    while (start > 0 && isZero(start - 1)) --start;
    size_t end = frame + 1;
    while (end < frames && isZero(end)) ++end;
    if (end - start >= shortest) {
      Zeros zeros{static_cast<double>(start) / signal.rate, static_cast<double>(end) / signal.rate};
      if (start == 0) zeros.from += kEndsLeftOut;
      if (end == frames) zeros.to -= kEndsLeftOut;
      if (zeros.to - zeros.from >= kShortestDropout / 2) use(zeros);
    }
    frame = end + shortest;
  }
}

// When, between its ends, the input has signal for so long around that zeros cannot be right.
std::optional<double> Missing(const Zeros& zeros, const Presence& presence, double least,
                              double most) {
  const double start = zeros.from + std::min(kStep, zeros.to - zeros.from) / 2;
  for (double time = start; time < zeros.to; time += kStep) {
    if (presence.Throughout(time - most - kLeeway, time - least + kLeeway)) return time;
  }
  return std::nullopt;
}

double ActiveLevel(const ChannelSurvey& survey) {
  const audio_measures::Figure level = survey.active.Level();
  return level.value ? *level.value : survey.level.Rms().value.value_or(0);
}

}  // namespace

void CheckDropout(const GuardInput& input, const Surveys& surveys, const Pairing& pairing,
                  GuardHits& hits) {
  if (!hits.IsOn(Guard::kDropout)) return;
  const Signal& out = *input.output;
  std::optional<Zeros> first;
  int channelOfFirst = 0;
  size_t places = 0;
  for (int channel = 0; channel < out.channels; ++channel) {
    const auto source = static_cast<size_t>(std::max(0, pairing.Source(channel)));
    const ChannelSurvey& survey = surveys.output[static_cast<size_t>(channel)];
    if (!survey.longZeros || IsStill(survey)) continue;  // The latter is `silent`.
    const Match& match = pairing.Of(channel);
    // Where the delay is not known it may be any that is allowed.
    const double least =
        match.known ? static_cast<double>(match.lag) / out.rate : -input.rules.mostAdvance;
    const double most = match.known ? least : input.rules.mostDelay;
    std::optional<Presence> presence;
    ForEachZeros(out, channel, [&](const Zeros& zeros) {
      if (!presence)
        presence.emplace(*input.input, pairing.Source(channel), ActiveLevel(surveys.input[source]));
      if (!Missing(zeros, *presence, least, most)) return;
      ++places;
      if (first && first->from <= zeros.from) return;
      first = zeros;
      channelOfFirst = channel;
    });
  }
  if (!first) return;
  std::string text =
      "zeros for " + Seconds(first->to - first->from) + " where the input has signal";
  if (places > 1) text += ", the first of " + std::to_string(places) + " places";
  hits.Add(Guard::kDropout, {.at = first->from, .channel = channelOfFirst}, text);
}

}  // namespace host
