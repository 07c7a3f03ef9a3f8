#include <string>

#include "base/json_parts.h"
#include "base/units.h"
#include "catalogue/catalogue_text.h"
#include "recording/staged_record.h"
#include "report/built_with.h"
#include "report/environment.h"
#include "report/figure_json.h"
#include "report/libraries.h"
#include "report/origin.h"
#include "report/report.h"
#include "results/schema_versions.h"

namespace host {

namespace {

Json ChannelJson(const ChannelFigures& figures, const std::string& name) {
  const char* const silent =
      figures.samples == figures.notFinite ? "no finite sample" : "silence has no level";
  return {{"channel", name},
          {"peak", Figure(figures.PeakLevel(), "dBFS", silent)},
          {"rms", Figure(figures.RmsLevel(), "dBFS", silent)},
          {"not_finite", Count(figures.notFinite, "samples")}};
}

Json ChannelsJson(const FileReport& file, const std::string& reason) {
  if (!file.channels) return NoFact(reason);
  const int count = static_cast<int>(file.channels->size());
  Json channels = Json::array();
  for (int i = 0; i < count; ++i) {
    channels.push_back(
        ChannelJson((*file.channels)[static_cast<size_t>(i)], ChannelName(i, count)));
  }
  return {{"value", channels}};
}

Json CopyJson(const std::optional<WaveCopy>& copy) {
  if (!copy) return NoFact("not asked for, or nothing to copy");
  if (!copy->problem.empty()) return NoFact(copy->problem);
  return {{"value", {{"path", copy->path}, {"attenuation", Figure(copy->attenuation, "dB", "")}}}};
}

// The reason to give for a figure of the file that is unknown.
std::string NoAudioReason(const FileReport& file) {
  if (file.absent) return "absent";
  if (!file.bytes) return "not looked at";
  if (file.place.use.container == Container::kOther) return "not audio";
  if (!file.audio && file.place.use.container == Container::kRecording) return "not a WAVE file";
  if (!file.audio) return "not the audio that it should be";
  if (!file.figures) return "figures of a list are made with --figures";
  return file.unmeasured.empty() ? "not measured" : file.unmeasured;
}

// What an input was made of.
Json StagedFileJson(const FileReport& file) {
  if (!file.staged) return NoFact("it was not put there from a recording");
  return {{"value", StagedJson(*file.staged)}};
}

Json CausesJson(const std::vector<Problem>& problems) {
  Json json = Json::array();
  for (const Problem& problem : problems) json.push_back(CauseName(problem.cause));
  return json;
}

Json FileJson(const FileReport& file) {
  const std::string reason = NoAudioReason(file);
  const std::optional<AudioLayout>& audio = file.audio;
  const auto whole = [&](int AudioLayout::*member, const char* unit) {
    return audio ? Count(static_cast<uint64_t>((*audio).*member), unit)
                 : Figure(std::nullopt, unit, reason);
  };
  const bool decoded = audio && audio->samples;
  return {
      {"name", file.place.name},
      {"path", file.place.path},
      {"pattern", file.place.use.pattern},
      {"problems", CausesJson(file.problems)},
      {"container", ContainerName(file.place.use.container)},
      {"sha256", Fact(file.digest, file.absent ? "absent" : file.undigested)},
      {"size", file.bytes ? Count(*file.bytes, "bytes") : Figure(std::nullopt, "bytes", reason)},
      {"samples", decoded ? Fact(std::string(SampleTypeName(*audio->samples)), "")
                          : NoFact(audio ? "of another type" : reason)},
      {"duration", Figure(audio ? std::optional(audio->Seconds()) : std::nullopt, "s", reason)},
      {"rate", whole(&AudioLayout::rate, "Hz")},
      {"channel_count", whole(&AudioLayout::channels, "channels")},
      {"channels", ChannelsJson(file, audio && !decoded ? "of another type" : reason)},
      {"wave_copy", CopyJson(file.copy)}};
}

// A number, or null where it is none.
Json Number(std::optional<double> value) { return value ? Json(*value) : Json(); }

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json ResultsJson(const std::vector<Result>& results) {
  Json json = Json::array();
  for (const Result& result : results) {
    json.push_back({{"name", result.name},
                    {"value", Number(result.value)},
                    {"unit", result.unit},
                    {"better", BetterName(result.better)},
                    {"file", TextOrNull(result.file)},
                    {"reason", TextOrNull(result.reason)}});
    if (result.truth) json.back()["truth"] = *result.truth;
  }
  return json;
}

// Those of a file, or of the run as a whole where that is null.
void AddGuards(const std::vector<GuardHit>& guards, const Json& file, Json& json) {
  for (const GuardHit& hit : guards) {
    json.push_back({{"name", hit.Name()},
                    {"file", file},
                    {"at", Number(hit.at)},
                    {"channel", hit.channel ? Json(*hit.channel) : Json()},
                    {"fails", hit.fails}});
  }
}

Json GuardsJson(const RunReport& report) {
  Json json = Json::array();
  AddGuards(report.guards, Json(), json);
  for (const auto* const files : {&report.inputs, &report.outputs}) {
    for (const FileReport& file : *files) AddGuards(file.guards, file.place.name, json);
  }
  return json;
}

Json InputsJson(const std::vector<FileReport>& files) {
  Json json = Json::array();
  for (const FileReport& file : files) {
    json.push_back(FileJson(file));
    json.back()["staged"] = StagedFileJson(file);
  }
  return json;
}

Json AgainstJson(const MeasuredPaths& against) {
  return {{"reference", TextOrNull(against.reference)},
          {"input", TextOrNull(against.input)},
          {"far", TextOrNull(against.far)},
          {"near", TextOrNull(against.near)}};
}

Json OutputsJson(const std::vector<FileReport>& files) {
  Json json = Json::array();
  for (const FileReport& file : files) {
    json.push_back(FileJson(file));
    json.back()["measured_against"] = AgainstJson(file.against);
  }
  return json;
}

Json BuildJson() {
  return {{"compiler", built_with::kCompiler},
          {"type", built_with::kType},
          {"flags", Fact(built_with::kFlags, "none")}};
}

Json SignalJson(const Problem* problem) {
  if (problem == nullptr || problem->signal == 0) return NoFact("no signal has ended the run");
  return {{"value", problem->signal}};
}

Json ProblemsJson(const Judgement& judgement) {
  Json json = Json::array();
  for (const Problem& problem : judgement.problems) {
    json.push_back({{"cause", CauseName(problem.cause)}, {"text", problem.text}});
  }
  return json;
}

void AddVerdict(const Judgement& judgement, Json& json) {
  const Problem* const worst = judgement.Worst();
  const bool ended = worst == nullptr || worst->cause != Cause::kUnfinished;
  json["verdict"] = VerdictName(judgement.verdict);
  json["exit_code"] = ended ? Json(judgement.exitCode) : Json();
  json["cause"] = worst == nullptr ? "none" : CauseName(worst->cause);
  json["signal"] = SignalJson(worst);
  json["reason"] = judgement.reason;
  json["problems"] = ProblemsJson(judgement);
}

// Adds times, memory and real-time factor; null with the reason when there was no run.
void AddFigures(const RunReport& report, Json& json) {
  const std::optional<ChildOutcome>& outcome = report.outcome;
  const char* const reason = outcome ? "no audio input to compare with" : "not run";
  const auto seconds = [&](double ChildOutcome::*member) {
    return outcome ? Figure((*outcome).*member, "s", "not finite")
                   : Figure(std::nullopt, "s", reason);
  };
  json["elapsed"] = seconds(&ChildOutcome::elapsed);
  const char* const unwatched = outcome ? "the end of its process was not seen" : reason;
  json["cpu"] = Figure(outcome ? outcome->cpu : std::nullopt, "s", unwatched);
  const bool returned = !outcome || outcome->end == ChildOutcome::End::kReturned;
  json["ran_on"] = returned ? seconds(&ChildOutcome::ranOn)
                            : Figure(std::nullopt, "s", "the routine did not return");
  const auto gaps = [&](uint64_t DeviceGaps::*member, const char* unit) {
    if (outcome && outcome->deviceGaps) return Count((*outcome->deviceGaps).*member, unit);
    return Figure(std::nullopt, unit,
                  !outcome   ? reason
                  : returned ? "the engine does not tell"
                             : "the routine did not return");
  };
  json["underruns"] = gaps(&DeviceGaps::underruns, "underruns");
  json["overruns"] = gaps(&DeviceGaps::overruns, "overruns");
  json["rtf"] =
      Figure(RealTimeFactor(report), "1", returned ? reason : "the routine did not return");
  json["peak_memory"] = outcome && outcome->peakMemory ? Count(*outcome->peakMemory, "bytes")
                                                       : Figure(std::nullopt, "bytes", unwatched);
}

}  // namespace

std::string JsonReport(const RunReport& report) {
  Json json = {{"schema_version", kReportSchema}};
  json.update(OriginJson(report.engine));
  json["build"] = BuildJson();
  json["libraries"] = LibrariesJson();
  json["environment"] = EnvironmentJson();
  json["started"] = report.started;
  json["directory"] = report.directory;
  json["command"] = report.command;
  json["workspace"] = report.workspace;
  json["time_limit"] =
      Figure(report.timeout > 0 ? std::optional(report.timeout) : std::nullopt, "s",
             report.timeout > 0 ? "there is none with --debug" : "the command line was refused");
  json["routine"] = report.routine;
  json["arguments"] = report.arguments;
  AddVerdict(report.judgement, json);
  AddFigures(report, json);
  json["log"] = report.log;
  json["results"] = ResultsJson(report.results);
  json["figures"] = Json::array();
  for (const MeasuredFigure& each : report.figures) json["figures"].push_back(FigureJson(each));
  json["guards"] = GuardsJson(report);
  json["inputs"] = InputsJson(report.inputs);
  json["outputs"] = OutputsJson(report.outputs);
  return JsonText(json);
}

}  // namespace host
