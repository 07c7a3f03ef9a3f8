#include "desktop/enhancement/parts/level_control.h"

#include <algorithm>
#include <cmath>

namespace desktop {

namespace {

constexpr float kSilenceDb = -96;
constexpr float kLeastActiveDb = -66;  // Quieter is background whatever comes before.
constexpr float kOverFloorDb = 8;      // From here on a block is more than background.
constexpr float kUnderLevelDb = 18;    // Below, it is mostly the fading of a sound.
constexpr float kFloorRiseDbPerSecond = 2;
constexpr float kLevelSeconds = 1.5f;  // Over which the level is a mean,
constexpr float kFallSeconds = 6.0f;   // and over which a quieter talker is believed,
constexpr float kFadeSeconds = 20.0f;  // or what may be such a fading.
constexpr float kRaiseDbPerSecond = 12;
constexpr float kLowerDbPerSecond = 60;
constexpr int kPieces = 10;                // Of a block, for the limiter.
constexpr float kReleasePerPiece = 1.06f;  // About 0.5 dB.

float Decibels(float ratio) { return 20 * std::log10(std::max(ratio, 1e-6f)); }
float Ratio(float decibels) { return std::pow(10.0f, decibels / 20); }

}  // namespace

LevelControl::LevelControl(int samplesPerSecond, const Settings& settings)
    : m_samplesPerSecond(static_cast<float>(samplesPerSecond)),
      m_settings(settings),
      m_gainDb(settings.firstGainDb),
      m_gain(Ratio(settings.firstGainDb)) {}

void LevelControl::Process(float* samples, int count, bool learn) {
  if (count <= 0) return;
  if (m_settings.adapts && learn) {
    Learn(samples, count);
    if (m_active) MoveGain(static_cast<float>(count) / m_samplesPerSecond);
  }

  const float ceiling = std::min(32767.0f, 32768 * Ratio(m_settings.ceilingDb));
  const float wanted = Ratio(m_gainDb);
  float limits[kPieces + 1];
  for (int piece = 0; piece < kPieces; ++piece) {
    float peak = 0;
    for (int i = count * piece / kPieces; i < count * (piece + 1) / kPieces; ++i) {
      peak = std::max(peak, std::abs(samples[i]));
    }
    limits[piece] = peak * wanted > ceiling ? ceiling / peak : wanted;
  }
  limits[kPieces] = limits[kPieces - 1];

  for (int piece = 0; piece < kPieces; ++piece) {
    const int start = count * piece / kPieces;
    const float to = std::min({limits[piece], limits[piece + 1], m_gain * kReleasePerPiece});
    Apply(samples + start, count * (piece + 1) / kPieces - start, m_gain, to);
    m_gain = to;
  }
  for (int i = 0; i < count; ++i) samples[i] = std::clamp(samples[i], -ceiling, ceiling);
}

void LevelControl::Learn(const float* samples, int count) {
  float energy = 0;
  for (int i = 0; i < count; ++i) energy += samples[i] * samples[i];
  const float rms = std::sqrt(energy / static_cast<float>(count));
  const float now = std::max(kSilenceDb, Decibels(rms / 32768));
  const float seconds = static_cast<float>(count) / m_samplesPerSecond;

  m_floorDb = std::min(m_floorDb + kFloorRiseDbPerSecond * seconds, std::max(now, kSilenceDb));
  m_active = now > std::max(kLeastActiveDb, m_floorDb + kOverFloorDb);
  if (!m_active) return;

  m_activeSeconds += seconds;
  const float over = now > m_levelDb                   ? kLevelSeconds
                     : now > m_levelDb - kUnderLevelDb ? kFallSeconds
                                                       : kFadeSeconds;
  const float part = seconds / std::min(m_activeSeconds, over);
  m_levelDb += part * (now - m_levelDb);
}

void LevelControl::MoveGain(float seconds) {
  const float wanted =
      std::clamp(m_settings.targetDb - m_levelDb, m_settings.leastGainDb, m_settings.mostGainDb);
  m_gainDb = std::clamp(wanted, m_gainDb - kLowerDbPerSecond * seconds,
                        m_gainDb + kRaiseDbPerSecond * seconds);
}

void LevelControl::Apply(float* samples, int count, float from, float to) {
  for (int i = 0; i < count; ++i) {
    const float part = static_cast<float>(i + 1) / static_cast<float>(count);
    samples[i] *= from + part * (to - from);
  }
}

}  // namespace desktop
