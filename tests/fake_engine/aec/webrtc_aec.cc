#include "engine_api/aec/webrtc_aec.h"

#include <string>

#include "fake_engine/aec/webrtc_aec.h"
#include "fake_engine/fake_engine.h"

int32_t WebRtcAec_Create(void** handle) {
  FakeEngine& engine = FakeEngine::Current();
  *handle = new char;
  engine.Record("WebRtcAec_Create() = %s", engine.Identify(*handle, "WebRtcAec").c_str());
  return engine.Answer(0, -1);
}

int32_t WebRtcAec_Free(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAec_Free(%s)", engine.HandleOf(handle).c_str());
  engine.Forget(handle);
  delete static_cast<char*>(handle);
  return engine.Answer(0, -1);
}

int32_t WebRtcAec_Init(void* handle, int32_t rate, int32_t cardRate) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAec_Init(%s, %d, %d)", engine.HandleOf(handle).c_str(), rate, cardRate);
  return engine.Answer(0, -1);
}

int32_t WebRtcAec_set_config(void* handle, AecConfig config) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAec_set_config(%s, %d, %d, %d, %d)", engine.HandleOf(handle).c_str(),
                config.nlpMode, config.skewMode, config.metricsMode, config.delay_logging);
  return engine.Answer(0, -1);
}

int32_t WebRtcAec_BufferFarend(void* handle, const float* farend, int16_t samples) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAec_BufferFarend(%s, %.1f..%.1f, %d)", engine.HandleOf(handle).c_str(),
                static_cast<double>(farend[0]), static_cast<double>(farend[samples - 1]), samples);
  return engine.Answer(0, -1);
}

int32_t WebRtcAec_Process(void* handle, const float* const* nearend, int32_t bands,
                          float* const* out, int16_t samples, int16_t delayMs, int32_t skew) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcAec_Process(%s, %.1f.., %d, %d, %d, %d)", engine.HandleOf(handle).c_str(),
                static_cast<double>(nearend[0][0]), bands, samples, delayMs, skew);
  if (!engine.Fails()) engine.script<WebrtcAecScript>().process(nearend[0], out[0], samples);
  return engine.Answer(0, -1);
}
