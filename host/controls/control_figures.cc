#include "controls/control_figures.h"

#include <limits>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "audio_measures/measure.h"
#include "controls/control_material.h"
#include "measure/sound.h"

namespace host {

namespace {

// No channels where there is no such recording.
MeasuredSound ReadSound(const std::string& path) {
  try {
    return OpenSound(path, {}).ReadAll(0);
  } catch (const UnreadableSound&) {
    return {};
  }
}

const char* Direction(audio_measures::Better better) {
  return better == audio_measures::Better::kHigher  ? "higher"
         : better == audio_measures::Better::kLower ? "lower"
                                                    : "none";
}

// The measures that these signals are enough for.
std::vector<std::string_view> NamesFor(const audio_measures::Inputs& inputs) {
  unsigned there = audio_measures::kNothing;
  if (!inputs.reference.Empty()) there |= audio_measures::kReference;
  if (!inputs.input.Empty()) there |= audio_measures::kInput;
  if (!inputs.far.Empty()) there |= audio_measures::kFar;
  std::vector<std::string_view> names;
  for (const audio_measures::Measure& measure : audio_measures::AllMeasures()) {
    const bool enough = (measure.needs & ~there) == 0;
    if (measure.version > 0 && enough) names.push_back(measure.name);
  }
  return names;
}

// The number of a measure's kind in the results.
int KindOf(const std::string_view name, ResultSet& set) {
  const audio_measures::Measure& measure = *audio_measures::FindMeasure(name);
  const MeasureKind kind = {std::string(name), std::string(measure.unit), Direction(measure.better),
                            measure.version};
  for (size_t i = 0; i < set.kinds.size(); ++i) {
    if (set.kinds[i] == kind) return static_cast<int>(i);
  }
  set.kinds.push_back(kind);
  return static_cast<int>(set.kinds.size()) - 1;
}

}  // namespace

void AddControlFigures(ResultSet& set, const std::string& results, const std::string& material) {
  for (ComparedCase& one : set.cases) {
    std::string path = results;
    path += "/cases/" + one.id + "/" + kControlOutput;
    const MeasuredSound output = ReadSound(path);
    if (output.channels.empty()) continue;
    const MeasuredSound input = ReadSound(ControlFile(material, one.id, "in"));
    const MeasuredSound clean = ReadSound(ControlFile(material, one.id, "clean"));
    const MeasuredSound far = ReadSound(ControlFile(material, one.id, "far"));
    audio_measures::Inputs inputs = {.output = output.View(), .input = input.View()};
    inputs.far = far.View();
    inputs.fullScale = output.fullScale;
    // What only passes through should come out as it was; the echo of a call should be gone.
    if (far.channels.empty()) inputs.reference = (clean.channels.empty() ? input : clean).View();
    const std::vector<std::string_view> names = NamesFor(inputs);
    for (const audio_measures::NamedFigure& each : audio_measures::Compute(inputs, names)) {
      one.figures.push_back(
          {.kind = KindOf(each.name, set),
           .file = set.texts.Number(kControlOutput),
           .channel = each.channel.value_or(TextTable::kNone),
           .value = each.figure.value.value_or(std::numeric_limits<double>::quiet_NaN()),
           .truth = std::numeric_limits<double>::quiet_NaN()});
    }
  }
}

}  // namespace host
