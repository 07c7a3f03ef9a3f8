#include "run/examine.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "files/audio_figures.h"
#include "files/audio_layout.h"
#include "files/regular_file.h"
#include "files/wave_copy.h"
#include "run/collect_results.h"
#include "run/digest_files.h"
#include "run/guard_outputs.h"
#include "run/guard_run.h"
#include "run/measure_outputs.h"
#include "run/name_truths.h"
#include "run/stopped.h"

namespace host {

namespace {

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

class Examiner {
 public:
  Examiner(const Plan& plan, Limits& limits) : m_plan(plan), m_limits(limits) {}

  // Fills in what is known of an input; `before` is what it was before the run.
  void LookAtInput(FileReport& input, const FileBefore& before);

  FileReport Output(const FilePlace& place, const OutputBefore& before);

  // What ended the look at the files before all were measured and copied; nothing when nothing did.
  const std::optional<Problem>& lookEnded() const { return m_lookEnded; }

 private:
  bool GoOn() const { return m_limits.Check() == Limits::Stop::kNone; }
  void Look(FileReport& report, bool copy);
  void Measure(FILE* file, FileReport& report, bool copy);
  std::string GiveUp(FileReport& report);

  const Plan& m_plan;
  Limits& m_limits;
  std::optional<Problem> m_lookEnded;
};

void Examiner::LookAtInput(FileReport& input, const FileBefore& before) {
  input.absent = !before.WasThere();
  if (input.absent) return;
  Look(input, false);
  input.changed = !before.IsSameNow();
}

FileReport Examiner::Output(const FilePlace& place, const OutputBefore& before) {
  FileReport report;
  report.place = place;
  report.state = before.StateNow();
  report.bytesBefore = before.Bytes();
  if (report.state != OutputState::kWritten) return report;
  const FileState written(place.path);
  Look(report, m_plan.what.wav);
  if (m_plan.WantsDigests()) DigestOutput(m_limits, report);
  report.changed = !written.SameContent(FileState(place.path));
  return report;
}

void Examiner::Look(FileReport& report, bool copy) {
  const std::unique_ptr<FILE, CloseFile> file(OpenRegular(report.place.path));
  if (file == nullptr) {
    report.unreadable = FaultText(errno);
    return;
  }
  const FileState state(fileno(file.get()));
  if (!state.status()) return;
  report.bytes = static_cast<uint64_t>(state.status()->st_size);
  report.audio = FindAudio(report.place.use, file.get(), *report.bytes);
  if (ferror(file.get()) != 0) report.unreadable = strerror(EIO);
  report.figures = copy || m_plan.what.figures || report.place.use.pattern.empty();
  if (report.audio && report.figures) Measure(file.get(), report, copy);
}

void Examiner::Measure(FILE* file, FileReport& report, bool copy) {
  const auto goOn = [this] { return GoOn(); };
  Measurement measured{.fault = kStopped};
  if (GoOn()) measured = MeasureAudio(file, *report.audio, goOn);
  report.channels = std::move(measured.channels);
  if (!report.channels) {
    report.unmeasured = measured.fault == kStopped ? GiveUp(report) : measured.fault;
    return;
  }
  if (!copy || report.place.use.container != Container::kHeaderless) return;
  report.copy = WriteWaveCopy(file, *report.audio, Peak(*report.channels),
                              {m_plan.what.work, report.place.place + ".wav"}, goOn);
  if (report.copy->problem == kStopped) report.copy->problem = GiveUp(report);
}

// Notes what ended the look at the files, and says it in words.
std::string Examiner::GiveUp(FileReport& report) {
  report.givenUp = true;
  m_lookEnded = Stopped(m_limits, m_plan.timeout, "measuring its files");
  return m_limits.interruption() != 0 ? "the run was interrupted" : "the time was up";
}

}  // namespace

RunReport Examine(const Plan& plan, Executed executed, Limits& limits) {
  RunReport report = ReportOf(plan, executed.checked);
  report.stop = executed.stop;
  report.outcome = std::move(executed.outcome);
  if (!report.outcome) return report;

  Examiner examiner(plan, limits);
  for (size_t i = 0; i < report.inputs.size(); ++i) {
    examiner.LookAtInput(report.inputs[i], executed.inputsBefore[i]);
  }
  for (size_t i = 0; i < plan.outputs.size(); ++i) {
    report.outputs.push_back(examiner.Output(plan.outputs[i], executed.outputsBefore[i]));
  }
  const ChildOutcome::End end = report.outcome->end;
  if (end == ChildOutcome::End::kReturned || end == ChildOutcome::End::kStopped) {
    GuardRun(plan, limits, report);
    GuardOutputs(plan, limits, report);
    MeasureOutputs(plan, limits, report);
  }
  report.results = CollectResults(plan, std::move(executed.heard), report, limits);
  NameTruths(plan, report);
  report.lookEnded = examiner.lookEnded();
  return report;
}

}  // namespace host
