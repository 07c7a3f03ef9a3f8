#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "desktop/platform/audio_device.h"
#include "desktop/platform/block_ring.h"
#include "desktop/platform/wake.h"

namespace desktop {

// Takes blocks from a device's thread and works on them on a thread of its own, which may allocate,
// wait and write files, and be late by two seconds.
class BlockWorker {
 public:
  using Work = std::function<void(short* samples, size_t frames)>;

  // Starts the thread; throws std::system_error when there is none to be had.
  BlockWorker(DeviceFormat format, Work work);
  ~BlockWorker();  // Stops.
  BlockWorker(const BlockWorker&) = delete;
  BlockWorker& operator=(const BlockWorker&) = delete;

  // Takes one block of the format's BlockFrames; drops and counts it when two seconds wait. One
  // thread, which never waits here.
  void Put(const short* samples);

  // Works on what waits and ends the thread. To be called once nothing is put any more.
  void Stop();

  // Waits until what was put is worked on, but no longer than a second. Not from the work.
  void CatchUp() const;

  uint64_t Dropped() const { return m_dropped; }  // Blocks. Any thread.

 private:
  void Run();

  const DeviceFormat m_format;
  const Work m_work;
  BlockRing m_ring;
  std::vector<short> m_block;
  Wake m_wake;
  std::atomic<bool> m_stop = false;
  std::atomic<uint64_t> m_dropped = 0;
  std::thread m_thread;
};

}  // namespace desktop
