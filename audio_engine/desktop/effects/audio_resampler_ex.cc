#include "engine_api/effects/audio_resampler_ex.h"

#include <new>

#include "desktop/dsp/rate/resampler.h"
#include "desktop/platform/log.h"

namespace {

struct Format {
  // The length of a block: the ratio of the two is what counts, not that of the rates.
  uint32_t frames;
  uint32_t rate;  // Hz
  uint32_t channels;
};

class BlockResampler final : public IAudioResamplerEx {
 public:
  BlockResampler(const Format& source, const Format& target)
      : m_source(source),
        m_target(target),
        m_resampler(source.frames, source.channels, target.frames, target.channels, source.frames) {
  }

  bool IsOpen() const { return m_resampler.IsOpen(); }

  bool Convert(const short* source, uint32_t sourceSamples, short* target,
               uint32_t targetRoom) override {
    if (!IsOpen() || sourceSamples < GetSrcSamples() || targetRoom < GetDestSamples()) return false;
    return m_resampler.Convert(source, m_source.frames, target) == m_target.frames;
  }

  bool IsFormatChange(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
                      uint32_t targetChannels) override {
    return sourceRate != m_source.rate || sourceChannels != m_source.channels ||
           targetRate != m_target.rate || targetChannels != m_target.channels;
  }

  uint32_t GetDestSamples() override { return m_target.frames * m_target.channels; }
  uint32_t GetSrcSamples() override { return m_source.frames * m_source.channels; }

 private:
  const Format m_source;
  const Format m_target;
  desktop::Resampler m_resampler;
};

}  // namespace

IAudioResamplerEx* IAudioResamplerEx::Create(uint32_t sourceFrames, uint32_t sourceRate,
                                             uint32_t sourceChannels, uint32_t targetFrames,
                                             uint32_t targetRate, uint32_t targetChannels,
                                             const char* placeTag) {
  auto* converter = new (std::nothrow) BlockResampler({sourceFrames, sourceRate, sourceChannels},
                                                      {targetFrames, targetRate, targetChannels});
  if (converter == nullptr || !converter->IsOpen()) {
    desktop::LogRefusal("%s: cannot convert blocks of %u samples x %u at %u Hz to %u x %u at %u Hz",
                        placeTag != nullptr ? placeTag : "IAudioResamplerEx", sourceFrames,
                        sourceChannels, sourceRate, targetFrames, targetChannels, targetRate);
  }
  return converter;
}

void IAudioResamplerEx::Destroy(IAudioResamplerEx*& converter) {
  delete converter;
  converter = nullptr;
}
