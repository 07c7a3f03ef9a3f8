#include <algorithm>

#include "base/json_parts.h"
#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"
#include "engines/engine_text.h"

namespace host {

namespace {

// Raised when a key is left out or changes its meaning.
constexpr int kListVersion = 3;

// A figure of a declared file; 0 means that there is none.
Json Declared(int value, const char* unit, const char* reason) {
  return value > 0 ? Count(static_cast<uint64_t>(value), unit) : Figure(std::nullopt, unit, reason);
}

Json TextOrNull(std::string_view text) { return text.empty() ? Json() : Json(text); }

// The rates that are taken: a set, or the limits of all that are; null where the words of a run
// say, and of what is no audio.
Json RatesJson(const FileUse& use) {
  if (use.container == Container::kOther || !use.formatOf.empty()) return {};
  std::vector<int> rates(use.treated.rates.begin(), use.treated.rates.end());
  if (use.rate > 0) rates = {use.rate};
  if (use.alsoRight.rate > 0) rates.push_back(use.alsoRight.rate);
  if (!rates.empty()) return {{"set", rates}, {"unit", "Hz"}};
  const int least = std::max(use.leastRate, use.treated.leastRate);
  return {{"least", least > 0 ? Json(least) : Json()},
          {"most", use.treated.mostRate > 0 ? Json(use.treated.mostRate) : Json()},
          {"unit", "Hz"}};
}

// The same of channels.
Json ChannelCountsJson(const FileUse& use) {
  if (use.container == Container::kOther || !use.formatOf.empty()) return {};
  std::vector<int> counts;
  if (use.channels > 0) counts.push_back(use.channels);
  if (use.alsoRight.channels > 0) counts.push_back(use.alsoRight.channels);
  if (!counts.empty()) return {{"set", counts}};
  const int most = use.treated.mostChannels;
  return {{"least", 1}, {"most", most > 0 ? Json(most) : Json()}};
}

Json FileJson(const FileGroup& group) {
  const FileUse& use = group.use;
  const bool headerless = use.container == Container::kHeaderless;
  const char* const elsewhere =
      use.container == Container::kOther ? "not audio" : "stands in the header";
  const auto place = KnownPlace(use);
  return {{"name", use.name},
          {"pattern", use.pattern.empty() ? Json() : Json(use.pattern)},
          {"file_count", Count(group.files, "files")},
          {"place", place ? Json(*place) : Json()},
          {"container", ContainerName(use.container)},
          {"samples", headerless ? Json(SampleTypeName(use.samples)) : Json()},
          {"rate", Declared(use.rate, "Hz", elsewhere)},
          {"channel_count", Declared(use.channels, "channels", elsewhere)},
          {"rates", RatesJson(use)},
          {"channel_counts", ChannelCountsJson(use)},
          {"block", Declared(use.blockBytes, "bytes", "none is needed, or the header decides")},
          {"optional", use.optional},
          {"without", TextOrNull(use.without)},
          {"may_be_empty", use.mayBeEmpty},
          {"appended", use.appended},
          {"part_read", TextOrNull(use.partRead)},
          {"remark", use.remark.empty() ? Json() : Json(use.remark)}};
}

Json FilesJson(const std::vector<FileUse>& uses) {
  Json json = Json::array();
  for (const FileGroup& group : GroupFiles(uses)) json.push_back(FileJson(group));
  return json;
}

Json ParametersJson(const harness::Words& words) {
  Json json = Json::array();
  for (const harness::Parameter& parameter : harness::Parameters(words)) {
    json.push_back({{"type", parameter.type}, {"name", parameter.name}});
  }
  return json;
}

Json DurationJson(const CatalogueRow& row) {
  if (row.seconds > 0) return Figure(row.seconds, "s", "");
  return Figure(std::nullopt, "s", "as fast as its input is processed");
}

// The status as `describe` gives it.
std::string Status(const CatalogueRow& row, const Engine* only) {
  const std::string lacking = LackingHere(row, only);
  return lacking.empty() ? Availability(row) : "lacking: " + lacking;
}

Json UnusedJson(const CatalogueRow& row) {
  Json json = Json::array();
  for (const harness::UnusedArgument& unused : row.unused) {
    json.push_back({{"parameter", unused.parameter}, {"instead", unused.instead}});
  }
  return json;
}

Json CodecIdsJson(const CatalogueRow& row) {
  if (row.codecIds == nullptr) return {};
  Json json = Json::array();
  for (const harness::CodecId& each : row.codecIds()) {
    json.push_back({{"id", each.id},
                    {"codec", each.codec},
                    {"rate", Count(static_cast<uint64_t>(each.rate), "Hz")},
                    {"channel_count", Count(static_cast<uint64_t>(each.channels), "channels")},
                    {"bit_rate", Count(static_cast<uint64_t>(each.bitRate), "bit/s")},
                    {"header", each.header},
                    {"lacking", TextOrNull(each.lacking)}});
  }
  return json;
}

Json RowJson(const CatalogueRow& row, const RunFiles& files, const Engine* only) {
  const harness::Words& words = row.declared.words;
  return {{"routine", words.name},
          {"result", words.result},
          {"parameters", ParametersJson(words)},
          {"group", GroupWord(row.group)},
          {"exercises", row.exercises},
          {"helper", row.helper},
          {"called_by", row.calledBy.empty() ? Json() : Json(row.calledBy)},
          {"available", CanBeRun(row, only)},
          {"status", Status(row, only)},
          {"inputs", FilesJson(files.inputs)},
          {"outputs", FilesJson(files.outputs)},
          {"device", DeviceName(row)},
          {"expected_duration", DurationJson(row)}};
}

}  // namespace

std::string ListAsJson(const ListFilter& filter, const Engine& engine) {
  const auto passes = Selector(filter);
  Json rows = Json::array();
  for (const CatalogueRow& row : Catalogue()) {
    if (passes(row)) rows.push_back(RowJson(row, {row.inputs, row.outputs}, filter.only));
  }
  return JsonText(
      {{"schema_version", kListVersion}, {"engine", EngineJson(engine)}, {"routines", rows}});
}

std::string DescribeAsJson(std::string_view routine, std::span<const std::string> arguments,
                           const Engine* only) {
  const CatalogueRow& row = FindRow(routine);
  Json json = {{"schema_version", kListVersion},
               {"arguments", std::vector<std::string>(arguments.begin(), arguments.end())}};
  json.update(RowJson(row, FilesOf(row, arguments), only));
  json["unused"] = UnusedJson(row);
  json["codec_ids"] = CodecIdsJson(row);
  return JsonText(json);
}

}  // namespace host
