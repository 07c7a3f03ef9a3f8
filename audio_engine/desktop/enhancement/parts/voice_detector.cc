#include "desktop/enhancement/parts/voice_detector.h"

#include "desktop/common/counts.h"
#include "desktop/enhancement/parts/activity_detector.h"
#include "desktop/enhancement/parts/steady_noise.h"
#include "desktop/platform/log.h"

namespace desktop {

namespace {

// The thresholds of the modes 0 to 3.
constexpr float kThresholds[] = {1.6f, 1.2f, 0.95f, 0.75f};

int NumberOf(VoiceDetectionMode mode) {
  return mode == voiceDetectionUnknown ? voiceDetectionLowLikelihood : mode;
}

}  // namespace

bool VoiceDetector::Accepts(unsigned rate, unsigned channels) {
  return rate >= 4000 && rate <= 192000 && channels >= 1 && channels <= 64;
}

VoiceDetector::VoiceDetector(unsigned rate, unsigned channels)
    : m_hop(rate / 100),
      m_activity(std::make_unique<ActivityDetector>(Count(rate), m_hop)),
      m_steadiness(std::make_unique<SteadyNoise>(Count(rate), m_hop)),
      m_mix(Count(rate), channels),
      m_frame(channels) {
  m_block.reserve(m_hop);
  m_activity->SetThreshold(kThresholds[voiceDetectionLowLikelihood]);
}

VoiceDetector::~VoiceDetector() = default;

bool VoiceDetector::HasMode(VoiceDetectionMode mode) {
  const int number = NumberOf(mode);
  if (number >= voiceDetectionVeryLowLikelihood && number <= voiceDetectionHighLikelihood) {
    return true;
  }
  LogRefusal("CVoiceDetectionEx: no mode %d", number);
  return false;
}

bool VoiceDetector::SetMode(VoiceDetectionMode mode) {
  if (!HasMode(mode)) return false;
  m_activity->SetThreshold(kThresholds[NumberOf(mode)]);
  return true;
}

VADResultKind VoiceDetector::Detect(const short* samples, size_t count) {
  bool sound = false;
  bool voice = false;
  for (size_t i = 0; i < count; ++i) {
    if (!Push(samples[i])) continue;
    m_last = Judge();
    voice = voice || m_last == vadResultIsActive;
    sound = sound || m_last == vadResultIsActiveWithoutVoice;
  }
  if (sound) m_last = vadResultIsActiveWithoutVoice;
  if (voice) m_last = vadResultIsActive;
  return m_last;
}

// Takes one sample of one channel. Returns true when it completed 10 ms.
bool VoiceDetector::Push(short sample) {
  m_frame[m_channel++] = sample;
  if (m_channel < m_frame.size()) return false;
  m_block.push_back(m_mix.Add(m_frame.data()));
  m_channel = 0;
  return m_block.size() == m_hop;
}

VADResultKind VoiceDetector::Judge() {
  const bool steady = m_steadiness->Process(m_block);
  const bool active = m_activity->Process(m_block, steady);
  m_block.clear();
  if (!active) return vadResultIsPassive;
  return m_steadiness->Rattles() ? vadResultIsActiveWithoutVoice : vadResultIsActive;
}

}  // namespace desktop
