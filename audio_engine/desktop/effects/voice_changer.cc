#include "engine_api/effects/voice_changer.h"

#include <new>

#include "desktop/effects/voice/voice_stream.h"

namespace {

class VoiceChanger final : public IVoiceChangerToolbox {
 public:
  VoiceChanger(int rate, int channels) : m_rate(rate), m_channels(channels) {}

  int Process(short* samples, short* count) override {
    if (count == nullptr) return 0;
    const int frames = m_channels > 0 ? *count / m_channels : 0;
    m_stream.Process<short>(reinterpret_cast<char*>(samples), frames, m_rate, m_channels, 16);
    return *count;
  }

  void SetVoiceEffectOption(VoiceEffectOption option) override {
    m_stream.Set(desktop::RecipeOf(option));
  }

 private:
  const int m_rate;
  const int m_channels;
  desktop::VoiceStream m_stream{"IVoiceChangerToolbox"};
};

}  // namespace

IVoiceChangerToolbox* IVoiceChangerToolbox::Create(int rate, int channels) {
  return new (std::nothrow) VoiceChanger(rate, channels);
}
