#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "desktop/devices/device_format.h"

namespace desktop {

// Takes blocks from a device's thread and works on them on a thread of its own, which may allocate,
// wait and write files, and be late by some seconds.
class BlockWorker {
 public:
  using Work = std::function<void(short* samples, size_t frames)>;

  // Starts the thread; throws std::system_error when there is none to be had. The work is destroyed
  // on it. maxDelay: how much audio may wait for the work before blocks are lost.
  BlockWorker(DeviceFormat format, Work work, std::chrono::seconds maxDelay);

  // Stops.
  ~BlockWorker();
  BlockWorker(const BlockWorker&) = delete;
  BlockWorker& operator=(const BlockWorker&) = delete;

  // Takes one block of the format's BlockFrames. Returns false when the work is too late: the block
  // is lost and counted. One thread, which never waits here.
  bool Put(const short* samples);

  // Works on what waits and ends the thread, however long that takes. To be called once nothing is
  // put any more.
  void Stop();

  // Does the same, but returns false and leaves the thread behind when no block is done for
  // `patience`; the thread ends once the work returns, without another block. For work that owns
  // what it uses.
  bool StopOrLeave(std::chrono::milliseconds patience);

  // Waits until all that was put so far is worked on. Returns false when no block is done for
  // `patience`, and true at once in the work itself.
  bool CatchUp(std::chrono::milliseconds patience) const;

  // Returns how many blocks were put on which the work was not and will not be done. Any thread.
  uint64_t Lost() const;

 private:
  struct State;
  static void Run(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> m_state;
  std::thread m_thread;
};

}  // namespace desktop
