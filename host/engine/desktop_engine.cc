#include "desktop/devices/audio_device.h"
#include "desktop/devices/background.h"
#include "desktop/files/refused_files.h"
#include "engine/engine_work.h"

namespace host {

EngineFindings FinishEngineWork(std::chrono::milliseconds limit, bool /*runsOn*/) {
  desktop::FinishBackgroundWork(limit);
  desktop::StopAudioDevices();  // Each tells the log how it went.
  const desktop::DeviceFailures failures = desktop::AllDeviceFailures();
  EngineFindings findings;
  findings.gaps = DeviceGaps{.underruns = failures.outputs, .overruns = failures.inputs};
  for (const auto& [name, reason] : desktop::RefusedFiles()) findings.Refuse(name, reason);
  return findings;
}

}  // namespace host
