#include "engine_api/enhancement/vad.h"

#include <new>

#include "desktop/platform/log.h"

namespace {

struct Detector {
  bool ready = false;
  int mode = 0;
};

Detector* Of(void* handle) { return static_cast<Detector*>(handle); }

}  // namespace

int WebRtcVad_Create(void** handle) {
  if (handle == nullptr) return -1;
  *handle = new (std::nothrow) Detector;
  return *handle != nullptr ? 0 : -1;
}

int WebRtcVad_Init(void* handle) {
  if (handle == nullptr) return -1;
  *Of(handle) = {.ready = true};
  return 0;
}

int WebRtcVad_set_mode(void* handle, int mode) {
  Detector* const detector = Of(handle);
  if (detector == nullptr || !detector->ready) return -1;
  if (mode < 0 || mode > 3) {
    desktop::LogRefusal("no voice detection in mode %d", mode);
    return -1;
  }
  detector->mode = mode;
  return 0;
}

int WebRtcVad_Free(void* handle) {
  if (handle == nullptr) return -1;
  delete Of(handle);
  return 0;
}
