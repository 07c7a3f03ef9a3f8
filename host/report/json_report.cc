#include "base/json_parts.h"
#include "base/units.h"
#include "catalogue/catalogue_text.h"
#include "report/report.h"

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

Json CopyJson(const WaveCopy& copy) {
  Json json = {{"path", copy.path}, {"attenuation", Figure(copy.attenuation, "dB", "")}};
  if (!copy.problem.empty()) json["problem"] = copy.problem;
  return json;
}

Json FileJson(const FileReport& file) {
  Json json = {{"name", file.place.name},
               {"path", file.place.path},
               {"container", ContainerName(file.place.use.container)},
               {"size", file.bytes ? Count(*file.bytes, "bytes")
                                   : Figure(std::nullopt, "bytes", "not looked at")}};
  if (file.audio) {
    json["samples"] = file.audio->samples ? Json(SampleTypeName(*file.audio->samples)) : Json();
    json["duration"] = Figure(file.audio->Seconds(), "s", "");
    json["rate"] = Count(static_cast<uint64_t>(file.audio->rate), "Hz");
    json["channel_count"] = Count(static_cast<uint64_t>(file.audio->channels), "channels");
  }
  if (file.channels) {
    const int count = static_cast<int>(file.channels->size());
    Json channels = Json::array();
    for (int i = 0; i < count; ++i) {
      channels.push_back(
          ChannelJson((*file.channels)[static_cast<size_t>(i)], ChannelName(i, count)));
    }
    json["channels"] = channels;
  }
  if (file.copy) json["wave_copy"] = CopyJson(*file.copy);
  return json;
}

Json FilesJson(const std::vector<FileReport>& files) {
  Json json = Json::array();
  for (const FileReport& file : files) json.push_back(FileJson(file));
  return json;
}

// The figures of the run itself, or why there are none.
void AddRun(const RunReport& report, Json& json) {
  std::optional<double> elapsed;
  std::optional<double> cpu;
  const char* reason = "not run";
  if (report.outcome) {
    elapsed = report.outcome->elapsed;
    cpu = report.outcome->cpu;
    json["peak_memory"] = Count(report.outcome->peakMemory, "bytes");
    reason = "no audio input to compare with";
  } else {
    json["peak_memory"] = Figure(std::nullopt, "bytes", reason);
  }
  json["elapsed"] = Figure(elapsed, "s", reason);
  json["cpu"] = Figure(cpu, "s", reason);
  json["rtf"] = Figure(RealTimeFactor(report), "1", reason);
}

}  // namespace

std::string JsonReport(const RunReport& report) {
  Json json = {{"schema_version", kSchemaVersion},
               {"routine", report.routine.empty() ? Json() : Json(report.routine)},
               {"arguments", report.arguments},
               {"verdict", VerdictName(report.judgement.verdict)},
               {"reason", nullptr},
               {"exit_code", nullptr}};
  const Problem* const worst = report.judgement.Worst();
  const bool ended = worst == nullptr || worst->cause != Cause::kUnfinished;
  if (ended) json["exit_code"] = report.judgement.exitCode;
  if (!report.judgement.reason.empty()) json["reason"] = report.judgement.reason;
  AddRun(report, json);
  json["log"] = report.log.empty() ? Json() : Json(report.log);
  json["inputs"] = FilesJson(report.inputs);
  json["outputs"] = FilesJson(report.outputs);
  return JsonText(json);
}

}  // namespace host
