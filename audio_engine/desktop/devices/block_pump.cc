#include "desktop/devices/block_pump.h"

#include <algorithm>
#include <utility>

namespace desktop {

BlockPump::BlockPump(Direction direction, DeviceFormat format, DeviceBlock block, Wake& changed)
    : m_direction(direction), m_format(format), m_block(std::move(block)), m_changed(changed) {}

BlockPump::~BlockPump() { Reset(); }

void BlockPump::Reset() {
  m_samples.assign(m_format.BlockFrames() * m_format.channels, 0);
  m_stream = nullptr;
  m_clock.reset();
  Own(m_offered.exchange(nullptr));
  TakeLost();
  m_begun = m_stop = m_ended = m_suspended = false;
  m_blocks = m_failures = 0;
  m_latencyMs = 0;
}

void BlockPump::Stop() {
  m_stop = true;
  m_wake.Post();
}

void BlockPump::Offer(std::unique_ptr<SoundStream> stream) {
  Own(m_offered.exchange(stream.release()));
  m_begun = true;
  m_wake.Post();
}

void BlockPump::Run(double speed) {
  m_speed = speed;
  m_start = Now();
  while (!m_begun && !m_stop) m_wake.Wait();
  while (!m_stop) {
    if (SoundStream* const offered = m_offered.exchange(nullptr); offered != nullptr) {
      m_stream.reset(offered);
      m_counted = 0;
    }
    if (m_stream != nullptr) {
      StepOnServer();
    } else {
      StandIn();
    }
    if (m_clock && !m_stop) StepOnClock();
  }
  m_ended = true;
  m_changed.Post();
}

void BlockPump::StepOnServer() {
  const uint64_t before = m_blocks;
  const bool there = m_stream->Wait(m_clock ? m_clock->Due() : Time::max()) && Exchange();
  const uint64_t failures = m_stream->Failures();
  m_failures += failures - std::exchange(m_counted, failures);
  if (!there) return Lose();
  const bool suspended = m_blocks == before && m_stream->IsSuspended();
  if (suspended) {
    StandIn();
  } else if (m_blocks > before) {
    m_clock.reset();
  } else {
    return;
  }
  if (m_suspended.exchange(suspended) != suspended) m_changed.Post();
}

// Hands over all blocks that are due. Returns false when the server is lost.
bool BlockPump::Exchange() {
  if (m_direction == Direction::kInput) {
    while (!m_stop && m_stream->Take(m_samples.data())) CallBlock();
    // A sample waits for its block to be whole as well.
    m_latencyMs = m_stream->LatencyMs() + 10;
    return true;
  }
  while (!m_stop && m_stream->WantsBlock()) {
    CallBlock();
    if (!m_stream->Give(m_samples.data())) return false;
    m_latencyMs = m_stream->LatencyMs();
  }
  m_latencyMs = m_stream->LatencyMs();
  return true;
}

void BlockPump::Lose() {
  Own(m_lost.exchange(m_stream.release()));
  m_suspended = false;
  m_changed.Post();
}

void BlockPump::StandIn() {
  if (!m_clock) m_clock.emplace(m_direction, m_format, m_speed, m_start, m_blocks);
}

// Waits for the null device's next block where there is no stream to wait for.
void BlockPump::StepOnClock() {
  if (m_stream == nullptr && Now() < m_clock->Due()) m_wake.WaitUntil(m_clock->Due());
  if (m_stop || Now() < m_clock->Due()) return;
  if (m_clock->Pass(Now())) ++m_failures;
  const bool isInput = m_direction == Direction::kInput;
  m_latencyMs = isInput ? 10 : 0;
  if (isInput) std::fill(m_samples.begin(), m_samples.end(), short{0});
  CallBlock();
}

void BlockPump::CallBlock() {
  m_block(m_samples.data(), m_format.BlockFrames());
  ++m_blocks;
}

}  // namespace desktop
