#include "fake_engine/effects/audio_resampler_ex.h"

#include <set>

#include "engine_api/effects/audio_resampler_ex.h"
#include "fake_engine/fake_engine.h"

namespace {

class FakeResampler : public IAudioResamplerEx {
 public:
  FakeResampler(uint32_t sourceSamples, uint32_t targetSamples)
      : m_sourceSamples(sourceSamples), m_targetSamples(targetSamples) {}

  ~FakeResampler() override { FakeEngine::Current().Died(this); }

  bool Convert(const short* source, uint32_t sourceSamples, short* target,
               uint32_t targetRoom) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string from = engine.Buffer(source);
    const std::string to = engine.Buffer(target);
    const bool answer = !engine.Fails() && m_targetSamples <= targetRoom &&
                        engine.script<AudioResamplerExScript>().convert(source, sourceSamples,
                                                                        target, m_targetSamples);
    engine.Call(this, "Convert(%s, %u, %s, %u) = %d", from.c_str(), sourceSamples, to.c_str(),
                targetRoom, answer);
    return answer;
  }

  bool IsFormatChange(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
                      uint32_t targetChannels) override {
    FakeEngine& engine = FakeEngine::Current();
    const bool answer =
        engine.Answer(engine.script<AudioResamplerExScript>().isFormatChange(), false);
    engine.Call(this, "IsFormatChange(%u, %u, %u, %u) = %d", sourceRate, sourceChannels, targetRate,
                targetChannels, answer);
    return answer;
  }
  uint32_t GetDestSamples() override { return m_targetSamples; }
  uint32_t GetSrcSamples() override { return m_sourceSamples; }

 private:
  const uint32_t m_sourceSamples;
  const uint32_t m_targetSamples;
};

// Keeps converters that nobody destroys from looking lost.
std::set<const IAudioResamplerEx*>& Alive() {
  static auto* const converters = new std::set<const IAudioResamplerEx*>;
  return *converters;
}

}  // namespace

IAudioResamplerEx* IAudioResamplerEx::Create(uint32_t sourceFrames, uint32_t sourceRate,
                                             uint32_t sourceChannels, uint32_t targetFrames,
                                             uint32_t targetRate, uint32_t targetChannels,
                                             const char* placeTag) {
  FakeEngine& engine = FakeEngine::Current();
  auto* const converter =
      new FakeResampler(sourceFrames * sourceChannels, targetFrames * targetChannels);
  Alive().insert(converter);
  const std::string name = engine.Identify(converter, "IAudioResamplerEx");
  engine.Record("IAudioResamplerEx::Create(%u, %u, %u, %u, %u, %u, %s) = %s", sourceFrames,
                sourceRate, sourceChannels, targetFrames, targetRate, targetChannels,
                placeTag != nullptr ? placeTag : "null", name.c_str());
  return converter;
}

void IAudioResamplerEx::Destroy(IAudioResamplerEx*& converter) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("IAudioResamplerEx::Destroy(%s)", engine.NameOf(converter).c_str());
  Alive().erase(converter);
  delete converter;
  converter = nullptr;
}
