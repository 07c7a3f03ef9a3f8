#include "recording/staged_record.h"

#include <sys/stat.h>

#include <algorithm>

#include "base/json_parts.h"
#include "files/regular_file.h"
#include "files/whole_file.h"

namespace host {

namespace {

constexpr int kRecordVersion = 1;
constexpr size_t kMaxRecordBytes = 100'000'000;

std::string RecordPath(const std::string& workspace) { return workspace + "/" + kStagedRecord; }

StagedFile FromJson(const Json& json) {
  StagedFile file = {.place = json.at("place"),
                     .digest = json.at("sha256"),
                     .bytes = json.at("bytes"),
                     .source = json.at("source"),
                     .sourceDigest = json.at("source_sha256"),
                     .was = json.at("was")};
  for (const Json& one : json.at("steps")) {
    StagingStep step = {.name = one.at("step"), .text = one.at("text")};
    if (one.contains("value")) step.value = one["value"].get<double>();
    step.unit = one.value("unit", "");
    file.steps.push_back(std::move(step));
  }
  return file;
}

}  // namespace

Json StagedJson(const StagedFile& file) {
  Json steps = Json::array();
  for (const StagingStep& step : file.steps) {
    Json one = {{"step", step.name}, {"text", step.text}};
    if (step.value) one["value"] = *step.value;
    if (!step.unit.empty()) one["unit"] = step.unit;
    steps.push_back(one);
  }
  return {{"place", file.place},   {"sha256", file.digest}, {"bytes", file.bytes},
          {"source", file.source}, {"was", file.was},       {"source_sha256", file.sourceDigest},
          {"steps", steps}};
}

std::string StagedFile::Line() const {
  std::string line = "staged  " + place + "  from " + source + " (" + was + "): ";
  for (size_t i = 0; i < steps.size(); ++i) line += (i > 0 ? ", " : "") + steps[i].text;
  return line;
}

std::vector<StagedFile> ReadStagedRecord(const std::string& workspace) {
  const TextRead read = ReadText(RecordPath(workspace), kMaxRecordBytes, [] { return true; });
  if (!read.fault.empty()) return {};
  try {
    std::vector<StagedFile> files;
    const Json record = Json::parse(read.text);
    for (const Json& file : record.at("files")) files.push_back(FromJson(file));
    return files;
  } catch (const Json::exception&) {  // Not ours.
    return {};
  }
}

bool AddToStagedRecord(const std::string& workspace, const std::vector<StagedFile>& files) {
  std::vector<StagedFile> all = ReadStagedRecord(workspace);
  for (const StagedFile& file : files) {
    const auto same = [&file](const StagedFile& other) { return other.place == file.place; };
    const auto found = std::find_if(all.begin(), all.end(), same);
    if (found != all.end()) {
      *found = file;
    } else {
      all.push_back(file);
    }
  }
  Json list = Json::array();
  for (const StagedFile& file : all) list.push_back(StagedJson(file));
  const Json record = {{"schema_version", kRecordVersion}, {"files", list}};
  const mode_t mask = umask(0);
  umask(mask);
  return ReplaceFile(RecordPath(workspace), 0666U & ~mask, JsonText(record));
}

}  // namespace host
