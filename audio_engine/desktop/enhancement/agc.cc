#include "engine_api/enhancement/agc.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "desktop/enhancement/parts/level_control.h"
#include "engine_api/platform/log.h"

namespace {

constexpr int kMostSamples = 480;
constexpr float kCrestDb = 20;  // Between speech's peaks and its level.
constexpr float kAnalogToleranceDb = 3;
constexpr float kMicRangeDb = 20;  // From the middle of the microphone's range to an end.

using desktop::LevelControl;

struct Agc {
  int rate = 0;  // Hz, 0 until initialised.
  int mode = kAgcModeUnchanged;
  int minLevel = 0;
  int maxLevel = 0;
  WebRtcAgcConfig config = {3, 9, 1};
  LevelControl control = LevelControl(1, LevelControl::Settings());
  float block[kMostSamples] = {};

  int MiddleLevel() const { return minLevel + (maxLevel - minLevel) / 2; }
  float TargetDb() const { return -static_cast<float>(config.targetLevelDbfs) - kCrestDb; }
};

void Restart(Agc& agc) {
  LevelControl::Settings settings;
  settings.targetDb = agc.TargetDb();
  settings.ceilingDb =
      agc.config.limiterEnable != 0 ? -static_cast<float>(agc.config.targetLevelDbfs) : 0.0f;
  settings.adapts = agc.mode != kAgcModeFixedDigital;
  if (!settings.adapts) settings.firstGainDb = static_cast<float>(agc.config.compressionGaindB);
  agc.control = LevelControl(agc.rate, settings);
}

bool Takes(const Agc* agc, const void* bands, int bandCount, int samples) {
  return agc != nullptr && agc->rate != 0 && bands != nullptr && bandCount == 1 &&
         samples == agc->rate / 100;
}

// One step towards the volume that gives the level wanted.
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
  delete static_cast<Agc*>(handle);
  return 0;
}

int WebRtcAgc_Init(void* handle, int32_t minLevel, int32_t maxLevel, int16_t mode, uint32_t rate) {
  if (handle == nullptr) return -1;
  const bool knownRate = rate == 8000 || rate == 16000 || rate == 32000 || rate == 48000;
  if (!knownRate || minLevel < 0 || maxLevel <= minLevel || mode < kAgcModeUnchanged ||
      mode > kAgcModeFixedDigital) {
    OutputDebugInfo("no gain control in mode %d at %u Hz, levels %d to %d", mode, rate, minLevel,
                    maxLevel);
    return -1;
  }
  auto& agc = *static_cast<Agc*>(handle);
  agc = Agc();
  agc.rate = static_cast<int>(rate);
  agc.mode = mode;
  agc.minLevel = minLevel;
  agc.maxLevel = maxLevel;
  Restart(agc);
  return 0;
}

int WebRtcAgc_set_config(void* handle, WebRtcAgcConfig config) {
  auto* const agc = static_cast<Agc*>(handle);
  if (agc == nullptr || agc->rate == 0) return -1;
  if (config.targetLevelDbfs < 0 || config.targetLevelDbfs > 31 || config.compressionGaindB < 0 ||
      config.compressionGaindB > 90) {
    OutputDebugInfo("no gain control to -%d dB by up to %d dB", config.targetLevelDbfs,
                    config.compressionGaindB);
    return -1;
  }
  agc->config = config;
  Restart(*agc);
  return 0;
}

int WebRtcAgc_VirtualMic(void* handle, int16_t* const* bands, int16_t bandCount, int16_t samples,
                         int32_t micLevelIn, int32_t* micLevelOut) {
  auto* const agc = static_cast<Agc*>(handle);
  if (!Takes(agc, bands, bandCount, samples) || micLevelOut == nullptr) return -1;
  const int middle = agc->MiddleLevel();
  *micLevelOut = micLevelIn == 0 ? middle : std::clamp(micLevelIn, agc->minLevel, agc->maxLevel);
  if (*micLevelOut == middle) return 0;

  const auto half = static_cast<float>(agc->maxLevel - middle);
  const float db = kMicRangeDb * static_cast<float>(*micLevelOut - middle) / half;
  const float gain = std::pow(10.0f, db / 20);
  std::transform(bands[0], bands[0] + samples, bands[0], [gain](int16_t sample) {
    return static_cast<int16_t>(std::lrint(std::clamp(gain * sample, -32768.0f, 32767.0f)));
  });
  return 0;
}

int WebRtcAgc_Process(void* handle, const int16_t* const* in, int16_t bandCount, int16_t samples,
                      int16_t* const* out, int32_t micLevelIn, int32_t* micLevelOut, int16_t echo,
                      uint8_t* saturationWarning) {
  auto* const agc = static_cast<Agc*>(handle);
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
  agc->control.Process(agc->block, samples, echo == 0);
  std::transform(agc->block, agc->block + samples, out[0],
                 [](float sample) { return static_cast<int16_t>(std::lrint(sample)); });
  if (agc->mode == kAgcModeAdaptiveAnalog) *micLevelOut = BetterVolume(*agc, micLevelIn);
  return 0;
}
