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
              .json = report,
              .measures = one.measures,
              .scorers = one.scorers,
              .reference = one.reference,
              .far = one.far,
              .near = one.near,
              .truths = one.truths,
              .demo = one.demo};
  for (const auto& [name, source] : one.inputs) {
    run.in.push_back(name);
    run.in.back().append("=").append(source);
  }
  return run;
}

}  // namespace host
