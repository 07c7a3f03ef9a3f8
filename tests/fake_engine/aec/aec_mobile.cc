#include "fake_engine/aec/aec_mobile.h"

#include <string>

#include "engine_api/aec/aec_mobile.h"
#include "fake_engine/fake_engine.h"

void* AecMobile_Creat(AECMOBILE_ERROR_CODE* error) {
  FakeEngine& engine = FakeEngine::Current();
  *error = AECMOBILE_NOT_INITIALIZED;  // Whatever it says, the callers go on.
  auto* const handle = new char;
  engine.Record("AecMobile_Creat() = %s", engine.Identify(handle, "AecMobile").c_str());
  return handle;
}

AECMOBILE_ERROR_CODE AecMobile_Free(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("AecMobile_Free(%s)", engine.HandleOf(handle).c_str());
  engine.Forget(handle);
  delete static_cast<char*>(handle);
  return engine.Answer(AECMOBILE_NO_ERROR, AECMOBILE_BAD_PARAMETER);
}

AECMOBILE_ERROR_CODE AecMobile_Init(void* handle, int nearRate, int farRate, int outRate) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("AecMobile_Init(%s, %d, %d, %d)", engine.HandleOf(handle).c_str(), nearRate,
                farRate, outRate);
  return engine.Answer(AECMOBILE_NO_ERROR, AECMOBILE_BAD_PARAMETER);
}

AECMOBILE_ERROR_CODE AecMobile_SetAecNewOn(void* handle, bool on) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("AecMobile_SetAecNewOn(%s, %d)", engine.HandleOf(handle).c_str(), on);
  return engine.Answer(AECMOBILE_NO_ERROR, AECMOBILE_BAD_PARAMETER);
}

AECMOBILE_ERROR_CODE AecMobile_BufferFarend(void* handle, const int16_t* farend, int frames) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("AecMobile_BufferFarend(%s, %d..%d, %d)", engine.HandleOf(handle).c_str(),
                farend[0], farend[frames - 1], frames);
  return engine.Answer(AECMOBILE_NO_ERROR, AECMOBILE_BAD_PARAMETER);
}

AECMOBILE_ERROR_CODE AecMobile_Process_Bands(void* handle, const int16_t* const* nearBands,
                                             int bands, int16_t framesPerBand,
                                             int16_t* const* outBands, int16_t** alignedFar,
                                             int16_t** alignedNear, bool newNlp, bool aec,
                                             bool ns) {
  FakeEngine& engine = FakeEngine::Current();
  const bool cleared = alignedFar[0] == nullptr && alignedFar[1] == nullptr &&
                       alignedNear[0] == nullptr && alignedNear[1] == nullptr;
  engine.Record("AecMobile_Process_Bands(%s, %d.., %d, %d, %s, %d, %d, %d)",
                engine.HandleOf(handle).c_str(), nearBands[0][0], bands, framesPerBand,
                cleared ? "cleared" : "as left", newNlp, aec, ns);
  if (engine.Fails()) return AECMOBILE_BAD_PARAMETER;
  engine.script<AecMobileScript>().process(nearBands[0], outBands[0], framesPerBand);
  alignedFar[0] = alignedFar[1] = outBands[0];
  alignedNear[0] = alignedNear[1] = outBands[0];
  return engine.Answer(AECMOBILE_NO_ERROR, AECMOBILE_BAD_PARAMETER);
}

AECMOBILE_ERROR_CODE AecMobile_GetEchoState(void* handle, int* status) {
  FakeEngine& engine = FakeEngine::Current();
  const int state = engine.Answer(engine.script<AecMobileScript>().echoState(), -1);
  if (state >= 0) *status = state;
  engine.Record("AecMobile_GetEchoState(%s) = %d", engine.HandleOf(handle).c_str(), *status);
  return engine.Answer(AECMOBILE_NO_ERROR, AECMOBILE_BAD_PARAMETER);
}

int AecMobile_getDelay(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  const int delay = engine.script<AecMobileScript>().delay();
  engine.Record("AecMobile_getDelay(%s) = %d", engine.HandleOf(handle).c_str(), delay);
  return delay;
}
