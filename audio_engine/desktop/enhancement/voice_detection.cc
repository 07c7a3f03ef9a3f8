#include "engine_api/enhancement/voice_detection.h"

#include <exception>

#include "desktop/enhancement/parts/voice_detector.h"
#include "desktop/platform/log.h"

struct CVoiceDetectionEx::Impl {
  Impl(unsigned rate, unsigned channels) : detector(rate, channels) {}

  desktop::VoiceDetector detector;
};

CVoiceDetectionEx::CVoiceDetectionEx(unsigned int sampleRate, unsigned int channels) {
  if (!desktop::VoiceDetector::Accepts(sampleRate, channels)) {
    desktop::LogRefusal("CVoiceDetectionEx: %u Hz, %u channels are not supported", sampleRate,
                        channels);
    return;
  }
  try {
    m_impl = std::make_unique<Impl>(sampleRate, channels);
  } catch (const std::exception&) {
    desktop::LogRefusal("CVoiceDetectionEx: no memory");
  }
}

CVoiceDetectionEx::~CVoiceDetectionEx() = default;

bool CVoiceDetectionEx::SetVoiceDetectionMode(VoiceDetectionMode mode) {
  return !m_impl ? desktop::VoiceDetector::HasMode(mode) : m_impl->detector.SetMode(mode);
}

VADResultKind CVoiceDetectionEx::Detect(short* samples, unsigned int count) {
  return m_impl ? m_impl->detector.Detect(samples, count) : vadResultIsUnknown;
}
