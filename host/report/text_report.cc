#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "base/printable.h"
#include "base/units.h"
#include "engines/engine_text.h"
#include "report/list_lines.h"
#include "report/report.h"
#include "report/result_lines.h"

namespace host {

namespace {

std::string VerdictLine(const RunReport& report, const Paint& paint) {
  std::string line = paint.Word(VerdictName(report.judgement.verdict));
  line += "  " + Printable(report.routine);
  if (!report.judgement.reason.empty()) line += "  " + Printable(report.judgement.reason);
  if (report.outcome) {
    line += "  " + Seconds(report.outcome->elapsed);
    if (const auto factor = RealTimeFactor(report)) line += "  RTF " + Ratio(*factor);
    if (report.outcome->cpu) line += "  CPU " + Seconds(*report.outcome->cpu);
    if (report.outcome->peakMemory) line += "  memory " + Bytes(*report.outcome->peakMemory);
  }
  return line + "\n";
}

// The texts of the problems of lists of files, which are many and are summed up with their list.
std::set<std::string_view> SummedUp(const RunReport& report) {
  std::set<std::string_view> texts;
  for (const std::vector<FileReport>* files : {&report.inputs, &report.outputs}) {
    for (const FileReport& file : *files) {
      if (file.place.use.pattern.empty()) continue;
      for (const Problem& problem : file.problems) texts.insert(problem.text);
    }
  }
  return texts;
}

// The problems that neither the first line names nor the lines of a list sum up.
std::string FurtherProblems(const RunReport& report) {
  constexpr size_t kMaxLines = 10;
  const std::set<std::string_view> summedUp = SummedUp(report);
  std::string lines;
  size_t count = 0;
  for (const Problem& problem : report.judgement.problems) {
    if (&problem == report.judgement.Worst() || summedUp.contains(problem.text)) continue;
    if (++count <= kMaxLines) lines += "  also    " + Printable(problem.text) + "\n";
  }
  if (count > kMaxLines) lines += "          and " + std::to_string(count - kMaxLines) + " more\n";
  return lines;
}

std::string Format(const AudioLayout& audio) {
  std::string samples = "other samples";
  if (audio.samples == SampleType::kPcm16) samples = "16-bit";
  if (audio.samples == SampleType::kFloat32) samples = "32-bit float";
  return Seconds(audio.Seconds()) + ", " + Hertz(audio.rate) + " " + Channels(audio.channels) +
         ", " + samples;
}

std::string ChannelLine(const ChannelFigures& figures, const std::string& name) {
  char line[160];
  snprintf(line, sizeof line, "          %-10s  peak %11s   RMS %11s", name.c_str(),
           Decibels(figures.PeakLevel()).c_str(), Decibels(figures.RmsLevel()).c_str());
  std::string text = line;
  if (figures.notFinite > 0) text += "   not finite: " + std::to_string(figures.notFinite);
  return text + "\n";
}

std::string CopyLine(const WaveCopy& copy) {
  if (!copy.problem.empty()) return "";
  std::string line = "  copy    " + Printable(copy.path) + "  16-bit, no dither";
  if (copy.attenuation > 0)
    line += ", attenuated by " + Attenuation(copy.attenuation) + " to a peak of -1 dBFS";
  return line + "\n";
}

std::string Line(const StagedFile& file) { return Printable(file.Line()); }

std::string Line(const HandedOver& file) {
  return "out     " + Printable(file.path) + "  " + Printable(file.text);
}

// The first ones: a list has hundreds.
template <typename T>
std::string FirstLines(const std::vector<T>& files) {
  constexpr size_t kMaxLines = 10;
  std::string lines;
  for (size_t i = 0; i < std::min(files.size(), kMaxLines); ++i) {
    lines += "  " + Line(files[i]) + "\n";
  }
  if (files.size() <= kMaxLines) return lines;
  return lines + "          and " + std::to_string(files.size() - kMaxLines) + " more\n";
}

// Only a run that did what it should shows that a file may be absent.
std::string FileLines(const char* kind, const FileReport& file, bool absentAsItMayBe) {
  if (file.absent && file.problems.empty()) {
    return std::string("  ") + kind + Printable(file.place.path) +
           (absentAsItMayBe ? "  absent, as it may be\n" : "  absent\n");
  }
  if (!file.bytes) return "";
  std::string lines = std::string("  ") + kind + Printable(file.place.path) + "  ";
  lines += file.audio ? Format(*file.audio) : Bytes(*file.bytes);
  lines += "\n";
  if (file.channels) {
    const int count = static_cast<int>(file.channels->size());
    for (int i = 0; i < count; ++i) {
      lines += ChannelLine((*file.channels)[static_cast<size_t>(i)], ChannelName(i, count));
    }
  }
  if (file.copy) lines += CopyLine(*file.copy);
  return lines;
}

// The files one by one, each list in the place of its first file.
std::string AllLines(const char* kind, const std::vector<FileReport>& files, bool absentAsItMayBe) {
  std::map<std::string, std::vector<const FileReport*>> lists;
  for (const FileReport& file : files) lists[file.place.use.pattern].push_back(&file);
  std::string lines;
  for (const FileReport& file : files) {
    const std::string& pattern = file.place.use.pattern;
    if (pattern.empty()) {
      lines += FileLines(kind, file, absentAsItMayBe);
    } else if (lists[pattern].front() == &file) {
      lines += ListLines(kind, lists[pattern]);
    }
  }
  return lines;
}

}  // namespace

std::optional<double> RealTimeFactor(const RunReport& report) {
  const bool lists =
      std::any_of(report.inputs.begin(), report.inputs.end(),
                  [](const FileReport& input) { return !input.place.use.pattern.empty(); });
  double seconds = 0;
  for (const FileReport& input : report.inputs) {
    const double own = input.audio ? input.audio->Seconds() : 0;
    if (!lists) {
      seconds = std::max(seconds, own);
    } else if (!input.place.use.beside) {
      seconds += own;
    }
  }
  if (!report.outcome || seconds <= 0) return std::nullopt;
  if (report.outcome->end != ChildOutcome::End::kReturned) return std::nullopt;
  return report.outcome->elapsed / seconds;
}

std::string TextReport(const RunReport& report, const Paint& paint) {
  std::string text = VerdictLine(report, paint) + FurtherProblems(report);
  const Verdict verdict = report.judgement.verdict;
  const bool good = verdict == Verdict::kPass || verdict == Verdict::kWarn;
  if (report.engine.library) text += "  engine  " + EngineLine(report.engine) + "\n";
  text += FirstLines(report.staged);
  text += AllLines("input   ", report.inputs, good) + AllLines("output  ", report.outputs, good);
  text += ResultLines(report.results, "in a report (--json)");
  text += FirstLines(report.handedOver);
  if (!report.log.empty()) text += "  log     " + Printable(report.log) + "\n";
  if (!report.kept.empty()) text += "  kept    " + Printable(report.kept) + "\n";
  return text;
}

}  // namespace host
