#pragma once

#include <functional>
#include <map>
#include <queue>
#include <vector>

#include "process/limits.h"
#include "process/signals.h"
#include "suite/case_process.h"
#include "suite/case_work.h"

namespace host {

// Runs cases beside each other, each in a process of its own: a case when those that it reads from
// have ended, in declared order else; those with devices or the clock one at a time and beside
// nothing else, when nothing else can run.
class SuiteRunner {
 public:
  // `ended` gets the record of each case, in the order in which they end; `tick` is called a few
  // times a second.
  struct Listener {
    std::function<void(size_t at, const Json& record)> ended;
    std::function<void()> tick;
  };
  // `kept` are the cases that need not run again, and have outputs.
  SuiteRunner(const SuitePlace& suite, const std::vector<bool>& kept, size_t jobs,
              const HostSignals& signals, Listener listener);

  // Runs all. Returns the signal by which somebody asked for an end, after the cases that were
  // running have been ended without a record; 0 for none.
  int Run();

 private:
  // Those that may begin, the first of them on top.
  using Ready = std::priority_queue<size_t, std::vector<size_t>, std::greater<>>;

  bool Alone(size_t at) const;
  void Start(size_t at);
  void StartWhatFits();
  void Wait() const;
  void TakeEnded();
  void End(size_t at, const Json& record);
  void Release(size_t at, bool usable);
  void StopAll();

  const SuitePlace& m_suite;
  SharedSources m_shared;
  size_t m_jobs;
  const HostSignals& m_signals;
  Listener m_listener;
  std::map<size_t, std::vector<size_t>> m_readers;  // Of each case, those that wait for it.
  std::vector<size_t> m_waitsFor;                   // How many cases each one waits for.
  std::vector<size_t> m_lacking;  // Whose outputs a case lacks; beyond all for none.
  Ready m_ready;
  Ready m_readyAlone;
  std::map<size_t, CaseProcess> m_running;
  bool m_alone = false;  // What runs is to run beside nothing else.
};

}  // namespace host
