#include "replay/compare_runs.h"

#include <algorithm>
#include <map>
#include <utility>

#include "replay/file_change.h"
#include "replay/first_difference.h"

namespace host {

namespace {

// Nothing where it is the same.
std::string OutputDifference(const RecordedFile& before, const FileReport& now,
                             const std::function<bool()>& goOn) {
  if (before.digest == now.digest) return "";
  if (now.digest.empty()) return "is not written any more";
  if (before.digest.empty()) return "was not written before";
  const std::string gone = "differs; where cannot be told, because what it was ";
  const std::string fault = Changed(before.path, before.digest, goOn);
  if (!fault.empty()) return gone + fault + ": " + before.path;
  return FirstDifference(before.path, now.place.path, now.place.use, goOn);
}

// What the routine did in the end, as a report has it.
std::string EndWords(const std::string& end) {
  if (end == "crash") return "crashed";
  return end == "timeout" ? "ran out of time" : "came to its end";
}

std::string Text(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  return value.is_null() ? "not known" : value.dump();
}

// As a report of it would have it.
std::string EndOf(const ChildOutcome& outcome) {
  if (outcome.end == ChildOutcome::End::kCrashed) return "crash";
  return outcome.end == ChildOutcome::End::kTimedOut ? "timeout" : "";
}

// What a fact is: the value itself, or that of an object that has it or a reason.
std::string FactText(const Json& fact) {
  return Text(fact.is_object() ? fact.value("value", Json()) : fact);
}

// The build of each library that answers for the engine, by words for readers.
void AddAnswers(const Json& answers, std::map<std::string, std::string>& facts) {
  for (const Json& one : answers) {
    facts["engine " + one.value("name", "") + ", build id"] =
        FactText(one.value("build_id", Json()));
    facts["engine " + one.value("name", "") + ", SHA-256"] = FactText(one.value("sha256", Json()));
  }
}

// The facts of an origin, by words for readers.
std::map<std::string, std::string> Facts(const Json& report) {
  std::map<std::string, std::string> facts;
  for (const char* const key : {"bench", "engine", "host", "build"}) {
    const Json part = report.value(key, Json::object());
    for (const auto& [name, fact] : part.items()) {
      if (name == "answers") {
        AddAnswers(fact, facts);
      } else {
        facts[std::string(key) + " " + name] = FactText(fact);
      }
    }
  }
  const Json libraries = report.value("libraries", Json::array());
  for (const Json& library : libraries) {
    facts[library.value("name", "")] = FactText(library.value("version", Json::object()));
  }
  return facts;
}

}  // namespace

std::vector<std::string> Differences(const RecordedRun& before, const RunReport& now,
                                     const std::function<bool()>& goOn) {
  std::vector<std::string> lines;
  for (const RecordedFile& output : before.outputs) {
    const auto same = [&output](const FileReport& file) { return file.place.name == output.name; };
    const auto found = std::find_if(now.outputs.begin(), now.outputs.end(), same);
    const std::string difference = found == now.outputs.end()
                                       ? "is no output any more"
                                       : OutputDifference(output, *found, goOn);
    if (!difference.empty()) lines.push_back("output  " + output.name + "  " + difference);
  }
  const std::string end = EndOf(*now.outcome);
  if (end != before.end) {
    lines.push_back("end     the routine " + EndWords(end) + "; before, it " +
                    EndWords(before.end));
  }
  return lines;
}

std::vector<std::string> OtherOrigins(const Json& before, const Json& now) {
  const std::map<std::string, std::string> was = Facts(before);
  std::vector<std::string> lines;
  for (const auto& [name, value] : Facts(now)) {
    const auto found = was.find(name);
    if (found == was.end() || found->second == value) continue;
    std::string line = name;
    line += " is ";
    line += value;
    line += ", was ";
    line += found->second;
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace host
