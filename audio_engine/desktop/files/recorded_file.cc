#include "desktop/files/recorded_file.h"

#include <cinttypes>
#include <utility>

#include "desktop/devices/audio_device.h"
#include "engine_api/platform/log.h"

namespace desktop {

// The sink belongs to the work, which finishes the file at its end and survives a disk that hangs.
RecordedFile::RecordedFile(std::unique_ptr<FileSink> sink, DeviceFormat format,
                           std::chrono::milliseconds patience)
    : m_name(sink->Name()),
      m_patience(patience),
      m_worker(
          format,
          [own = std::shared_ptr<FileSink>(std::move(sink))](short* samples, size_t frames) {
            own->Write(samples, frames);
          },
          kPatience) {}

RecordedFile::~RecordedFile() { Finish(); }

void RecordedFile::Finish() {
  if (std::exchange(m_finished, true)) return;
  const bool ended = m_worker.StopOrLeave(m_patience);
  const uint64_t lost = m_worker.Lost();
  if (ended && lost == 0) return;
  OutputDebugInfo("%s: %s, %" PRIu64 " blocks of 10 ms are lost", m_name.c_str(),
                  ended ? "the disk was too slow" : "given up because the disk writes nothing",
                  lost);
  AddDeviceFailures(Direction::kInput, lost);
}

}  // namespace desktop
