#include "run/stage.h"

#include <poll.h>

#include <filesystem>
#include <functional>
#include <system_error>

#include "run/stopped.h"

namespace host {

Staged Stage(const Plan& plan, Limits& limits) {
  Staged staged = {.stop = plan.stop};
  StopWhereFailing(staged.stop, [&] {
    std::error_code error;
    const bool there = std::filesystem::is_directory(plan.what.work, error);
    if (there) staged.lock = LockWorkspace(plan, limits);
  });
  return staged;
}

std::unique_ptr<const WorkspaceLock> LockWorkspace(const Plan& plan, Limits& limits) {
  const auto wait = [&] {
    pollfd watched = {.fd = limits.signals().descriptor(), .events = POLLIN, .revents = 0};
    poll(&watched, 1, 50);
    if (!limits.Interrupted()) return;
    throw Ended{Stopped(limits, plan.timeout, "waiting for the workspace")};
  };
  auto lock = std::make_unique<const WorkspaceLock>(
      plan.what.work, plan.what.wait ? wait : std::function<void()>());
  limits.Restart(plan.timeout);
  return lock;
}

}  // namespace host
