#pragma once

#include <chrono>
#include <cstdint>

#include "desktop/devices/device_format.h"
#include "desktop/platform/step_clock.h"

namespace desktop {

// Tells when the blocks of the null device are due: each at the start plus the length of all blocks
// before it, so that nothing drifts. What was missed is caught up at twice the pace; a delay of
// more than two seconds is not made up for.
class ClockPacer {
 public:
  // A block of an output is due when it begins, the first one now. A block of an input is due when
  // it is over: the first at `start`, after which `blocksDone` were handed over already.
  ClockPacer(Direction direction, DeviceFormat format, double speed, Time start,
             uint64_t blocksDone);

  // Returns when the next block is due.
  Time Due() const { return m_due; }

  // Takes that block as handed over at `now`. Returns true when a device whose buffer lasts
  // kBufferMs would have failed meanwhile; only once until the delay is made up for.
  bool Pass(Time now);

  static constexpr uint32_t kBufferMs = 80;

 private:
  std::chrono::nanoseconds DurationOf(double blocks) const;

  const double m_nanosecondsPerBlock;
  Time m_start;
  // The number of the block that is due.
  uint64_t m_next = 0;
  Time m_due;
  bool m_late = false;
};

}  // namespace desktop
