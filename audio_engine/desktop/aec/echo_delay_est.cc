#include "engine_api/aec/echo_delay_est.h"

#include <memory>
#include <new>

#include "desktop/aec/parts/delay_tracker.h"
#include "desktop/aec/parts/mono_input.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

struct CEchoDelayEst::Estimator {
  Estimator(int rate, int channels)
      : far(rate, channels),
        near(rate, channels),
        tracker(desktop::MonoInput::TrackedRate(rate), 500) {}

  desktop::MonoInput far;
  desktop::MonoInput near;
  desktop::DelayTracker tracker;
};

CEchoDelayEst::CEchoDelayEst(int rate, int channels) {
  if (!desktop::MonoInput::Accepts(rate, channels)) {
    desktop::LogRefusal("no echo delay can be estimated at %d Hz with %d channels", rate, channels);
    return;
  }
  try {
    m_estimator = std::make_unique<Estimator>(rate, channels);
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("no memory to estimate an echo delay");
  }
}

CEchoDelayEst::~CEchoDelayEst() = default;

int CEchoDelayEst::ProcessFar(const short* samples, int count) {
  if (!m_estimator || samples == nullptr || count <= 0) return -1;
  m_estimator->far.Feed(samples, desktop::Size(count), [this](const short* mono, size_t frames) {
    m_estimator->tracker.AddFar(mono, frames);
  });
  return 0;
}

int CEchoDelayEst::ProcessNear(const short* samples, int count) {
  if (!m_estimator || samples == nullptr || count <= 0) return -1;
  m_estimator->near.Feed(samples, desktop::Size(count), [this](const short* mono, size_t frames) {
    m_estimator->tracker.AddNear(mono, frames);
  });
  return 0;
}

int CEchoDelayEst::GetDelay() { return m_estimator ? m_estimator->tracker.DelayMs() : 0; }
