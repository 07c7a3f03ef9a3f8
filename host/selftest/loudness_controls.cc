#include <cmath>
#include <utility>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 48000;

using Passages = std::vector<std::pair<double, double>>;  // dBFS of the crest, and seconds.

Samples Tones(const Passages& passages) {
  Samples samples;
  for (const auto& [level, seconds] : passages) {
    Append(samples, Sine(kRate, seconds, 1000, std::pow(10, level / 20)));
  }
  return samples;
}

Control Programme(const std::string& name, const std::string& theory, const Passages& passages,
                  std::vector<Expected> expected) {
  return {name, theory,
          [passages] {
            const Samples tones = Tones(passages);
            return Scene{.output = {kRate, {tones, tones}}};
          },
          std::move(expected)};
}

// A case of EBU Tech 3341.
Control Loud(const std::string& name, const Passages& passages, double loudness) {
  return Programme("EBU Tech 3341, " + name,
                   "A stereo sine of 1 kHz whose crests stand at -23 dBFS has -23 LUFS; what lies "
                   "below the gates does not count. The document allows 0.1 LU.",
                   passages, {{"loudness", loudness, 0.1}});
}

// A case of EBU Tech 3342.
Control Wide(const std::string& name, const Passages& passages, double range) {
  return Programme("EBU Tech 3342, " + name,
                   "The range is the distance of the levels between which the 10th and the 95th "
                   "percentile lie. The document allows 1 LU.",
                   passages, {{"loudness_range", range, 1}});
}

Control FiveChannels() {
  return {"EBU Tech 3341, case 6",
          "Five channels, the surrounds weighted by 1.41: -28 dBFS left and right, -24 in the "
          "centre, -30 around: -23 LUFS. The document allows 0.1 LU.",
          [] {
            Scene scene = {.output = {kRate, {}}};
            for (const double level : {-28.0, -28.0, -24.0, -30.0, -30.0}) {
              scene.output.channels.push_back(Tones({{level, 20}}));
            }
            return scene;
          },
          {{"loudness", -23, 0.1}}};
}

}  // namespace

std::vector<Control> LoudnessControls() {
  return {
      Loud("case 1", {{-23, 20}}, -23),
      Loud("case 2", {{-33, 20}}, -33),
      Loud("case 3", {{-36, 10}, {-23, 60}, {-36, 10}}, -23),
      Loud("case 4", {{-72, 10}, {-36, 10}, {-23, 60}, {-36, 10}, {-72, 10}}, -23),
      Loud("case 5", {{-26, 20}, {-20, 20.1}, {-26, 20}}, -23),
      FiveChannels(),
      Wide("case 1", {{-20, 20}, {-30, 20}}, 10),
      Wide("case 2", {{-20, 20}, {-15, 20}}, 5),
      Wide("case 3", {{-40, 20}, {-20, 20}}, 20),
      Wide("case 4", {{-50, 20}, {-35, 20}, {-20, 20}, {-35, 20}, {-50, 20}}, 15),
      Programme("a minute below the absolute gate",
                "What is at -75 LUFS does not count, though it is less than 10 LU below the "
                "mean of all. Of the 99 blocks that count two, at the edge, are a quarter and a "
                "half below, 0.03 dB of the mean.",
                {{-66, 10}, {-75, 60}}, {{"loudness", -66, 0.1}}),
      Programme("two loud seconds in two minutes",
                "Of 120 blocks of 3 s four have something of them, fewer than the 5 % that lie "
                "above the 95th percentile: the range is that of the minutes.",
                {{-30, 60}, {-20, 30}, {-10, 2}, {-20, 30}}, {{"loudness_range", 10, 0.1}})};
}

}  // namespace host
