#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>

#include "base/usage_error.h"
#include "report/output.h"
#include "suite/suite.h"
#include "suite/suite_folder.h"
#include "suite/suite_journal.h"
#include "suite/suite_results.h"
#include "suite/suite_summary.h"

namespace host {

namespace {

namespace fs = std::filesystem;

struct Part {
  std::string folder;
  std::unique_ptr<SuiteJournal> journal;
};

Shard ShardOf(const Part& part) {
  const Json shard = part.journal->header().value("shard", Json());
  if (!shard.is_object()) throw UsageError{part.folder + " is no shard: it holds a whole suite"};
  return {shard.value("index", size_t{0}), shard.value("of", size_t{0})};
}

// All shards in their order. Throws UsageError when one is missing, is there twice, or is of
// another suite.
std::vector<Part> Open(const std::vector<std::string>& folders) {
  std::map<size_t, Part> parts;
  size_t of = 0;
  std::string selection;
  for (const std::string& folder : folders) {
    Part part = {folder, std::make_unique<SuiteJournal>(folder)};
    const Shard shard = ShardOf(part);
    const std::string digest = part.journal->header().value("selection", "");
    if (!parts.empty() && (shard.of != of || digest != selection)) {
      throw UsageError{folder + " is a shard of another suite than " +
                       parts.begin()->second.folder};
    }
    of = shard.of;
    selection = digest;
    const auto [there, isNew] = parts.emplace(shard.index, std::move(part));
    if (isNew) continue;
    throw UsageError{"shard " + std::to_string(shard.index) + " of " + std::to_string(of) +
                     " is there twice: " + there->second.folder + " and " + folder};
  }
  std::vector<Part> all;
  for (size_t index = 1; index <= of; ++index) {
    const auto there = parts.find(index);
    if (there == parts.end()) {
      throw UsageError{"shard " + std::to_string(index) + " of " + std::to_string(of) +
                       " is missing"};
    }
    all.push_back(std::move(there->second));
  }
  return all;
}

// A case of a part, and its place among all.
struct Place {
  uint64_t index;
  size_t part;
  size_t at;
};

std::vector<Place> Places(const std::vector<Part>& parts) {
  std::vector<Place> places;
  for (size_t part = 0; part < parts.size(); ++part) {
    for (size_t at = 0; at < parts[part].journal->size(); ++at) {
      places.push_back({parts[part].journal->Index(at), part, at});
    }
  }
  std::sort(places.begin(), places.end(),
            [](const Place& a, const Place& b) { return a.index < b.index; });
  const uint64_t chosen = parts.front().journal->header().value("chosen", uint64_t{0});
  for (size_t i = 0; i < places.size(); ++i) {
    if (places[i].index == i) continue;
    const bool twice = i > 0 && places[i].index == places[i - 1].index;
    throw UsageError{twice ? "a case is in two shards: " + parts[places[i].part].folder + " and " +
                                 parts[places[i - 1].part].folder
                           : "case " + std::to_string(i) + " is in no shard"};
  }
  if (places.size() == chosen) return places;
  throw UsageError{"the shards have " + std::to_string(places.size()) + " cases, not " +
                   std::to_string(chosen)};
}

// A path in the folder of a part as one relative to the folder of all.
std::string Moved(const std::string& path, const std::string& from, const std::string& to) {
  if (path.empty()) return path;
  const fs::path whole = fs::absolute(from) / path;
  return whole.lexically_normal().lexically_relative(fs::absolute(to).lexically_normal());
}

Json MovedRecord(Json record, const std::string& from, const std::string& to) {
  record["report"] = Moved(record.value("report", ""), from, to);
  for (Json& output : record["outputs"]) {
    output["path"] = Moved(output.value("path", ""), from, to);
  }
  return record;
}

Json MergedHeader(const std::vector<Part>& parts, const MergeOptions& options) {
  Json header = parts.front().journal->header();
  header["shard"] = Json();
  header["command"] = options.command;
  for (const Part& part : parts) {
    const std::string started = part.journal->header().value("started", "");
    if (started < header.value("started", "")) header["started"] = started;
  }
  return header;
}

}  // namespace

int MergeSuites(const MergeOptions& options) {
  const std::vector<Part> parts = Open(options.folders);
  const std::vector<Place> places = Places(parts);
  const SuiteFolder folder(options.out, false);

  NewLines plan = NewLines::ForPlan(folder.path());
  NewLines cases = NewLines::ForCases(folder.path());
  plan.Add(MergedHeader(parts, options));
  for (const Place& place : places) {
    const Part& part = parts[place.part];
    const Json record = MovedRecord(part.journal->Read(place.at), part.folder, folder.path());
    const bool ended = part.journal->Ended(place.at);
    if (ended) cases.Add(record);
    plan.Add(ended ? Json{{"index", place.index}} : record);
  }
  cases.Publish();
  plan.Publish();
  const SuiteJournal journal(folder.path());
  WriteResults(journal, folder.path());
  const int printed =
      PrintResults(SuiteSummary(journal, folder.path(), Paint(options.color, STDOUT_FILENO)));
  const int exitCode = journal.counts().ExitCode();
  return exitCode != 0 ? exitCode : printed;
}

}  // namespace host
