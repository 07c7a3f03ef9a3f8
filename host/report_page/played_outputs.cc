#include <algorithm>
#include <cmath>
#include <filesystem>

#include "report_page/case_data.h"
#include "report_page/json_values.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// The files of one case, of which players are made.
class OutputFinder {
 public:
  OutputFinder(const PageRun& run, const PageCase& one, const CaseReport& report)
      : m_run(run),
        m_one(one),
        m_report(report),
        m_before(one.before, run.againstFolder,
                 run.comparison && run.comparison->a.report ? run.againstHeader : Json()) {}

  std::vector<PlayedOutput> Find() {
    std::vector<PlayedOutput> outputs;
    size_t at = 0;
    for (const Json& output : ListOf(m_one.record, "outputs")) {
      const std::string name = TextOf(output, "name");
      const Json entry = m_report.Output(name);
      if (TextOf(entry, "container") != "other") outputs.push_back(Output(output, entry, at));
      ++at;
    }
    std::ranges::stable_sort(outputs, {}, [](const PlayedOutput& each) { return Urgency(each); });
    return outputs;
  }

 private:
  static int Urgency(const PlayedOutput& output) {
    int urgency = 3;
    for (const GuardMark& mark : output.marks) {
      urgency = std::min(urgency, mark.fails ? 0 : mark.isNew ? 1 : 2);
    }
    return urgency;
  }

  PlayedOutput Output(const Json& output, const Json& entry, size_t at) {
    const std::string name = TextOf(output, "name");
    PlayedOutput played = {.title = name};
    const std::string path = (fs::path(m_run.folder) / TextOf(output, "path")).string();
    played.files.push_back({"output", "Output", name, m_report.Source(path, entry)});
    AddMarks(name, played);
    AddSources(entry, played);
    AddBefore(name, at, played);
    return played;
  }

  void AddMarks(const std::string& name, PlayedOutput& played) {
    for (const Json& guard : ListOf(m_one.record, "guards")) {
      const auto at = NumberOf(guard, "at");
      if (TextOf(guard, "file") != name || !at || !std::isfinite(*at)) continue;
      const auto channel = NumberOf(guard, "channel");
      played.marks.push_back(
          {.at = std::max(0.0, *at),
           .channel = channel ? std::optional(static_cast<int>(*channel)) : std::nullopt,
           .name = TextOf(guard, "name"),
           .fails = FlagOf(guard, "fails"),
           .isNew = IsNewGuard(m_one, guard)});
    }
  }

  void Add(const char* key, const char* label, const std::string& path, PlayedOutput& played) {
    if (path.empty()) return;
    const Json entry = m_report.Input(path);
    const std::string known = TextOf(entry, "name");
    const std::string name = known.empty() ? path.substr(path.find_last_of('/') + 1) : known;
    played.files.push_back({key, label, name, m_report.Source(m_report.PathOf(path), entry)});
  }

  // What the output was measured against; without that, the only input that is audio.
  void AddSources(const Json& entry, PlayedOutput& played) {
    const Json& against = ValueOf(entry, "measured_against");
    const std::string reference = TextOf(against, "reference");
    std::string input = TextOf(against, "input");
    played.faithful = !reference.empty() && reference == input;
    if (input.empty() && reference.empty()) input = OnlyInput();
    Add("input", played.faithful ? "Input, its reference" : "Input", input, played);
    if (!played.faithful) Add("reference", "Reference", reference, played);
    Add("near", "Near end", TextOf(against, "near"), played);
    Add("far", "Far end", TextOf(against, "far"), played);
  }

  std::string OnlyInput() const {
    std::string only;
    for (const Json& input : ListOf(m_report.json(), "inputs")) {
      const bool audio = TextOf(input, "container") != "other" && FactNumber(input, "rate");
      if (!audio) continue;
      if (!only.empty()) return "";
      only = TextOf(input, "path");
    }
    return only;
  }

  // The same output of the other run: of two runs that at the same place.
  void AddBefore(const std::string& name, size_t at, PlayedOutput& played) {
    if (m_one.before.is_null()) return;
    const Json::array_t& outputs = ListOf(m_one.before, "outputs");
    const bool byPlace = m_run.report && outputs.size() == ListOf(m_one.record, "outputs").size();
    for (size_t i = 0; i < outputs.size(); ++i) {
      const std::string other = TextOf(outputs[i], "name");
      if (byPlace ? i != at : other != name) continue;
      const std::string path = TextOf(outputs[i], "path");
      // A baseline has no files.
      if (path.empty()) return;
      const std::string whole = (fs::path(m_run.againstFolder) / path).string();
      played.files.push_back(
          {"against", m_run.against, other, m_before.Source(whole, m_before.Output(other))});
      return;
    }
  }

  const PageRun& m_run;
  const PageCase& m_one;
  const CaseReport& m_report;
  CaseReport m_before;
};

}  // namespace

std::vector<PlayedOutput> PlayedOutputs(const PageRun& run, const PageCase& one,
                                        const CaseReport& report) {
  return OutputFinder(run, one, report).Find();
}

}  // namespace host
