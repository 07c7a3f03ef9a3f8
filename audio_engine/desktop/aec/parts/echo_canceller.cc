#include "desktop/aec/parts/echo_canceller.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>

#include "desktop/common/apm.h"
#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr size_t kPartitions = 32;  // 320 ms of echo path.
constexpr size_t kMaxOffsetBlocks = 50;
constexpr size_t kEarlyBlocks = 8;

// Blocks of the far end that have waited throughout so many of the near end are late for good:
// capture paused, or began later than the far end.
constexpr int kWatchedBlocks = 50;

// The module loses 8 dB when it is told 10 ms too much, and nothing when it is told 30 ms too
// little; a new delay makes it learn the path anew, so it hears of lasting changes only.
constexpr int kModuleMarginMs = 10;
constexpr int kLastingBlocks = 50;
constexpr int kChangeMs = 10;

// The filter starts this long before the echo, and is moved when less than the least is left or
// more than the most.
constexpr int kFilterMarginMs = 50;
constexpr int kMinMarginMs = 20;
constexpr int kMaxMarginMs = 150;

// An echo comes so many blocks about its delay; before that is known, it may come up to so late.
constexpr size_t kBlocksBefore = 1;
constexpr size_t kBlocksAfter = 2;
constexpr size_t kUnknownBlocks = 25;

// From the least suppression to the most.
constexpr EchoSuppressor::Strength kStrengths[] = {{0.1f, 0.3f}, {0.25f, 2.0f}, {0.375f, 128.0f}};

constexpr float kFullScale = 32768.0f;

webrtc::AudioProcessing* CreateApm(int rate) {
  webrtc::Config config;
  // The library takes ownership of what it is handed here.
  config.Set<webrtc::ExtendedFilter>(std::make_unique<webrtc::ExtendedFilter>(true).release());
  config.Set<webrtc::ExperimentalAgc>(std::make_unique<webrtc::ExperimentalAgc>(false).release());
  webrtc::AudioProcessing* const apm = webrtc::AudioProcessing::Create(config);
  if (apm == nullptr) throw std::bad_alloc();
  const webrtc::StreamConfig stream(rate, 1);
  apm->Initialize({{stream, stream, stream, stream}});
  return apm;
}

void Scale(float* block, size_t count, float factor) {
  for (size_t i = 0; i < count; ++i) block[i] *= factor;
}

}  // namespace

EchoCanceller::EchoCanceller(int rate, Delay delay, Suppressor suppressor)
    : m_rate(rate),
      m_block(Size(rate / 100)),
      m_filter(m_block, kPartitions, kMaxOffsetBlocks),
      m_tracker(delay == Delay::kFound ? std::make_unique<DelayTracker>(rate, 500) : nullptr),
      m_suppressor(suppressor == Suppressor::kOwn ? std::make_unique<EchoSuppressor>(m_block)
                                                  : nullptr),
      m_apm(CreateApm(rate)),
      m_early(kEarlyBlocks * m_block),
      m_far(m_block),
      m_near(m_block),
      m_echo(m_block),
      m_shorts(m_block) {
  m_apm->echo_cancellation()->Enable(!m_suppressor);
  SetSuppression(Suppression::kModerate);
}

EchoCanceller::~EchoCanceller() = default;

void EchoCanceller::SetSuppression(Suppression suppression) {
  if (m_suppressor) {
    m_suppressor->SetStrength(kStrengths[static_cast<int>(suppression)]);
    return;
  }
  using Level = webrtc::EchoCancellation::SuppressionLevel;
  const Level levels[] = {Level::kLowSuppression, Level::kModerateSuppression,
                          Level::kHighSuppression};
  m_apm->echo_cancellation()->set_suppression_level(levels[static_cast<int>(suppression)]);
}

void EchoCanceller::SetNoiseSuppression(int level) {
  m_suppressesNoise = level != kNoNoiseSuppression;
  m_apm->noise_suppression()->Enable(m_suppressesNoise);
  if (!m_suppressesNoise) return;
  m_apm->noise_suppression()->set_level(static_cast<webrtc::NoiseSuppression::Level>(level));
}

void EchoCanceller::EnableCancellation(bool on) {
  if (on == m_cancels) return;
  m_cancels = on;
  m_hasEcho = false;
  m_apm->echo_cancellation()->Enable(on && !m_suppressor);
}

void EchoCanceller::ForgetEchoPath() {
  m_filter.Restart();
  if (m_suppressor) m_suppressor->Forget();
}

void EchoCanceller::SetDelay(int delayMs) { m_delayMs = std::clamp(delayMs, 0, 500); }

void EchoCanceller::ProcessFar(const float* block) {
  if (m_earlyBlocks == kEarlyBlocks) {
    DropFar();
    m_overflowed = true;
  }
  std::copy(block, block + m_block, &m_early[m_earlyBlocks * m_block]);
  ++m_earlyBlocks;
}

// What is dropped is heard, so that the past of the far end stays whole.
void EchoCanceller::DropFar() {
  m_filter.Hear(m_early.data());
  if (m_suppressor) m_suppressor->Hear(m_early.data());
  std::copy(m_early.begin() + Offset(m_block), m_early.end(), m_early.begin());
  --m_earlyBlocks;
}

