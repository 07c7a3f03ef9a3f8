#include "desktop/devices/background.h"

#include <algorithm>
#include <cinttypes>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "engine_api/platform/log.h"

namespace desktop {

namespace {

struct Registry {
  // Guards both lists; not held while work is being finished.
  std::mutex mutex;
  std::vector<BackgroundWork::Finish*> work;
  // Those that are being called.
  std::vector<BackgroundWork::Finish*> called;
  std::condition_variable returned;
};

// Lives until the process ends, because objects with a static lifetime may still be registered.
Registry& AllWork() {
  static auto* const registry = new Registry;
  return *registry;
}

bool Contains(const std::vector<BackgroundWork::Finish*>& work,
              const BackgroundWork::Finish* finish) {
  return std::find(work.begin(), work.end(), finish) != work.end();
}

}  // namespace

BackgroundWork::BackgroundWork(Finish finish) : m_finish(std::move(finish)) {
  const std::scoped_lock lock(AllWork().mutex);
  AllWork().work.push_back(&m_finish);
}

BackgroundWork::~BackgroundWork() {
  Registry& all = AllWork();
  std::unique_lock lock(all.mutex);
  std::erase(all.work, &m_finish);
  all.returned.wait(lock, [&] { return !Contains(all.called, &m_finish); });
}

bool FinishBackgroundWork(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  Registry& all = AllWork();
  std::unique_lock lock(all.mutex);
  bool finished = true;
  for (BackgroundWork::Finish* const finish : std::vector(all.work)) {
    // What has ended meanwhile is not in the list any more.
    if (!Contains(all.work, finish)) continue;
    all.called.push_back(finish);
    lock.unlock();
    finished = (*finish)(deadline) && finished;
    lock.lock();
    all.called.erase(std::find(all.called.begin(), all.called.end(), finish));
    all.returned.notify_all();
  }
  lock.unlock();
  if (!finished) {
    OutputDebugInfo("background work is not finished after %" PRId64 " ms", limit.count());
  }
  return finished;
}

}  // namespace desktop
