#include "run/measure_outputs.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "demo/demo_all.h"
#include "files/regular_file.h"
#include "measure/measure_file.h"
#include "measure/sound.h"
#include "run/source_of_output.h"

namespace host {

namespace {

using harness::SoundUse;

// Of every audio output.
constexpr std::string_view kLevels[] = {"peak", "rms", "loudness", "noise_floor"};

// Nobody waits long for figures that he has not asked for: what is longer has none.
constexpr uint64_t kMaxSamples = 60'000'000;

// The form of samples whose place in the file is known.
std::optional<RawForm> FormOf(const AudioLayout& audio) {
  if (!audio.samples || audio.rate <= 0 || audio.bytes == 0) return std::nullopt;
  const bool pcm = *audio.samples == SampleType::kPcm16;
  return RawForm{.rate = audio.rate,
                 .channels = audio.channels,
                 .samples = pcm ? RawForm::Samples::kS16 : RawForm::Samples::kF32,
                 .offset = audio.offset,
                 .bytes = audio.bytes};
}

bool IsShort(const AudioLayout& audio) {
  return audio.frameBytes > 0 && audio.bytes / static_cast<uint64_t>(audio.frameBytes) *
                                         static_cast<uint64_t>(audio.channels) <=
                                     kMaxSamples;
}

// A file of the run as what an output is measured against; nothing where it does not serve.
std::optional<MeasuredSource> SourceOf(const FileReport* file) {
  if (file == nullptr || file->absent || file->changed || !file->problems.empty()) return {};
  if (!file->audio || !IsShort(*file->audio)) return {};
  const auto form = FormOf(*file->audio);
  if (!form) return {};
  return MeasuredSource{.path = file->place.path, .raw = form};
}

// What the case names for this output; nothing where it names none.
std::optional<MeasuredSource> Named(const NamedSources& sources, const FilePlace& output) {
  for (const auto& [name, path] : sources) {
    if (IsCalled(output, name)) return MeasuredSource{.path = path};
  }
  return {};
}

// The first recording that the case names for this output and that is none, and why; else empty.
std::string UnreadableSource(const Case& what, const FilePlace& output) {
  for (const NamedSources* const sources : {&what.reference, &what.far, &what.near}) {
    const auto source = Named(*sources, output);
    if (!source) continue;
    try {
      OpenSound sound(source->path, {});
    } catch (const UnreadableSound& error) {
      return source->path + ": " + error.fault;
    }
  }
  return "";
}

// What is true of a recording of the demo, in the file beside it.
std::optional<MeasuredSource> TruthBeside(const Plan& plan, const FileReport* input) {
  if (!plan.what.demo || input == nullptr) return {};
  const std::string path = plan.what.work + "/" + TruthPlace(input->place.place);
  const std::unique_ptr<FILE, int (*)(FILE*)> file(OpenRegular(path), fclose);
  if (file == nullptr) return {};
  return MeasuredSource{.path = path};
}

// What an output is measured against: what the case names goes before what the row declares.
MeasuredAgainst AgainstWhat(const Plan& plan, const RunReport& report, const FilePlace& output,
                            const SoundUse* sound, size_t place) {
  MeasuredAgainst against;
  const FileReport* const input =
      sound == nullptr ? nullptr : SourceInput(sound->input, place, report.inputs);
  const bool cancels = sound != nullptr && !sound->far.empty();
  against.input = SourceOf(input).value_or(MeasuredSource{});
  if (cancels) {
    against.far =
        SourceOf(SourceInput(sound->far, place, report.inputs)).value_or(MeasuredSource{});
  }
  if (sound != nullptr && sound->faithful) against.reference = against.input;
  if (const auto truth = TruthBeside(plan, input))
    (cancels ? against.near : against.reference) = *truth;
  const std::pair<const NamedSources&, MeasuredSource MeasuredAgainst::*> named[] = {
      {plan.what.reference, &MeasuredAgainst::reference},
      {plan.what.far, &MeasuredAgainst::far},
      {plan.what.near, &MeasuredAgainst::near}};
  for (const auto& [sources, role] : named) {
    if (const auto source = Named(sources, output)) against.*role = *source;
  }
  return against;
}

// Those that the case asks for, computable or not; else what can be computed of the levels, of what
// the row declares, and, where a reference is named for it, of all that needs one.
std::vector<std::string> WantedMeasures(const Plan& plan, const SoundUse* sound,
                                        const FilePlace& output, const MeasuredAgainst& against) {
  if (!plan.what.measures.empty()) return plan.what.measures;
  std::vector<std::string> names(std::begin(kLevels), std::end(kLevels));
  const std::vector<std::string> fitting = FittingMeasures(against);
  if (sound != nullptr) {
    for (const std::string_view name : sound->measures) {
      if (std::ranges::find(fitting, name) != fitting.end()) names.emplace_back(name);
    }
  }
  if (Named(plan.what.reference, output)) {
    for (const std::string_view name : {"si_sdr", "seg_snr", "lsd", "stoi"}) {
      if (std::ranges::find(names, name) == names.end()) names.emplace_back(name);
    }
  }
  return names;
}

void AddRunFigures(RunReport& report) {
  const ChildOutcome& outcome = *report.outcome;
  const auto add = [&](const char* name, std::optional<double> value, const char* reason) {
    report.figures.push_back(RunFigure(name, value, reason));
  };
  const bool returned = outcome.end == ChildOutcome::End::kReturned;
  add("rtf", RealTimeFactor(report),
      returned ? "no audio input to compare with" : "the routine did not return");
  add("cpu", outcome.cpu, "the end of its process was not seen");
  add("peak_memory",
      outcome.peakMemory ? std::optional(static_cast<double>(*outcome.peakMemory)) : std::nullopt,
      "the end of its process was not seen");
}

}  // namespace

void MeasureOutputs(const Plan& plan, Limits& limits, RunReport& report) {
  if (!plan.WantsDigests()) return;
  AddRunFigures(report);
  const auto goOn = [&] { return limits.Check() == Limits::Stop::kNone; };
  std::map<const SoundUse*, size_t> places;
  for (FileReport& file : report.outputs) {
    const SoundUse* const sound = harness::FindSound(plan.row->sounds, file.place.use.name);
    const size_t place = places[sound]++;
    if (file.state != OutputState::kWritten || file.changed || !file.audio || !file.figures)
      continue;
    if (sound != nullptr && !sound->noSound.empty()) continue;
    const auto form = FormOf(*file.audio);
    if (!form) continue;
    if (limits.Check() != Limits::Stop::kNone) return;
    const MeasuredAgainst against = AgainstWhat(plan, report, file.place, sound, place);
    file.against = {.reference = against.reference.path,
                    .input = against.input.path,
                    .far = against.far.path,
                    .near = against.near.path};
    const std::vector<std::string> names = WantedMeasures(plan, sound, file.place, against);
    const MeasureChoice choice = {names, plan.what.scorers};
    file.uncompared = UnreadableSource(plan.what, file.place);
    const bool brief = IsShort(*file.audio);
    MeasuredFile measured;
    if (brief) {
      measured = MeasureFile({.path = file.place.path, .raw = form}, against, choice, goOn);
    } else {
      measured.figures = NoFigures(choice, "longer than what a run measures");
    }
    if (file.uncompared.empty()) file.uncompared = measured.unreadable;
    for (MeasuredFigure& figure : measured.figures) {
      figure.file = file.place.name;
      report.figures.push_back(std::move(figure));
    }
  }
}

}  // namespace host
