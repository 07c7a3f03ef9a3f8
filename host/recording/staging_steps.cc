#include "recording/staging_steps.h"

#include <cmath>

#include "base/units.h"
#include "harness/format_name.h"

namespace host {

namespace {

using harness::FormatName;

// Seconds of a file, to the millisecond.
std::string At(double seconds) { return FormatName("%.3f s", seconds); }

StagingStep CutStep(const Cut& cut) {
  const std::string from = cut.start > 0 ? "from " + At(cut.start) : "from the start";
  return {.name = "cut",
          .text = "cut " + from + (cut.seconds ? ", " + At(*cut.seconds) : ""),
          .value = cut.start,
          .unit = "s"};
}

StagingStep ChannelStep(int from, int to, std::optional<ChannelChoice> choice) {
  StagingStep step = {.name = "channels", .value = to, .unit = "1"};
  const std::string own = Channels(from);
  const std::string made = Channels(to);
  if (from == 1) {
    step.text = "copied from mono to " + made;
  } else if (choice == ChannelChoice::kFirst && from > to) {
    step.text = "the first of " + own + ": " + made;
  } else {
    step.text = "the mean of " + own + (to == 1 ? "" : " in each of " + made);
  }
  return step;
}

StagingStep SampleStep(const Rendered& rendered) {
  const bool floats = rendered.to.samples == WrittenForm::Samples::kFloat32;
  const double bits = floats ? 32 : rendered.to.samples == WrittenForm::Samples::kPcm24 ? 24 : 16;
  std::string text = floats ? "32-bit floats" : FormatName("%.0f bits", bits);
  if (rendered.to.kind == WrittenForm::Kind::kVorbis) text = "Vorbis";
  return {.name = rendered.dithered ? "dither" : "samples",
          .text = rendered.dithered ? "dithered to " + text : "written as " + text,
          .value = bits,
          .unit = "bit"};
}

}  // namespace

std::vector<StagingStep> StepsOf(const Rendered& rendered) {
  std::vector<StagingStep> steps;
  if (!rendered.cut.Whole()) steps.push_back(CutStep(rendered.cut));
  if (rendered.from.channels != rendered.to.channels) {
    steps.push_back(ChannelStep(rendered.from.channels, rendered.to.channels, rendered.choice));
  }
  if (rendered.from.rate != rendered.to.rate) {
    steps.push_back({.name = "rate",
                     .text = "resampled from " + std::to_string(rendered.from.rate) + " to " +
                             Hertz(rendered.to.rate),
                     .value = rendered.to.rate,
                     .unit = "Hz"});
  }
  if (rendered.gain < 1) {
    steps.push_back({.name = "softer",
                     .text = Softening(rendered.gain) + " softer, so that nothing clips",
                     .value = -20 * std::log10(rendered.gain),
                     .unit = "dB"});
  }
  steps.push_back(SampleStep(rendered));
  return steps;
}

std::string Softening(double gain) {
  const double decibels = -20 * std::log10(gain);
  return FormatName(decibels < 0.095 ? "%.1g dB" : "%.1f dB", decibels);
}

}  // namespace host
