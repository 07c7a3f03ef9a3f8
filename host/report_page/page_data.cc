#include "report_page/page_data.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/units.h"
#include "compare/comparison_forms.h"
#include "report_page/case_data.h"
#include "report_page/json_values.h"

namespace host {

namespace {

constexpr size_t kMostOfTheSame = 8;  // Cases that carry recordings.
constexpr size_t kMostOfACase = 6;    // Outputs with players.

std::string NameAndVersion(const Json& json) {
  const std::string version = FactText(json, "version");
  const std::string name = TextOf(json, "name");
  return version.empty() ? name : name + " " + version;
}

std::string BenchText(const Json& header) {
  const Json& bench = ValueOf(header, "bench");
  const std::string commit = FactText(bench, "commit");
  return TextOf(bench, "version") + (commit.empty() ? "" : " (" + commit + ")");
}

std::string MachineText(const Json& header) {
  const Json& machine = ValueOf(header, "host");
  const auto count = FactNumber(machine, "processors");
  std::string text = FactText(machine, "cpu");
  if (count) {
    const long processors = std::lround(*count);
    text += (text.empty() ? "" : ", ") + std::to_string(processors) +
            (processors == 1 ? " processor" : " processors");
  }
  return text;
}

std::string TitleOf(const PageRun& run) {
  if (run.report) return TextOf(run.header, "routine");
  const std::string suite = TextOf(run.header, "suite");
  return suite.empty() ? "Routines of the catalogue" : suite;
}

Json AgainstData(const PageRun& run) {
  if (!run.comparison) return {};
  return {{"name", run.against},
          {"verdict", ChangeName(run.comparison->verdict)},
          {"engine", run.comparison->a.engine},
          {"started", run.comparison->a.started}};
}

Json CountsData(const PageRun& run) {
  Json counts = Json::object();
  for (const char* const key : {"pass", "warn", "fail", "error", "skip", "known", "not_run"}) {
    const auto found = run.counts.find(key);
    counts[key] = found == run.counts.end() ? 0 : found->second;
  }
  return counts;
}

std::string WorstOnly(const PageRun& run) {
  const auto gone = run.changes.find("gone");
  const size_t all = run.total + (gone == run.changes.end() ? 0 : gone->second);
  if (all <= run.cases.size()) return "";
  return "The worst " + std::to_string(run.cases.size()) + " of " + std::to_string(all) +
         " cases; the totals are of all.";
}

// The size of a JSON text in the page, where "<" is written as six bytes.
size_t BytesOf(const Json& json) {
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  return text.size() + 5 * static_cast<size_t>(std::ranges::count(text, '<'));
}

// Beside its bytes, a recording has the element that it stands in.
constexpr size_t kElementBytes = 90;

// Why recordings are left out, each with how many.
struct LeftOut {
  size_t size = 0;     // They would make the page too large.
  size_t outputs = 0;  // Their case has many outputs.
  size_t same = 0;     // They are the same as in the other run, and so is what is in the page.

  size_t All() const { return size + outputs + same; }
};

std::string Recordings(size_t count) {
  return std::to_string(count) + (count == 1 ? " recording is" : " recordings are");
}

class RecordingFitter {
 public:
  RecordingFitter(const PageRun& run, const PageLimits& limits, PageData& data)
      : m_run(run), m_limits(limits), m_data(data), m_bytes(BytesOf(data.json)) {}

  void Fit() {
    for (size_t i = 0; i < m_run.cases.size(); ++i) FitCase(i);
    m_data.leftOut = m_leftOut.All();
    m_data.json["left_out"] = LeftOutText();
  }

