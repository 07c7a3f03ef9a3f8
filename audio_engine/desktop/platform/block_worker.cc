#include "desktop/platform/block_worker.h"

#include <utility>

namespace desktop {

BlockWorker::BlockWorker(DeviceFormat format, Work work)
    : m_format(format),
      m_work(std::move(work)),
      m_ring(200 * format.BlockFrames() * format.channels),
      m_block(format.BlockFrames() * format.channels),
      m_thread(StartThread([this] { Run(); })) {}

BlockWorker::~BlockWorker() { Stop(); }

void BlockWorker::Put(const short* samples) {
  if (!m_ring.Write(samples, m_block.size())) ++m_dropped;
  m_wake.Post();
}

void BlockWorker::Stop() {
  if (!m_thread.joinable()) return;
  m_stop = true;
  m_wake.Post();
  m_thread.join();
}

void BlockWorker::CatchUp() const {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (m_ring.Waiting() > 0 && std::chrono::steady_clock::now() < limit) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void BlockWorker::Run() {
  while (true) {
    const bool last = m_stop;
    while (m_ring.Read(m_block.data(), m_block.size())) {
      m_work(m_block.data(), m_format.BlockFrames());
    }
    if (last) return;
    m_wake.Wait();
  }
}

}  // namespace desktop
