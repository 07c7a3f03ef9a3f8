#include "measure/measure_file.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "audio_measures/compute.h"
#include "audio_measures/level_meter.h"
#include "audio_measures/measure.h"
#include "base/suggest.h"
#include "base/usage_error.h"
#include "measure/beside.h"
#include "measure/figure_trust.h"
#include "measure/score.h"
#include "measure/sound.h"
#include "selftest/trust.h"

namespace host {

namespace {

using audio_measures::Measure;
using audio_measures::NamedFigure;

constexpr std::string_view kTempo = "tempo";

const char* BetterWord(audio_measures::Better better) {
  switch (better) {
    case audio_measures::Better::kHigher:
      return "higher";
    case audio_measures::Better::kLower:
      return "lower";
    case audio_measures::Better::kNeither:
      break;
  }
  return "none";
}

MeasuredFigure FigureOf(const std::string& path, const NamedFigure& named) {
  const Measure& measure = *audio_measures::FindMeasure(named.name);
  MeasuredFigure figure = {.file = path,
                           .channel = named.channel,
                           .name = std::string(named.name),
                           .unit = std::string(measure.unit),
                           .better = BetterWord(measure.better),
                           .version = measure.version,
                           .untrusted = IsUntrusted(named.name)};
  if (named.figure.value && std::isfinite(*named.figure.value)) {
    figure.value = named.figure.value;
  } else {
    figure.reason = named.figure.value ? "no finite figure" : named.figure.reason;
  }
  return figure;
}

// Whether it is one of those that LevelMeter has.
bool IsLevel(const Measure& measure) {
  return measure.version > 0 && measure.needs == audio_measures::kNothing && measure.name != kTempo;
}

// The figures of levels of a file of any length.
std::vector<NamedFigure> StreamLevels(OpenSound& sound, std::span<const std::string_view> names) {
  const RecordingFormat& format = sound.Format();
  std::vector<std::string_view> wanted;
  for (const std::string_view name : names) {
    const Measure& measure = *audio_measures::FindMeasure(name);
    if (format.rate >= measure.lowestRate && format.rate <= measure.highestRate) {
      wanted.push_back(name);
    }
  }
  audio_measures::LevelMeter meter(format.channels, format.rate, sound.FullScale(), wanted);
  uint64_t samples = 0;
  sound.ForEachBlock([&](std::span<const float> block) {
    samples += block.size();
    meter.Add(block);
  });
  const double seconds = static_cast<double>(samples) / format.channels / format.rate;
  const std::vector<NamedFigure> all = meter.Figures();
  std::vector<NamedFigure> figures;
  for (const std::string_view name : names) {
    const Measure& measure = *audio_measures::FindMeasure(name);
    const bool fits = std::ranges::find(wanted, name) != wanted.end();
    const char* const fault = samples == 0                     ? audio_measures::kNoSamples
                              : !fits                          ? audio_measures::kWrongRate
                              : seconds < measure.leastSeconds ? audio_measures::kTooShort
                                                               : nullptr;
    if (fault != nullptr) {
      figures.push_back({name, std::nullopt, audio_measures::Unknown(fault)});
    } else {
      std::ranges::copy_if(all, std::back_inserter(figures),
                           [&](const NamedFigure& each) { return each.name == name; });
    }
  }
  return figures;
}

std::vector<NamedFigure> Measured(const MeasuredSource& source, const MeasuredAgainst& against,
                                  std::span<const std::string_view> names, MeasuredFile& file) {
  MeasuredSound output;
  try {
    OpenSound sound(source.path, source.raw);
    file.format = sound.Format();
    const bool levels = std::ranges::all_of(
        names, [](std::string_view name) { return IsLevel(*audio_measures::FindMeasure(name)); });
    if (levels) return StreamLevels(sound, names);
    output = sound.ReadAll(0);
  } catch (const UnreadableSound& error) {
    throw UnreadableSound{source.path + ": " + error.fault};
  }
  const Beside beside(against, names, output.rate, file.brought);
  return audio_measures::Compute(beside.With(output), names);
}

}  // namespace

std::vector<std::string_view> MeasureNames() {
  std::vector<std::string_view> names;
  for (const Measure& measure : audio_measures::AllMeasures()) names.push_back(measure.name);
  return names;
}

std::optional<std::string_view> UnitOfMeasure(std::string_view name) {
  const Measure* const measure = audio_measures::FindMeasure(name);
  return measure == nullptr ? std::nullopt : std::optional(measure->unit);
}

void CheckMeasureName(const std::string& name, const Scorers& scorers) {
  if (audio_measures::FindMeasure(name) != nullptr) return;
  if (FindScorer(scorers, name) != nullptr) return;
  std::vector<std::string_view> names = MeasureNames();
  for (const Scorer& each : scorers) names.push_back(each.name);
  const auto alike = NamesAlike(name, names);
  throw UsageError{"no measure is called \"" + name + "\"; " +
                   (alike.empty() ? "\"audio_bench measure --list\" names them all"
                                  : "did you mean " + std::string(alike.front()) + "?")};
}

std::vector<std::string> FittingMeasures(const MeasuredAgainst& against) {
  unsigned given = audio_measures::kNothing;
  if (!against.reference.path.empty()) given |= audio_measures::kReference;
  if (!against.far.path.empty()) given |= audio_measures::kFar;
  if (!against.near.path.empty()) given |= audio_measures::kNear;
  if (!against.input.path.empty()) given |= audio_measures::kInput;
  std::vector<std::string> names;
  for (const Measure& measure : audio_measures::AllMeasures()) {
    if (measure.version == 0 || measure.name == kTempo || (measure.needs & ~given) != 0) continue;
    names.emplace_back(measure.name);
  }
  return names;
}

MeasuredFile MeasureFile(const MeasuredSource& output, const MeasuredAgainst& against,
                         const MeasureChoice& choice, const std::function<bool()>& goOn) {
  std::vector<std::string_view> own;
  for (const std::string& name : choice.names) {
    if (FindScorer(choice.scorers, name) == nullptr) own.push_back(name);
  }
  AskTrust(own);
  MeasuredFile file;
  try {
    const std::vector<NamedFigure> figures = Measured(output, against, own, file);
    auto next = figures.begin();
    for (const std::string& name : choice.names) {
      if (const Scorer* const scorer = FindScorer(choice.scorers, name)) {
        file.figures.push_back(Score(*scorer, output, against, goOn));
      }
      for (; next != figures.end() && next->name == name; ++next) {
        file.figures.push_back(FigureOf(output.path, *next));
      }
    }
  } catch (const UnreadableSound& error) {
    file.unreadable = error.fault;
    file.figures = NoFigures(choice, error.fault);
  }
  for (MeasuredFigure& each : file.figures) each.file = output.path;
  return file;
}

std::vector<MeasuredFigure> NoFigures(const MeasureChoice& choice, const std::string& reason) {
  std::vector<MeasuredFigure> figures;
  for (const std::string& name : choice.names) {
    const Scorer* const scorer = FindScorer(choice.scorers, name);
    figures.push_back(scorer == nullptr ? FigureOf("", {name, std::nullopt, {}})
                                        : NoScore(*scorer, reason));
    figures.back().reason = reason;
  }
  return figures;
}

MeasuredFigure RunFigure(std::string_view name, std::optional<double> value,
                         const std::string& reason) {
  MeasuredFigure figure = FigureOf("", {name, std::nullopt, {.value = value}});
  if (!figure.value) figure.reason = reason;
  return figure;
}

}  // namespace host
