#include "desktop/enhancement/parts/level_control.h"

#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

constexpr float kSilenceDb = -96;

// A block is active when it is louder than this, and by so much louder than the background.
constexpr float kMinActiveDb = -66;
constexpr float kOverFloorDb = 8;

// A block that lies so far below the level of the active parts is mostly the fading of a sound.
constexpr float kUnderLevelDb = 18;
constexpr float kFloorRiseDbPerSecond = 2;

// What lies below this tells nothing of the background: nothing is captured, or it is gated. After
// long enough the background is found anew, in the loudest of the first blocks, because a noise may
// begin within a block.
constexpr float kNothingDb = kMinActiveDb - kOverFloorDb;
constexpr float kLongSeconds = 1;
constexpr float kFirstSeconds = 0.03f;

// The times over which the level is a mean: for louder blocks, for quieter ones, which may be
// another talker, and for such as may be a fading.
constexpr float kLevelSeconds = 1.5f;
constexpr float kFallSeconds = 6.0f;
constexpr float kFadeSeconds = 20.0f;
constexpr float kRaiseDbPerSecond = 12;
constexpr float kLowerDbPerSecond = 60;

// The limiter works in so many parts of a block, and its gain rises from one to the next by up to
// 0.5 dB.
constexpr size_t kParts = 10;
constexpr float kReleasePerPart = 1.06f;

float Decibels(float ratio) { return 20 * std::log10(std::max(ratio, 1e-6f)); }
float Ratio(float decibels) { return std::pow(10.0f, decibels / 20); }

}  // namespace

LevelControl::LevelControl(int samplesPerSecond, const Settings& settings)
    : m_samplesPerSecond(static_cast<float>(samplesPerSecond)),
      m_settings(settings),
      m_gainDb(settings.firstGainDb),
      m_gain(Ratio(settings.firstGainDb)) {}

void LevelControl::Process(float* samples, size_t count, bool learn) {
  if (count == 0) return;
  if (m_settings.adapts && learn) {
    Learn(samples, count);
    if (m_active) MoveGain(static_cast<float>(count) / m_samplesPerSecond);
  }

  const float ceiling = std::min(32767.0f, 32768 * Ratio(m_settings.ceilingDb));
  const float wanted = Ratio(m_gainDb);
  float limits[kParts + 1];
  for (size_t part = 0; part < kParts; ++part) {
    float peak = 0;
    for (size_t i = count * part / kParts; i < count * (part + 1) / kParts; ++i) {
      peak = std::max(peak, std::abs(samples[i]));
    }
    limits[part] = peak * wanted > ceiling ? ceiling / peak : wanted;
  }
  limits[kParts] = limits[kParts - 1];

  for (size_t part = 0; part < kParts; ++part) {
    const size_t start = count * part / kParts;
    const float to = std::min({limits[part], limits[part + 1], m_gain * kReleasePerPart});
    Apply(samples + start, count * (part + 1) / kParts - start, m_gain, to);
    m_gain = to;
  }
  for (size_t i = 0; i < count; ++i) samples[i] = std::clamp(samples[i], -ceiling, ceiling);
}

void LevelControl::Learn(const float* samples, size_t count) {
  float energy = 0;
  for (size_t i = 0; i < count; ++i) energy += samples[i] * samples[i];
  const float rms = std::sqrt(energy / static_cast<float>(count));
  const float now = std::max(kSilenceDb, Decibels(rms / 32768));
  const float seconds = static_cast<float>(count) / m_samplesPerSecond;

  FollowFloor(now, seconds);
  m_active = now > std::max(kMinActiveDb, m_floorDb + kOverFloorDb);
  if (!m_active) return;

  m_activeSeconds += seconds;
  const float over = now > m_levelDb                   ? kLevelSeconds
                     : now > m_levelDb - kUnderLevelDb ? kFallSeconds
                                                       : kFadeSeconds;
  const float part = seconds / std::min(m_activeSeconds, over);
  m_levelDb += part * (now - m_levelDb);
}

void LevelControl::FollowFloor(float now, float seconds) {
  if (now < kNothingDb) {
    m_nothingSeconds += seconds;
    return;
  }
  if (m_nothingSeconds >= kLongSeconds) {
    m_floorDb = kSilenceDb;
    m_soundSeconds = 0;
  }
  m_nothingSeconds = 0;
  m_soundSeconds += seconds;
  m_floorDb = m_soundSeconds < kFirstSeconds
                  ? std::max(m_floorDb, now)
                  : std::min(m_floorDb + kFloorRiseDbPerSecond * seconds, now);
}

void LevelControl::MoveGain(float seconds) {
  const float wanted =
      std::clamp(m_settings.targetDb - m_levelDb, m_settings.minGainDb, m_settings.maxGainDb);
  m_gainDb = std::clamp(wanted, m_gainDb - kLowerDbPerSecond * seconds,
                        m_gainDb + kRaiseDbPerSecond * seconds);
}

void LevelControl::Apply(float* samples, size_t count, float from, float to) {
  for (size_t i = 0; i < count; ++i) {
    const float part = static_cast<float>(i + 1) / static_cast<float>(count);
    samples[i] *= from + part * (to - from);
  }
}

}  // namespace desktop
