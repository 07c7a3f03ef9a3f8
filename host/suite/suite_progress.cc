#include "suite/suite_progress.h"

#include <unistd.h>

#include <cstdio>

#include "base/printable.h"
#include "base/units.h"
#include "process/limits.h"
#include "suite/case_record.h"

namespace host {

namespace {

constexpr double kPeriod = 0.25;  // Seconds

// "3 min 20 s"
std::string TimeLeft(double seconds) {
  const auto whole = static_cast<long>(seconds);
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
  return std::to_string(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " min";
}

}  // namespace

std::string CaseLine(const Json& record, const Paint& paint) {
  const std::string verdict = IsKnownFailure(record) ? "known" : record.value("verdict", "");
  std::string line = paint.Word(verdict) +
                     std::string(verdict.size() < 6 ? 6 - verdict.size() : 1, ' ') +
                     Printable(record.value("id", ""));
  if (record["elapsed"].is_number()) line += "  " + Seconds(record["elapsed"].get<double>());
  if (IsKnownFailure(record)) line += "  " + Printable(record.value("known", ""));
  const std::string reason = record.value("reason", "");
  if (!reason.empty()) line += "  " + Printable(reason);
  if (verdict == "pass" && !record["known"].is_null()) {
    line += "  PASSES, though it is known to fail: " + Printable(record.value("known", ""));
  }
  return line + "\n";
}

SuiteProgress::SuiteProgress(size_t cases, const SuiteCounts& kept, const Paint& paint)
    : m_terminal(isatty(STDERR_FILENO) != 0),
      m_cases(cases),
      m_kept(kept.Ended()),
      m_counts(kept),
      m_paint(paint),
      m_start(Now()) {}

SuiteProgress::~SuiteProgress() {
  if (m_shown) fputs("\r\033[K", stderr);
}

void SuiteProgress::Ended(const Json& record) {
  m_counts.Add(record);
  if (m_terminal) return;
  fputs(CaseLine(record, m_paint).c_str(), stdout);
  fflush(stdout);
}

void SuiteProgress::Show() {
  if (!m_terminal || Now() < m_next) return;
  m_next = Now() + kPeriod;
  const size_t done = m_counts.Ended();
  std::string line = std::to_string(done) + " of " + std::to_string(m_cases) + ", " +
                     std::to_string(m_counts.Failed()) + " failed";
  if (const size_t now = done - m_kept; now > 0 && done < m_cases) {
    const double pace = (Now() - m_start) / static_cast<double>(now);
    line += ", about " + TimeLeft(pace * static_cast<double>(m_cases - done)) + " left";
  }
  fprintf(stderr, "\r\033[K%s", line.c_str());
  m_shown = true;
}

}  // namespace host
