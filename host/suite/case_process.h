#pragma once

#include <sys/types.h>

#include <functional>

#include "base/json_parts.h"
#include "process/signals.h"

namespace host {

// A case that runs in a process of its own, which ends with this one, however that ends.
class CaseProcess {
 public:
  // Starts `work`, which returns the record of the case. Throws std::system_error when no process
  // can be started.
  CaseProcess(const HostSignals& signals, const std::function<Json()>& work);
  ~CaseProcess();
  CaseProcess(CaseProcess&& other) noexcept;
  CaseProcess& operator=(CaseProcess&&) = delete;

  // Whether it has ended. To be asked until it has.
  bool HasEnded();

  // What it has returned; no object when it ended without a record.
  Json Record() const;

  // How it ended when it left no record: "signal 9 (Killed)".
  std::string End() const;

  // Asks it to end, as a terminal does; `signal` is SIGKILL for what does not listen.
  void Stop(int signal) const;

 private:
  pid_t m_process = -1;
  int m_record = -1;  // Memory that it shares.
  int m_status = 0;
  bool m_ended = false;
};

}  // namespace host
