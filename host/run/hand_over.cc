#include "run/hand_over.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "recording/delivery.h"
#include "run/stopped.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// Whether an output is what the routine left at its end, and has no flaw.
bool IsWhole(const RunReport& report, const FileReport& output) {
  using End = ChildOutcome::End;
  const bool ended = report.outcome && (report.outcome->end == End::kReturned ||
                                        report.outcome->end == End::kStopped);
  const bool there = output.state == OutputState::kWritten ||
                     (output.state == OutputState::kEmpty && output.place.use.mayBeEmpty);
  return ended && there &&
         std::all_of(output.problems.begin(), output.problems.end(),
                     [](const Problem& problem) { return IsWarning(problem.cause); });
}

std::string StepsText(const std::vector<StagingStep>& steps) {
  std::string text;
  for (const StagingStep& step : steps) text += (text.empty() ? "" : ", ") + step.text;
  return text;
}

class HandingOver {
 public:
  HandingOver(const Plan& plan, const RunReport& report, Limits& limits)
      : m_plan(plan), m_report(report), m_limits(limits) {}

  void Run() {
    for (const NamedFile& taker : m_plan.takers.files) {
      if (taker.index < m_report.outputs.size() &&
          IsWhole(m_report, m_report.outputs[taker.index])) {
        Write(taker.index, taker.path);
      } else {
        Leave(taker.index, taker.path);
      }
    }
    for (const std::string& folder : m_plan.takers.folders) {
      for (size_t i = 0; i < m_report.outputs.size(); ++i) InFolder(i, folder);
    }
  }

  const std::vector<HandedOver>& files() const { return m_files; }
  const std::vector<Problem>& problems() const { return m_problems; }

 private:
  void InFolder(size_t index, const std::string& folder) {
    const FileReport& output = m_report.outputs[index];
    if (output.place.use.pattern.empty() || !IsWhole(m_report, output)) return;
    const bool named = std::any_of(m_files.begin(), m_files.end(), [index](const HandedOver& file) {
      return file.output == index;
    });
    if (named) return;
    const std::string to = folder + "/" + output.place.place;
    std::error_code error;  // Told when the file cannot be written.
    fs::create_directories(fs::path(to).parent_path(), error);
    Write(index, to);
  }

  void Write(size_t index, const std::string& to) {
    const FileReport& output = m_report.outputs[index];
    const DeliveredOutput delivered = {
        .path = output.place.path, .container = output.place.use.container, .audio = output.audio};
    const Delivery made =
        DeliverOutput(delivered, to, [this] { return m_limits.Check() == Limits::Stop::kNone; });
    if (!made.fault) {
      m_files.push_back({.output = index, .path = to, .text = StepsText(made.steps), .done = true});
      return;
    }
    const bool stopped = made.fault->kind == RecordingFault::Kind::kStopped;
    m_problems.push_back(stopped ? Stopped(m_limits, m_plan.timeout, "writing " + to)
                                 : Problem{Cause::kNotDelivered, made.fault->text});
    Leave(index, to);
  }

  void Leave(size_t index, const std::string& to) {
    struct stat status;
    const bool earlier = stat(to.c_str(), &status) == 0;
    m_files.push_back({.output = index,
                       .path = to,
                       .text = earlier ? "is from before this run" : "was not written"});
  }

  const Plan& m_plan;
  const RunReport& m_report;
  Limits& m_limits;
  std::vector<HandedOver> m_files;
  std::vector<Problem> m_problems;
};

}  // namespace

RunReport HandOver(const Plan& plan, RunReport report, Limits& limits) {
  if (plan.takers.files.empty() && plan.takers.folders.empty()) return report;
  limits.Restart(plan.timeout);
  HandingOver handing(plan, report, limits);
  handing.Run();
  report.handedOver = handing.files();
  if (handing.problems().empty()) return report;
  std::vector<Problem> all = report.judgement.problems;
  all.insert(all.end(), handing.problems().begin(), handing.problems().end());
  report.judgement = Judge(std::move(all));
  return report;
}

bool AllHandedOver(const RunReport& report) {
  for (size_t i = 0; i < report.outputs.size(); ++i) {
    if (!report.outputs[i].bytes) continue;
    const bool taken =
        std::any_of(report.handedOver.begin(), report.handedOver.end(),
                    [i](const HandedOver& file) { return file.output == i && file.done; });
    if (!taken) return false;
  }
  return true;
}

}  // namespace host
