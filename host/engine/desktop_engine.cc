#include "desktop/devices/audio_device.h"
#include "desktop/devices/background.h"
#include "desktop/files/refused_files.h"
#include "desktop/platform/log.h"
#include "engine/engine_work.h"

namespace host {

EngineFindings FinishEngineWork(std::chrono::milliseconds limit, bool /*runsOn*/) {
  desktop::FinishBackgroundWork(limit);
  desktop::StopAudioDevices();  // Each tells the log how it went.
  const desktop::DeviceFailures failures = desktop::AllDeviceFailures();
  EngineFindings findings;
  findings.gaps = DeviceGaps{.underruns = failures.outputs, .overruns = failures.inputs};
  for (const auto& [name, reason] : desktop::RefusedFiles()) findings.Refuse(name, reason);
  for (const std::string& line : desktop::Refusals()) findings.Say(line);
  return findings;
}

}  // namespace host
