#include "measure/plot_file.h"

#include <string_view>
#include <vector>

#include "audio_measures/measure.h"
#include "base/printable.h"
#include "measure/beside.h"
#include "measure/plot.h"

namespace host {

namespace {

std::vector<std::string_view> ToldByDefault(const MeasuredAgainst& against) {
  std::vector<std::string_view> names = {"rms"};
  if (!against.reference.path.empty()) names.emplace_back("seg_snr");
  if (!against.far.path.empty() && !against.input.path.empty()) names.emplace_back("erle");
  return names;
}

}  // namespace

std::string PlotFile(const MeasuredSource& output, const MeasuredAgainst& against,
                     std::span<const std::string> asked) {
  std::vector<std::string_view> names;
  for (const std::string& name : asked) {
    if (audio_measures::FindMeasure(name) != nullptr) names.emplace_back(name);
  }
  if (asked.empty()) names = ToldByDefault(against);
  MeasuredSound sound;
  std::string title;
  try {
    OpenSound open(output.path, output.raw);
    title = Printable(output.path) + ": " + open.Format().Words();
    sound = open.ReadAll(0);
  } catch (const UnreadableSound& error) {
    throw UnreadableSound{output.path + ": " + error.fault};
  }
  std::vector<BroughtToRate> brought;
  const Beside beside(against, names, sound.rate, brought);
  Plot plot = {.title = title, .sound = sound};
  for (const std::string_view name : names)
    plot.courses.push_back(CourseOf(beside.With(sound), name));
  return PlotSvg(plot);
}

}  // namespace host
