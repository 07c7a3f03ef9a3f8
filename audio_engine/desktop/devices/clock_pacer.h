#pragma once

#include <chrono>
#include <cstdint>

#include "desktop/devices/device_format.h"
#include "desktop/platform/step_clock.h"

namespace desktop {

// Tells when the blocks of the null device are due: each as many frames after the start as lie
// ahead of it, so that nothing drifts. What was missed is caught up at twice the pace; after more
// than two seconds it is given up.
class ClockPacer {
 public:
  // A block of an output is due when it begins, the first one now. A block of an input is due when
  // it is over: the first at `start`, after which `blocksDone` were handed over already.
  ClockPacer(Direction direction, DeviceFormat format, double speed, Time start,
             uint64_t blocksDone);

  // When the next block is due.
  Time Due() const { return m_due; }

  // Takes that block as handed over at `now`. True when that is so late that a device would have
  // failed, which keeps samples for kBufferMs; true once until the delay is made up for.
  bool Pass(Time now);

  static constexpr uint32_t kBufferMs = 80;

 private:
  std::chrono::nanoseconds DurationOf(double blocks) const;

  const double m_nanosecondsPerBlock;
  Time m_start;
  uint64_t m_next = 0;  // The block that is due.
  Time m_due;
  bool m_late = false;
};

}  // namespace desktop
