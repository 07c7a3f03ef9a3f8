#include "suite/suite_runner.h"

#include <poll.h>

#include <csignal>
#include <system_error>
#include <utility>

#include "base/exit_code.h"
#include "catalogue/catalogue_text.h"
#include "suite/case_record.h"

namespace host {

namespace {

constexpr int kTick = 250;          // Milliseconds between two looks at the clock.
constexpr double kStopSeconds = 8;  // After which a case that does not end is killed.

}  // namespace

SuiteRunner::SuiteRunner(const SuitePlace& suite, const std::vector<bool>& kept, size_t jobs,
                         const HostSignals& signals, Listener listener)
    : m_suite(suite),
      m_shared(suite.cases),
      m_jobs(jobs),
      m_signals(signals),
      m_listener(std::move(listener)),
      m_waitsFor(suite.cases.size()),
      m_lacking(suite.cases.size(), suite.cases.size()) {
  for (size_t at = 0; at < suite.cases.size(); ++at) {
    if (kept[at]) continue;
    for (const size_t before : suite.order.Before(at)) {
      if (kept[before]) continue;
      m_readers[before].push_back(at);
      ++m_waitsFor[at];
    }
    if (m_waitsFor[at] == 0) (Alone(at) ? m_readyAlone : m_ready).push(at);
  }
}

bool SuiteRunner::Alone(size_t at) const {
  const CatalogueRow& row = FindRow(m_suite.cases[at].routine);
  return row.device != Device::kNone || row.seconds > 0 || row.runsOn > 0 || row.neverReturns;
}

int SuiteRunner::Run() {
  for (;;) {
    StartWhatFits();
    if (m_running.empty() && m_ready.empty() && m_readyAlone.empty()) return 0;
    if (!m_running.empty()) Wait();
    if (const int interruption = m_signals.TakeInterruption(); interruption != 0) {
      StopAll();
      return interruption;
    }
    TakeEnded();
    m_listener.tick();
  }
}

void SuiteRunner::StartWhatFits() {
  while (!m_ready.empty() && !m_alone && m_running.size() < m_jobs) {
    const size_t next = m_ready.top();
    m_ready.pop();
    Start(next);
  }
  if (!m_ready.empty() || !m_running.empty() || m_readyAlone.empty()) return;
  const size_t next = m_readyAlone.top();
  m_readyAlone.pop();
  m_alone = true;
  Start(next);
}

// What cannot be run has ended at once.
void SuiteRunner::Start(size_t at) {
  const SuiteCase& one = m_suite.cases[at];
  if (!one.skip.empty()) {
    End(at, UnrunRecord(one, "skip", exit_code::kSkip, "not_runnable", one.skip));
    return;
  }
  if (m_lacking[at] < m_suite.cases.size()) {
    End(at, UnrunRecord(one, "skip", exit_code::kSkip, "after",
                        "not run, because " + m_suite.cases[m_lacking[at]].id +
                            ", which it follows, did not pass"));
    return;
  }
  m_shared.ReadOf(one);
  if (one.demo && m_suite.demo.render) m_suite.demo.render(FindRow(one.routine));
  try {
    m_running.emplace(at, CaseProcess(m_signals, [this, at] { return RunOneCase(m_suite, at); }));
  } catch (const std::system_error& error) {
    End(at, UnrunRecord(one, "error", exit_code::kUsage, "usage", error.what()));
  }
}

// Until a case ends, somebody asks for an end, or it is time to look at the clock.
void SuiteRunner::Wait() const {
  pollfd watched = {.fd = m_signals.descriptor(), .events = POLLIN, .revents = 0};
  poll(&watched, 1, kTick);
}

void SuiteRunner::TakeEnded() {
  for (auto each = m_running.begin(); each != m_running.end();) {
    auto& [at, process] = *each;
    if (!process.HasEnded()) {
      ++each;
      continue;
    }
    Json record = process.Record();
    if (!record.is_object()) {
      record = UnrunRecord(
          m_suite.cases[at], "error", exit_code::kCrash, "crash",
          "the process of the case ended with " + process.End() + " and left no report");
    }
    const size_t ended = at;
    each = m_running.erase(each);
    End(ended, record);
  }
}

void SuiteRunner::End(size_t at, const Json& record) {
  if (m_running.empty()) m_alone = false;
  m_listener.ended(at, record);
  Release(at, HasOutputs(record));
}

// Lets go those that have waited for this case.
void SuiteRunner::Release(size_t at, bool usable) {
  const auto readers = m_readers.extract(at);
  if (readers.empty()) return;
  for (const size_t reader : readers.mapped()) {
    // Whose outputs are only compared with those of another case runs in any case.
    if (!usable && m_suite.cases[reader].sameAs != m_suite.cases[at].id) {
      m_lacking[reader] = at;
    }
    if (--m_waitsFor[reader] == 0) (Alone(reader) ? m_readyAlone : m_ready).push(reader);
  }
}

void SuiteRunner::StopAll() {
  const double end = Now() + kStopSeconds;
  for (const auto& [at, process] : m_running) process.Stop(SIGTERM);
  while (!m_running.empty()) {
    for (auto each = m_running.begin(); each != m_running.end();) {
      if (Now() > end) each->second.Stop(SIGKILL);
      each = each->second.HasEnded() ? m_running.erase(each) : std::next(each);
    }
    if (!m_running.empty()) Wait();
    m_signals.TakeInterruption();
  }
}

}  // namespace host
