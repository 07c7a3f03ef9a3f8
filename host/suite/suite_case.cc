#include "suite/suite_case.h"

namespace host {

Case RunOf(const SuiteCase& one, const std::string& workspace, const std::string& report) {
  Case run = {.routine = one.routine,
              .arguments = one.arguments,
              .work = workspace,
              .timeout = one.timeout,
              .linger = one.linger,
              .engine = one.engine,
              .engineOnly = one.engineOnly,
              .json = report};
  for (const auto& [name, source] : one.inputs) {
    run.in.push_back(name);
    run.in.back().append("=").append(source);
  }
  return run;
}

}  // namespace host
