#include "engine_api/enhancement/vad.h"

#include "fake_engine/fake_engine.h"

int WebRtcVad_Create(void** handle) {
  FakeEngine& engine = FakeEngine::Current();
  *handle = new char;
  engine.Identify(*handle, "WebRtcVad");
  engine.Record("WebRtcVad_Create() = %s", engine.HandleOf(*handle).c_str());
  return engine.Answer(0, -1);
}

int WebRtcVad_Init(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcVad_Init(%s)", engine.HandleOf(handle).c_str());
  return engine.Answer(0, -1);
}

int WebRtcVad_set_mode(void* handle, int mode) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcVad_set_mode(%s, %d)", engine.HandleOf(handle).c_str(), mode);
  return engine.Answer(0, -1);
}

int WebRtcVad_Free(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WebRtcVad_Free(%s)", engine.HandleOf(handle).c_str());
  engine.Forget(handle);
  delete static_cast<char*>(handle);
  return engine.Answer(0, -1);
}
