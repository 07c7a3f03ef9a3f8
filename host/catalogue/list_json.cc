#include "base/json_parts.h"
#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"

namespace host {

namespace {

// Raised when a key is left out or changes its meaning.
constexpr int kListVersion = 3;

// A figure of a declared file; 0 means that there is none.
Json Declared(int value, const char* unit, const char* reason) {
  return value > 0 ? Count(static_cast<uint64_t>(value), unit) : Figure(std::nullopt, unit, reason);
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
          {"block", Declared(use.blockBytes, "bytes", "none is needed, or the header decides")},
          {"optional", use.optional},
          {"may_be_empty", use.mayBeEmpty},
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
std::string Status(const CatalogueRow& row) {
  const std::string lacking = LackingHere(row);
  return lacking.empty() ? Availability(row) : "lacking: " + lacking;
}

Json RowJson(const CatalogueRow& row) {
  const harness::Words& words = row.declared.words;
  return {{"routine", words.name},
          {"result", words.result},
          {"parameters", ParametersJson(words)},
          {"group", GroupWord(row.group)},
          {"exercises", row.exercises},
          {"helper", row.helper},
          {"called_by", row.calledBy.empty() ? Json() : Json(row.calledBy)},
          {"available", CanBeRun(row)},
          {"status", Status(row)},
          {"inputs", FilesJson(row.inputs)},
          {"outputs", FilesJson(row.outputs)},
          {"device", DeviceName(row)},
          {"expected_duration", DurationJson(row)}};
}

}  // namespace

std::string ListAsJson(const ListFilter& filter) {
  const auto passes = Selector(filter);
  Json rows = Json::array();
  for (const CatalogueRow& row : Catalogue()) {
    if (passes(row)) rows.push_back(RowJson(row));
  }
  return JsonText({{"schema_version", kListVersion}, {"routines", rows}});
}

}  // namespace host