// Drops the blocks that no near end will come for: all but the newest after a pause, and later
// those that were never needed.
void EchoCanceller::DropLateFar() {
  if (m_overflowed) {
    while (m_earlyBlocks > 1) DropFar();
    m_overflowed = false;
    m_watchedFor = 0;
  }
  const size_t left = m_earlyBlocks > 0 ? m_earlyBlocks - 1 : 0;
  m_leastLeft = m_watchedFor == 0 ? left : std::min(m_leastLeft, left);
  if (++m_watchedFor < kWatchedBlocks) return;
  for (; m_leastLeft > 0; --m_leastLeft) DropFar();
  m_watchedFor = 0;
}

void EchoCanceller::TakeFar() {
  DropLateFar();
  if (m_earlyBlocks == 0) {
    std::fill(m_far.begin(), m_far.end(), 0.0f);
    return;
  }
  std::copy(m_early.begin(), m_early.begin() + Offset(m_block), m_far.begin());
  std::copy(m_early.begin() + Offset(m_block), m_early.end(), m_early.begin());
  --m_earlyBlocks;
}

void EchoCanceller::PassNear(const float* block) {
  TakeFar();
  m_filter.Hear(m_far.data());
  if (m_suppressor) m_suppressor->Hear(m_far.data());
  if (m_cancels) FollowDelay(block);
}

void EchoCanceller::ProcessNear(float* block) {
  TakeFar();
  if (m_cancels) {
    FollowDelay(block);
    MoveFilter();
    std::copy(block, block + m_block, m_near.begin());
    m_filter.Process(m_far.data(), block, block);
    if (m_suppressor) SuppressEcho(m_near.data(), block);
  }
  if ((m_cancels && !m_suppressor) || m_suppressesNoise) RunModule(block);
  for (size_t i = 0; i < m_block; ++i) block[i] = std::clamp(block[i], -32768.0f, 32767.0f);
}

void EchoCanceller::FollowDelay(const float* near) {
  if (m_tracker) {
    const auto take = [this](const float* samples) {
      std::transform(samples, samples + m_block, m_shorts.begin(), [](float sample) {
        return static_cast<short>(std::clamp(sample, -32768.0f, 32767.0f));
      });
      return m_shorts.data();
    };
    m_tracker->AddFar(take(m_far.data()), m_shorts.size());
    m_tracker->AddNear(take(near), m_shorts.size());
    if (m_tracker->KnowsDelay()) m_delayMs = m_tracker->DelayMs();
  }
  if (!m_delayMs) return;
  if (!m_lastingDelayMs) m_lastingDelayMs = m_delayMs;
  const bool different = std::abs(*m_delayMs - *m_lastingDelayMs) >= kChangeMs;
  m_differentFor = different ? m_differentFor + 1 : 0;
  if (m_differentFor < kLastingBlocks) return;
  m_lastingDelayMs = m_delayMs;
  m_differentFor = 0;
}

void EchoCanceller::MoveFilter() {
  if (!m_lastingDelayMs) return;
  const int margin = *m_lastingDelayMs - 10 * Count(m_filter.Offset());
  if (margin >= kMinMarginMs && margin <= kMaxMarginMs) return;
  m_filter.SetOffset(Size(std::max(0, *m_lastingDelayMs - kFilterMarginMs)) / 10);
}

// Returns about how many blocks ago the far end was that is heard now.
EchoSuppressor::Delay EchoCanceller::EchoBlocks() const {
  if (!m_lastingDelayMs) return {0, kUnknownBlocks};
  const size_t blocks = Size(*m_lastingDelayMs) / 10;
  return {blocks - std::min(blocks, kBlocksBefore), blocks + kBlocksAfter};
}

void EchoCanceller::SuppressEcho(const float* near, float* block) {
  std::transform(near, near + m_block, block, m_echo.begin(), std::minus<>());
  m_suppressor->Hear(m_far.data());
  m_suppressor->Process(m_echo.data(), m_filter.Doubt(), EchoBlocks(), block);
  m_hasEcho = m_suppressor->HasEcho();
}

// The packaged module works in the range of -1 to 1.
void EchoCanceller::RunModule(float* block) {
  const webrtc::StreamConfig stream(m_rate, 1);
  const bool cancels = m_cancels && !m_suppressor;
  Scale(block, m_block, 1 / kFullScale);
  if (cancels) {
    float* const far = m_far.data();
    Scale(far, m_block, 1 / kFullScale);
    m_apm->ProcessReverseStream(&far, stream, stream, &far);
    Scale(far, m_block, kFullScale);
    m_apm->set_stream_delay_ms(std::max(0, m_lastingDelayMs.value_or(0) - kModuleMarginMs));
  }
  m_apm->ProcessStream(&block, stream, stream, &block);
  if (!m_suppressor) m_hasEcho = cancels && m_apm->echo_cancellation()->stream_has_echo();
  Scale(block, m_block, kFullScale);
}

}  // namespace desktop
