#include "engine_api/enhancement/voice_detection.h"

#include <exception>
#include <vector>

#include "desktop/enhancement/parts/activity_detector.h"
#include "desktop/enhancement/parts/steady_noise.h"
#include "engine_api/platform/log.h"

namespace {

// The thresholds of the modes 0 to 3.
constexpr float kThresholds[] = {1.6f, 1.2f, 0.95f, 0.75f};

}  // namespace

struct CVoiceDetectionEx::Impl {
  Impl(int rate, unsigned channelCount)
      : hop(static_cast<size_t>(rate) / 100),
        channels(channelCount),
        activity(rate, hop),
        steadiness(rate, hop) {
    frame.reserve(hop);
    activity.SetThreshold(kThresholds[voiceDetectionLowLikelihood]);
  }

  // Takes one sample of one channel; true when it completed a frame of 10 ms.
  bool Push(short sample) {
    sum += sample;
    if (++channel < channels) return false;
    frame.push_back(static_cast<float>(sum) / static_cast<float>(channels));
    sum = 0;
    channel = 0;
    return frame.size() == hop;
  }

  VADResultKind Judge() {
    const bool steady = steadiness.Process(frame);
    const bool active = activity.Process(frame, steady);
    frame.clear();
    if (!active) return vadResultIsPassive;
    return steadiness.Rattles() ? vadResultIsActiveWithoutVoice : vadResultIsActive;
  }

  size_t hop;
  unsigned channels;
  desktop::ActivityDetector activity;
  desktop::SteadyNoise steadiness;
  std::vector<float> frame;  // What there is of the next 10 ms, mixed down.
  int sum = 0;               // Of the channels of the next sample that have come,
  unsigned channel = 0;      // and how many these are.
  VADResultKind last = vadResultIsUnknown;
};

CVoiceDetectionEx::CVoiceDetectionEx(unsigned int sampleRate, unsigned int channels) {
  if (sampleRate < 4000 || sampleRate > 192000 || channels < 1 || channels > 64) {
    OutputDebugInfo("CVoiceDetectionEx: %u Hz, %u channels are not supported", sampleRate,
                    channels);
    return;
  }
  try {
    m_impl = std::make_unique<Impl>(static_cast<int>(sampleRate), channels);
  } catch (const std::exception&) {
    OutputDebugInfo("CVoiceDetectionEx: no memory");
  }
}

CVoiceDetectionEx::~CVoiceDetectionEx() = default;

bool CVoiceDetectionEx::SetVoiceDetectionMode(VoiceDetectionMode mode) {
  const int number = mode == voiceDetectionUnknown ? voiceDetectionLowLikelihood : mode;
  if (number < voiceDetectionVeryLowLikelihood || number > voiceDetectionHighLikelihood) {
    OutputDebugInfo("CVoiceDetectionEx: no mode %d", number);
    return false;
  }
  if (m_impl) m_impl->activity.SetThreshold(kThresholds[number]);
  return true;
}

VADResultKind CVoiceDetectionEx::Detect(short* samples, unsigned int count) {
  if (!m_impl) return vadResultIsUnknown;
  bool sound = false;
  bool voice = false;
  for (unsigned i = 0; i < count; ++i) {
    if (!m_impl->Push(samples[i])) continue;
    m_impl->last = m_impl->Judge();
    voice = voice || m_impl->last == vadResultIsActive;
    sound = sound || m_impl->last == vadResultIsActiveWithoutVoice;
  }
  if (sound) m_impl->last = vadResultIsActiveWithoutVoice;
  if (voice) m_impl->last = vadResultIsActive;
  return m_impl->last;
}
