#include <cstdio>
#include <string_view>

#include "audio_measures/measure.h"
#include "base/printable.h"
#include "base/shell_word.h"
#include "measure/measure.h"

namespace host {

namespace {

using audio_measures::Better;
using audio_measures::Measure;

std::string Plain(double value) {
  char text[32];
  snprintf(text, sizeof text, "%g", value);
  return text;
}

const char* Direction(Better better) {
  switch (better) {
    case Better::kHigher:
      return "higher is better";
    case Better::kLower:
      return "lower is better";
    case Better::kNeither:
      break;
  }
  return "no direction";
}

struct NeedName {
  unsigned need;
  const char* name;
};
constexpr NeedName kNeedNames[] = {{audio_measures::kReference, "a reference (--against)"},
                                   {audio_measures::kFar, "a far end (--far)"},
                                   {audio_measures::kNear, "a near end (--near)"},
                                   {audio_measures::kInput, "the input (--input)"},
                                   {audio_measures::kRun, "a run"},
                                   {audio_measures::kBytes, "the coded stream"},
                                   {audio_measures::kFrames, "the coded frames"},
                                   {audio_measures::kBeats, "lists of beats"}};

std::string Names(unsigned needs) {
  std::string names;
  for (const NeedName& each : kNeedNames) {
    if ((needs & each.need) != 0) names += (names.empty() ? "" : ", ") + std::string(each.name);
  }
  return names;
}

// What it takes, and what it makes use of.
std::string Inputs(const Measure& measure) {
  std::string text;
  if (measure.needs != 0) text += "needs " + Names(measure.needs);
  if (measure.uses != 0) {
    text += (text.empty() ? "" : "; ") + std::string("uses ") + Names(measure.uses);
  }
  if (measure.version == 0) return text;
  text += (text.empty() ? "" : "; ") + std::to_string(measure.lowestRate) + " to " +
          std::to_string(measure.highestRate) + " Hz";
  if (measure.leastSeconds > 0) text += ", at least " + Plain(measure.leastSeconds) + " s";
  return text;
}

std::string Entry(const Measure& measure) {
  const std::string unit = measure.unit.empty() ? "no unit" : std::string(measure.unit);
  std::string text = std::string(measure.name) + "  " + unit + ", " + Direction(measure.better) +
                     ", margin " + Plain(measure.margin) +
                     (measure.version == 0 ? "" : ", version " + std::to_string(measure.version)) +
                     "\n    " + std::string(measure.definition) + "\n";
  if (!measure.source.empty()) text += "    Source: " + std::string(measure.source) + "\n";
  if (const std::string inputs = Inputs(measure); !inputs.empty()) {
    text += "    Input: " + inputs + "\n";
  }
  return text;
}

// The direction as reports have it, in words.
std::string Entry(const Scorer& scorer) {
  const Better better = scorer.better == "higher"  ? Better::kHigher
                        : scorer.better == "lower" ? Better::kLower
                                                   : Better::kNeither;
  std::string text = scorer.name + "  " +
                     (scorer.unit.empty() ? "no unit" : Printable(scorer.unit)) + ", " +
                     Direction(better) + "\n    Scored by:";
  for (const std::string& word : scorer.command) text += " " + Printable(ShellWord(word));
  std::string rates;
  for (const int rate : scorer.rates) {
    rates += (rates.empty() ? "" : ", ") + std::to_string(rate);
  }
  return text + "\n    Input: 16-bit WAVE" + (rates.empty() ? "" : "; " + rates + " Hz") + "\n";
}

}  // namespace

std::string MeasureList(const Scorers& scorers) {
  std::string text;
  for (const Measure& measure : audio_measures::AllMeasures()) text += Entry(measure);
  for (const Scorer& scorer : scorers) text += Entry(scorer);
  return text;
}

}  // namespace host
