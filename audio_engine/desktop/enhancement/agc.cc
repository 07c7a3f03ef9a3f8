#include "engine_api/enhancement/agc.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/enhancement/parts/level_control.h"
#include "desktop/platform/log.h"

namespace {

constexpr size_t kMaxSamples = 480;

// How far the peaks of speech lie above its level.
constexpr float kCrestDb = 20;
constexpr float kAnalogToleranceDb = 3;

// How far either end of the microphone's range is from its middle.
constexpr float kMicRangeDb = 20;

using desktop::Count;
using desktop::LevelControl;
using desktop::Size;
using desktop::ToSample;

struct Agc {
  // Hz; 0 until initialised.
  int rate = 0;
  int mode = kAgcModeUnchanged;
  int minLevel = 0;
  int maxLevel = 0;
  WebRtcAgcConfig config = {3, 9, 1};
  LevelControl control = LevelControl(1, LevelControl::Settings());
  float block[kMaxSamples] = {};

  int MiddleLevel() const { return minLevel + (maxLevel - minLevel) / 2; }
  float PeakDb() const { return -static_cast<float>(config.targetLevelDbfs); }
  float TargetDb() const { return PeakDb() - kCrestDb; }
};

Agc* Of(void* handle) { return static_cast<Agc*>(handle); }

void Restart(Agc& agc) {
  LevelControl::Settings settings;
  settings.targetDb = agc.TargetDb();
  settings.ceilingDb = agc.config.limiterEnable != 0 ? agc.PeakDb() : 0.0f;
  settings.adapts = agc.mode != kAgcModeFixedDigital;
  if (!settings.adapts) settings.firstGainDb = agc.config.compressionGaindB;
  agc.control = LevelControl(agc.rate, settings);
}

bool Takes(const Agc* agc, const void* bands, int bandCount, int samples) {
  return agc != nullptr && agc->rate != 0 && bands != nullptr && bandCount == 1 &&
         samples == agc->rate / 100;
}

// Returns a volume that is one step nearer to the one that gives the level wanted.
int BetterVolume(const Agc& agc, int now) {
  const float level = agc.control.LevelDb();
  int step = 0;
  if (level < 0 && level < agc.TargetDb() - kAnalogToleranceDb) step = 1;
  if (level < 0 && level > agc.TargetDb() + kAnalogToleranceDb) step = -1;
  return std::clamp(now + step, agc.minLevel, agc.maxLevel);
}

}  // namespace

int WebRtcAgc_Create(void** handle) {
  if (handle == nullptr) return -1;
  *handle = new (std::nothrow) Agc;
  return *handle != nullptr ? 0 : -1;
}

int WebRtcAgc_Free(void* handle) {
  if (handle == nullptr) return -1;
  delete Of(handle);
  return 0;
}

int WebRtcAgc_Init(void* handle, int32_t minLevel, int32_t maxLevel, int16_t mode, uint32_t rate) {
  if (handle == nullptr) return -1;
  const bool knownRate = rate == 8000 || rate == 16000 || rate == 32000 || rate == 48000;
  if (!knownRate || minLevel < 0 || maxLevel <= minLevel || mode < kAgcModeUnchanged ||
      mode > kAgcModeFixedDigital) {
    desktop::LogRefusal("no gain control in mode %d at %u Hz, levels %d to %d", mode, rate,
                        minLevel, maxLevel);
    return -1;
  }
  Agc& agc = *Of(handle);
  agc = Agc();
  agc.rate = Count(rate);
  agc.mode = mode;
  agc.minLevel = minLevel;
  agc.maxLevel = maxLevel;
  Restart(agc);
  return 0;
}

int WebRtcAgc_set_config(void* handle, WebRtcAgcConfig config) {
  Agc* const agc = Of(handle);
  if (agc == nullptr || agc->rate == 0) return -1;
  if (config.targetLevelDbfs < 0 || config.targetLevelDbfs > 31 || config.compressionGaindB < 0 ||
      config.compressionGaindB > 90) {
    desktop::LogRefusal("no gain control to -%d dB by up to %d dB", config.targetLevelDbfs,
                        config.compressionGaindB);
    return -1;
  }
  agc->config = config;
  Restart(*agc);
  return 0;
}

int WebRtcAgc_VirtualMic(void* handle, int16_t* const* bands, int16_t bandCount, int16_t samples,
                         int32_t micLevelIn, int32_t* micLevelOut) {
  Agc* const agc = Of(handle);
  if (!Takes(agc, bands, bandCount, samples) || micLevelOut == nullptr) return -1;
  const int middle = agc->MiddleLevel();
  *micLevelOut = micLevelIn == 0 ? middle : std::clamp(micLevelIn, agc->minLevel, agc->maxLevel);
  if (*micLevelOut == middle) return 0;

  const auto half = static_cast<float>(agc->maxLevel - middle);
  const float db = kMicRangeDb * static_cast<float>(*micLevelOut - middle) / half;
  const float gain = std::pow(10.0f, db / 20);
  std::transform(bands[0], bands[0] + samples, bands[0],
                 [gain](int16_t sample) { return ToSample(gain * sample); });
  return 0;
}

int WebRtcAgc_Process(void* handle, const int16_t* const* in, int16_t bandCount, int16_t samples,
                      int16_t* const* out, int32_t micLevelIn, int32_t* micLevelOut, int16_t echo,
                      uint8_t* saturationWarning) {
  Agc* const agc = Of(handle);
  if (!Takes(agc, in, bandCount, samples) || out == nullptr || micLevelOut == nullptr ||
      saturationWarning == nullptr) {
    return -1;
  }
  const bool full = std::any_of(in[0], in[0] + samples, [](int16_t sample) {
    return sample == INT16_MAX || sample == INT16_MIN;
  });
  *saturationWarning = full ? 1 : 0;
  *micLevelOut = micLevelIn;
  std::copy(in[0], in[0] + samples, out[0]);
  if (agc->mode == kAgcModeUnchanged) return 0;

  std::copy(in[0], in[0] + samples, agc->block);
  agc->control.Process(agc->block, Size(samples), echo == 0);
  std::transform(agc->block, agc->block + samples, out[0], ToSample);
  if (agc->mode == kAgcModeAdaptiveAnalog) *micLevelOut = BetterVolume(*agc, micLevelIn);
  return 0;
}
