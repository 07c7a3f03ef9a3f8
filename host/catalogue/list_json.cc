#include "base/json_parts.h"
#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"

namespace host {

namespace {

Json FilesJson(const std::vector<FileUse>& uses) {
  Json json = Json::array();
  for (const FileUse& use : uses) {
    Json file = {{"name", use.name}, {"container", ContainerName(use.container)}};
    if (use.container == Container::kHeaderless) file["samples"] = SampleTypeName(use.samples);
    const auto place = KnownPlace(use);
    if (place) file["place"] = *place;
    if (use.rate > 0) file["rate"] = Count(static_cast<uint64_t>(use.rate), "Hz");
    if (use.channels > 0) {
      file["channel_count"] = Count(static_cast<uint64_t>(use.channels), "channels");
    }
    if (use.blockBytes > 0) {
      file["block"] = Count(static_cast<uint64_t>(use.blockBytes), "bytes");
    }
    json.push_back(file);
  }
  return json;
}

Json RowJson(const CatalogueRow& row) {
  return {{"routine", row.declared.words.name},
          {"result", row.declared.words.result},
          {"parameters", row.declared.words.parameters},
          {"group", GroupName(row.group)},
          {"exercises", row.exercises},
          {"helper", row.helper},
          {"built", row.declared.built},
          {"status", Availability(row)},
          {"inputs", FilesJson(row.inputs)},
          {"outputs", FilesJson(row.outputs)},
          {"device", DeviceName(row.device)},
          {"expected_duration", Figure(row.seconds > 0 ? std::optional(row.seconds) : std::nullopt,
                                       "s", "as fast as its input is processed")}};
}

}  // namespace

std::string ListAsJson(const ListFilter& filter) {
  const auto passes = Selector(filter);
  Json rows = Json::array();
  for (const CatalogueRow& row : Catalogue()) {
    if (passes(row)) rows.push_back(RowJson(row));
  }
  return JsonText({{"schema_version", kSchemaVersion}, {"routines", rows}});
}

}  // namespace host
