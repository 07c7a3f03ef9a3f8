#include "engine_api/aec/aec_mobile.h"

#include <algorithm>
#include <memory>
#include <new>

#include "desktop/aec/parts/mobile_canceller.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

namespace {

using desktop::MobileCanceller;
using desktop::Size;

// A handle; without a canceller until AecMobile_Init.
struct Handle {
  std::unique_ptr<MobileCanceller> canceller;
  bool newOn = false;
};

Handle* Of(void* handle) { return static_cast<Handle*>(handle); }

AECMOBILE_ERROR_CODE StateOf(void* handle) {
  if (handle == nullptr) return AECMOBILE_BAD_PARAMETER;
  return Of(handle)->canceller ? AECMOBILE_NO_ERROR : AECMOBILE_NOT_INITIALIZED;
}

}  // namespace

void* AecMobile_Creat(AECMOBILE_ERROR_CODE* error) {
  Handle* const handle = new (std::nothrow) Handle;
  if (error != nullptr) *error = handle != nullptr ? AECMOBILE_NO_ERROR : AECMOBILE_NO_MEMORY;
  return handle;
}

AECMOBILE_ERROR_CODE AecMobile_Free(void* handle) {
  if (handle == nullptr) return AECMOBILE_BAD_PARAMETER;
  delete Of(handle);
  return AECMOBILE_NO_ERROR;
}

AECMOBILE_ERROR_CODE AecMobile_Init(void* handle, int nearRate, int farRate, int outRate) {
  if (handle == nullptr) return AECMOBILE_BAD_PARAMETER;
  if (!MobileCanceller::Accepts(nearRate) || farRate != nearRate || outRate != nearRate) {
    desktop::LogRefusal("the mobile echo canceller does not take %d, %d and %d Hz", nearRate,
                        farRate, outRate);
    return AECMOBILE_BAD_PARAMETER;
  }
  try {
    Of(handle)->canceller = std::make_unique<MobileCanceller>(nearRate);
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("no memory for a mobile echo canceller");
    return AECMOBILE_NO_MEMORY;
  }
  return AECMOBILE_NO_ERROR;
}

AECMOBILE_ERROR_CODE AecMobile_SetAecNewOn(void* handle, bool on) {
  if (handle == nullptr) return AECMOBILE_BAD_PARAMETER;
  Of(handle)->newOn = on;
  return AECMOBILE_NO_ERROR;
}

AECMOBILE_ERROR_CODE AecMobile_BufferFarend(void* handle, const int16_t* farend, int frames) {
  const AECMOBILE_ERROR_CODE state = StateOf(handle);
  if (state != AECMOBILE_NO_ERROR) return state;
  MobileCanceller& canceller = *Of(handle)->canceller;
  if (farend == nullptr || Size(frames) != canceller.Frames()) return AECMOBILE_BAD_PARAMETER;
  canceller.ProcessFar(farend);
  return AECMOBILE_NO_ERROR;
}

AECMOBILE_ERROR_CODE AecMobile_Process_Bands(void* handle, const int16_t* const* nearBands,
                                             int bands, int16_t framesPerBand,
                                             int16_t* const* outBands, int16_t** alignedFar,
                                             int16_t** alignedNear, bool newNlp, bool aec,
                                             bool ns) {
  const AECMOBILE_ERROR_CODE state = StateOf(handle);
  if (state != AECMOBILE_NO_ERROR) return state;
  MobileCanceller& canceller = *Of(handle)->canceller;
  if (nearBands == nullptr || outBands == nullptr || Size(bands) != canceller.Bands() ||
      Size(framesPerBand) != canceller.FramesPerBand()) {
    return AECMOBILE_BAD_PARAMETER;
  }
  canceller.ProcessNear(nearBands, outBands, {newNlp || Of(handle)->newOn, aec, ns});
  if (alignedFar != nullptr) *alignedFar = canceller.AlignedFar();
  if (alignedNear != nullptr) *alignedNear = canceller.AlignedNear();
  return AECMOBILE_NO_ERROR;
}

AECMOBILE_ERROR_CODE AecMobile_GetEchoState(void* handle, int* status) {
  const AECMOBILE_ERROR_CODE state = StateOf(handle);
  if (state != AECMOBILE_NO_ERROR) return state;
  if (status == nullptr) return AECMOBILE_BAD_PARAMETER;
  *status = Of(handle)->canceller->HasEcho() ? 1 : 0;
  return AECMOBILE_NO_ERROR;
}

int AecMobile_getDelay(void* handle) {
  return StateOf(handle) == AECMOBILE_NO_ERROR ? Of(handle)->canceller->DelayMs() : -1;
}
