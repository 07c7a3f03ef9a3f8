#include "desktop/devices/block_worker.h"

#include <atomic>
#include <utility>

#include "desktop/devices/block_ring.h"
#include "desktop/devices/patience.h"
#include "desktop/platform/wake.h"

namespace desktop {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kBetweenLooks{10};

}  // namespace

// The thread shares it, because it may be left behind.
struct BlockWorker::State {
  State(DeviceFormat format, Work work, std::chrono::seconds maxDelay)
      : format(format),
        work(std::move(work)),
        ring(100 * static_cast<size_t>(maxDelay.count()) * format.BlockFrames() * format.channels),
        block(format.BlockFrames() * format.channels) {}

  const DeviceFormat format;
  Work work;
  BlockRing ring;
  std::vector<short> block;
  Wake wake;
  std::atomic<bool> stop = false;
  std::atomic<bool> leave = false;
  std::atomic<bool> ended = false;
  // Posted after each block while one waits for it, and at the end.
  Wake progress;
  std::atomic<bool> awaited = false;
  // Blocks for which there was no room.
  std::atomic<uint64_t> refused = 0;
  // Blocks for which there was room, and those of them on which the work is done.
  std::atomic<uint64_t> taken = 0;
  std::atomic<uint64_t> done = 0;
};

BlockWorker::BlockWorker(DeviceFormat format, Work work, std::chrono::seconds maxDelay)
    : m_state(std::make_shared<State>(format, std::move(work), maxDelay)),
      m_thread(StartThread([state = m_state] { Run(state); })) {}

BlockWorker::~BlockWorker() { Stop(); }

bool BlockWorker::Put(const short* samples) {
  const bool fits = m_state->ring.Write(samples, m_state->block.size());
  ++(fits ? m_state->taken : m_state->refused);
  m_state->wake.Post();
  return fits;
}

void BlockWorker::Stop() {
  if (!m_thread.joinable()) return;
  m_state->stop = true;
  m_state->wake.Post();
  m_thread.join();
}

bool BlockWorker::StopOrLeave(milliseconds patience) {
  if (!m_thread.joinable()) return true;
  m_state->stop = true;
  m_state->awaited = true;
  m_state->wake.Post();
  Patience left(patience, Now());
  for (uint64_t seen = m_state->done; !m_state->ended;) {
    m_state->progress.WaitFor(kBetweenLooks);
    const uint64_t done = m_state->done;
    if (std::exchange(seen, done) != done) left.Renew(Now());
    if (m_state->ended || !left.IsOver(Now())) continue;
    m_state->leave = true;
    m_thread.detach();
    return false;
  }
  m_thread.join();
  return true;
}

bool BlockWorker::CatchUp(milliseconds patience) const {
  if (std::this_thread::get_id() == m_thread.get_id()) return true;
  m_state->awaited = true;
  const uint64_t all = m_state->taken;
  Patience left(patience, Now());
  for (uint64_t seen = m_state->done; seen < all;) {
    m_state->progress.WaitFor(kBetweenLooks);
    const uint64_t done = m_state->done;
    if (std::exchange(seen, done) != done) left.Renew(Now());
    if (done < all && left.IsOver(Now())) return false;
  }
  m_state->awaited = false;
  return true;
}

uint64_t BlockWorker::Lost() const {
  const uint64_t left = m_state->leave ? m_state->taken - m_state->done : 0;
  return m_state->refused + left;
}

void BlockWorker::Run(const std::shared_ptr<State>& state) {
  for (bool last = false; !last;) {
    state->wake.Wait();
    last = state->stop;
    while (!state->leave && state->ring.Read(state->block.data(), state->block.size())) {
      state->work(state->block.data(), state->format.BlockFrames());
      ++state->done;
      if (state->awaited) state->progress.Post();
    }
  }
  state->work = nullptr;
  state->ended = true;
  state->progress.Post();
}

}  // namespace desktop
