#include "engine_api/effects/voice_beautify.h"

#include <cmath>
#include <new>

#include "desktop/effects/voice/voice_stream.h"

namespace {

class VoiceBeautify final : public IAudioVoiceBeautify {
 public:
  void Destroy() override { delete this; }

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    m_stream.Process<short>(samples, samplesPerChannel, sampleRate, channels, sampleSize);
    return samplesPerChannel;
  }

  int Process(int* samples, int samplesPerChannel, int sampleRate, int channels, int sampleSize,
              int capacity) override {
    if (channels > 0 && samplesPerChannel <= capacity / channels) {
      m_stream.Process<int>(reinterpret_cast<char*>(samples), samplesPerChannel, sampleRate,
                            channels, sampleSize);
    }
    return samplesPerChannel;
  }

  void Flush() override { m_stream.Flush(); }

  bool GetEnabled() override { return m_enabled; }

  void SetEnabled(bool enabled) override {
    m_enabled = enabled;
    Update();
  }

  bool IsActive() override { return m_stream.IsActive(); }

  int VoiceBeautifyProcess(unsigned short* samples, int count, int rate, int channels) override {
    const int frames = channels > 0 ? count / channels : 0;
    m_stream.Process<short>(reinterpret_cast<char*>(samples), frames, rate, channels, 16);
    return count;
  }

  void SetVoiceBeautifyOption(VoiceBeautifyOption option, float strength,
                              float semitones) override {
    m_recipe = desktop::RecipeOf(option, std::isnan(strength) ? 0 : strength,
                                 std::isnan(semitones) ? 0 : semitones);
    Update();
  }

 private:
  void Update() { m_stream.Set(m_enabled ? m_recipe : desktop::VoiceRecipe()); }

  bool m_enabled = false;
  desktop::VoiceRecipe m_recipe;
  desktop::VoiceStream m_stream{"IAudioVoiceBeautify"};
};

}  // namespace

IAudioVoiceBeautify* IAudioVoiceBeautify::Create() { return new (std::nothrow) VoiceBeautify; }
