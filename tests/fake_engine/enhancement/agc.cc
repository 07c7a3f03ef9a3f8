#include "fake_engine/enhancement/agc.h"

#include <algorithm>
#include <string>

#include "fake_engine/fake_engine.h"

int WebRtcAgc_Create(void** handle) {
  FakeEngine& engine = FakeEngine::Current();
  *handle = new char;
  engine.Record("WebRtcAgc_Create() = %s", engine.Identify(*handle, "WebRtcAgc").c_str());
  return engine.Answer(0, -1);
}

int WebRtcAgc_Free(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAgc_Free(%s)", engine.HandleOf(handle).c_str());
  engine.Forget(handle);
  delete static_cast<char*>(handle);
  return engine.Answer(0, -1);
}

int WebRtcAgc_Init(void* handle, int32_t minLevel, int32_t maxLevel, int16_t mode, uint32_t rate) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAgc_Init(%s, %d, %d, %d, %u)", engine.HandleOf(handle).c_str(), minLevel,
                maxLevel, mode, rate);
  return engine.Answer(0, -1);
}

int WebRtcAgc_set_config(void* handle, WebRtcAgcConfig config) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAgc_set_config(%s, %d, %d, %d)", engine.HandleOf(handle).c_str(),
                config.targetLevelDbfs, config.compressionGaindB, config.limiterEnable);
  return engine.Answer(0, -1);
}

int WebRtcAgc_VirtualMic(void* handle, int16_t* const* bands, int16_t bandCount, int16_t samples,
                         int32_t micLevelIn, int32_t* micLevelOut) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string block = engine.Buffer(bands[0]);
  const int32_t before = *micLevelOut;
  if (!engine.Fails()) *micLevelOut = engine.script<AgcScript>().virtualMic(bands[0], samples);
  engine.Record("WebRtcAgc_VirtualMic(%s, %s, %d, %d, %d, %d -> %d)",
                engine.HandleOf(handle).c_str(), block.c_str(), bandCount, samples, micLevelIn,
                before, *micLevelOut);
  return engine.Answer(0, -1);
}

int WebRtcAgc_Process(void* handle, const int16_t* const* in, int16_t bandCount, int16_t samples,
                      int16_t* const* out, int32_t micLevelIn, int32_t* micLevelOut, int16_t echo,
                      uint8_t* saturationWarning) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string from = engine.Buffer(in[0]);
  const std::string to = engine.Buffer(out[0]);
  const int32_t before = *micLevelOut;
  const int saturated = *saturationWarning;
  if (!engine.Fails()) {
    std::copy_n(in[0], samples, out[0]);
    *micLevelOut = engine.script<AgcScript>().process(out[0], samples);
    *saturationWarning = 1;
  }
  engine.Record("WebRtcAgc_Process(%s, %s, %d, %d, %s, %d, %d -> %d, %d, %d)",
                engine.HandleOf(handle).c_str(), from.c_str(), bandCount, samples, to.c_str(),
                micLevelIn, before, *micLevelOut, echo, saturated);
  return engine.Answer(0, -1);
}
