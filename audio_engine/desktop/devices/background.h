#pragma once

#include <chrono>
#include <functional>

// Work of the engine that goes on after an operation has returned, for example a recorder's thread
// that still holds the last seconds. A program that is about to end its process asks for it to be
// finished, so that no tail is lost.

namespace desktop {

// Registers such work for as long as this object lives. Any thread may create and destroy it.
class BackgroundWork {
 public:
  // Finishes the work, waiting until `deadline` at the latest. Returns false when it is not
  // finished by then. Throws nothing, and neither creates nor destroys a BackgroundWork.
  using Finish = std::function<bool(std::chrono::steady_clock::time_point deadline)>;

  explicit BackgroundWork(Finish finish);

  // After it returns `finish` is not called any more; one that is being called is waited for.
  ~BackgroundWork();

  BackgroundWork(const BackgroundWork&) = delete;
  BackgroundWork& operator=(const BackgroundWork&) = delete;

 private:
  Finish m_finish;
};

// Finishes all registered work on the calling thread, first registered first, within `limit`
// altogether. Returns false, with one line in the log, when some of it was not finished by then.
bool FinishBackgroundWork(std::chrono::milliseconds limit);

}  // namespace desktop
