#include "desktop/platform/audio_device.h"
#include "desktop/platform/background.h"
#include "engine/engine_work.h"

namespace host {

std::optional<DeviceGaps> FinishEngineWork(std::chrono::milliseconds limit, bool /*runsOn*/) {
  desktop::FinishBackgroundWork(limit);
  desktop::StopAudioDevices();  // Each tells the log how it went.
  const desktop::DeviceFailures failures = desktop::AllDeviceFailures();
  return DeviceGaps{.underruns = failures.outputs, .overruns = failures.inputs};
}

}  // namespace host
