#include "desktop/platform/background.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "engine_api/platform/log.h"

namespace desktop {

namespace {

struct Registry {
  std::mutex mutex;
  std::vector<BackgroundWork::Finish*> work;
};

// Lives until the process ends, because objects with a static lifetime may still be registered.
Registry& AllWork() {
  static auto* const registry = new Registry;
  return *registry;
}

}  // namespace

BackgroundWork::BackgroundWork(Finish finish) : m_finish(std::move(finish)) {
  const std::scoped_lock lock(AllWork().mutex);
  AllWork().work.push_back(&m_finish);
}

BackgroundWork::~BackgroundWork() {
  const std::scoped_lock lock(AllWork().mutex);
  std::erase(AllWork().work, &m_finish);
}

bool FinishBackgroundWork(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  const std::scoped_lock lock(AllWork().mutex);
  bool finished = true;
  for (const BackgroundWork::Finish* finish : AllWork().work) {
    finished = (*finish)(deadline) && finished;
  }
  if (!finished) {
    OutputDebugInfo("background work is not finished after %lld ms",
                    static_cast<long long>(limit.count()));
  }
  return finished;
}

}  // namespace desktop
