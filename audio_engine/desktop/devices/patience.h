#pragma once

#include <algorithm>
#include <chrono>

#include "desktop/platform/step_clock.h"

namespace desktop {

// How long something has made no progress. A time in which nobody asked, because this process or
// the machine stood still itself, counts as a short one.
class Patience {
 public:
  Patience(std::chrono::milliseconds limit, Time now) : m_limit(limit), m_asked(now) {}

  // It made progress: counts from now on.
  void Renew(Time now) {
    m_waited = {};
    m_asked = now;
  }

  // Whether it has made none for the limit. To be asked every 10 ms.
  bool IsOver(Time now) {
    m_waited += std::clamp(now - m_asked, Time::duration(0), Time::duration(kMostBetween));
    m_asked = now;
    return m_waited >= m_limit;
  }

 private:
  static constexpr std::chrono::milliseconds kMostBetween{50};

  const std::chrono::milliseconds m_limit;
  Time m_asked;
  Time::duration m_waited{0};
};

}  // namespace desktop
