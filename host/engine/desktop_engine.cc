#include "desktop/platform/audio_device.h"
#include "desktop/platform/background.h"
#include "engine/engine_work.h"

namespace host {

void FinishEngineWork(std::chrono::milliseconds limit, bool /*runsOn*/) {
  desktop::FinishBackgroundWork(limit);
  desktop::StopAudioDevices();  // Each tells the log how it went.
}

}  // namespace host