 private:
  void FitCase(size_t at) {
    const PageCase& one = m_run.cases[at];
    Json& data = m_data.json["cases"][at];
    const CaseReport report(one.record, m_run.folder, m_run.report ? m_run.header : Json());
    const std::vector<PlayedOutput> outputs = PlayedOutputs(m_run, one, report);
    const bool same = one.rank == PageRank::kSame && m_run.comparison;
    const size_t before = m_leftOut.All();
    for (size_t i = 0; i < outputs.size(); ++i) {
      const size_t count = outputs[i].files.size();
      m_data.recordings += count;
      if (!m_limits.all && i >= kMostOfACase) {
        m_leftOut.outputs += count;
      } else if (!m_limits.all && same && m_same >= kMostOfTheSame) {
        m_leftOut.same += count;
      } else if (m_full || !Add(outputs[i], at, i, data)) {
        m_leftOut.size += count;
      }
    }
    if (same && !data["players"].empty()) ++m_same;
    if (const size_t missing = m_leftOut.All() - before; missing > 0) {
      data["notes"].push_back(Recordings(missing) + " left out of this page");
    }
  }

  // False where the recordings have no room.
  bool Add(const PlayedOutput& output, size_t at, size_t number, Json& data) {
    const std::string prefix = std::to_string(at) + "-" + std::to_string(number);
    Player player = MakePlayer(output, m_limits.excerpt, prefix);
    for (const std::string& note : player.notes) data["notes"].push_back(note);
    if (player.json.is_null()) return true;
    size_t bytes = BytesOf(player.json);
    for (const PageAudio& audio : player.audio) bytes += audio.base64.size() + kElementBytes;
    if (!m_limits.all && m_bytes + bytes > m_limits.bytes) {
      m_full = true;
      return false;
    }
    m_bytes += bytes;
    data["players"].push_back(std::move(player.json));
    for (PageAudio& audio : player.audio) m_data.audio.push_back(std::move(audio));
    return true;
  }

  std::string LeftOutText() const {
    if (m_leftOut.All() == 0) return "";
    std::vector<std::string> reasons;
    if (m_leftOut.size > 0) {
      reasons.push_back(std::to_string(m_leftOut.size) + " to stay below " +
                        Amount(m_limits.megabytes, "MB"));
    }
    if (m_leftOut.outputs > 0) {
      reasons.push_back(std::to_string(m_leftOut.outputs) + " of outputs beyond the first " +
                        std::to_string(kMostOfACase) + " of a case");
    }
    if (m_leftOut.same > 0) {
      reasons.push_back(std::to_string(m_leftOut.same) + " of cases that are the same");
    }
    std::string text = std::to_string(m_leftOut.All()) + " of " +
                       std::to_string(m_data.recordings) + " recordings are left out: ";
    for (const std::string& reason : reasons) {
      text += (&reason == &reasons.front() ? "" : ", ") + reason;
    }
    return text + ". --folder writes all.";
  }

  const PageRun& m_run;
  const PageLimits& m_limits;
  PageData& m_data;
  size_t m_bytes;
  size_t m_same = 0;
  LeftOut m_leftOut;
  bool m_full = false;
};

}  // namespace

Json DataWithoutPlayers(const PageRun& run) {
  Json json = {{"version", 1},
               {"title", TitleOf(run)},
               {"sentence", PageSentence(run)},
               {"bench", BenchText(run.header)},
               {"engine", NameAndVersion(ValueOf(run.header, "engine"))},
               {"machine", MachineText(run.header)},
               {"started", TextOf(run.header, "started")},
               {"command", CommandLineOf(TextsOf(run.header, "command"))},
               {"suite", TextOrNull(TextOf(run.header, "suite"))},
               {"against", AgainstData(run)},
               {"counts", CountsData(run)},
               {"measures", Json::array()},
               {"total", run.total},
               {"shown", run.cases.size()},
               {"worst_only", WorstOnly(run)},
               {"left_out", ""},
               {"cases", Json::array()}};
  if (run.comparison) json["measures"] = Json::parse(JsonComparison(*run.comparison))["measures"];
  for (const PageCase& one : run.cases) {
    const CaseReport report(one.record, run.folder, run.report ? run.header : Json());
    json["cases"].push_back(CaseData(one, report));
  }
  return json;
}

PageData MakePageData(const PageRun& run, const PageLimits& limits) {
  PageData data = {.json = DataWithoutPlayers(run)};
  RecordingFitter(run, limits, data).Fit();
  return data;
}

}  // namespace host
