#include "engine_api/enhancement/audio_agc.h"

#include "desktop/enhancement/parts/block_gain.h"

namespace ZUAudio {

struct AudioAgc::Control {
  desktop::BlockGain gain;
};

AudioAgc::AudioAgc(int rate, int channels)
    : m_control(new Control{desktop::BlockGain(rate, channels)}) {}

AudioAgc::~AudioAgc() = default;

void AudioAgc::EnableAGC(bool on) { m_control->gain.Enable(on); }

void AudioAgc::Process(short* samples) { m_control->gain.Process(samples, true); }

}  // namespace ZUAudio
