#include "desktop/devices/clock_pacer.h"

#include <algorithm>

namespace desktop {

using std::chrono::nanoseconds;

ClockPacer::ClockPacer(Direction direction, DeviceFormat format, double speed, Time start,
                       uint64_t blocksDone)
    : m_nanosecondsPerBlock(1e9 * static_cast<double>(format.BlockFrames()) / format.rate / speed),
      m_start(Now()) {
  if (direction == Direction::kInput) {
    m_start = start + DurationOf(static_cast<double>(blocksDone + 1));
  }
  m_due = m_start;
}

bool ClockPacer::Pass(Time now) {
  const nanoseconds missed = now - (m_start + DurationOf(static_cast<double>(m_next)));
  const nanoseconds buffer = DurationOf(kBufferMs / 10.0);
  if (missed > 25 * buffer) m_start += missed;
  const bool fails = !m_late && missed > buffer;
  m_late = missed > (m_late ? buffer / 4 : buffer);
  ++m_next;
  m_due = std::max(m_start + DurationOf(static_cast<double>(m_next)), now + DurationOf(0.5));
  return fails;
}

nanoseconds ClockPacer::DurationOf(double blocks) const {
  return nanoseconds(static_cast<int64_t>(blocks * m_nanosecondsPerBlock));
}

}  // namespace desktop
