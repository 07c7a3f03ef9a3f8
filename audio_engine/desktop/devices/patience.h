#pragma once

#include <algorithm>
#include <chrono>

#include "desktop/platform/step_clock.h"

namespace desktop {

// Measures how long something has made no progress. Of a time in which nobody asked, because this
// process or the machine stood still itself, only 50 ms count.
class Patience {
 public:
  Patience(std::chrono::milliseconds limit, Time now) : m_limit(limit), m_asked(now) {}

  // Notes progress: from now on the time counts anew.
  void Renew(Time now) {
    m_waited = {};
    m_asked = now;
  }

  // Returns whether there was no progress for the limit. To be asked every 10 ms.
  bool IsOver(Time now) {
    m_waited += std::clamp(now - m_asked, Time::duration(0), Time::duration(kMaxBetween));
    m_asked = now;
    return m_waited >= m_limit;
  }

 private:
  static constexpr std::chrono::milliseconds kMaxBetween{50};

  const std::chrono::milliseconds m_limit;
  Time m_asked;
  Time::duration m_waited{0};
};

}  // namespace desktop
