#include "recording/rendering.h"

#include <utility>

#include "files/audio_figures.h"

namespace host {

Rendering::Rendering(const Task& task, std::function<bool()> goOn)
    : m_task(task), m_goOn(std::move(goOn)) {}

std::optional<RecordingFault> Rendering::Write(double gain) {
  const bool narrow = m_task.form.samples == WrittenForm::Samples::kPcm16;
  m_dithered = narrow && (m_inexact || gain < 1);
  const bool knewBefore = m_inexact;
  if (auto fault = Attempt(gain)) return fault;
  // The first sample with more precision has ended the attempt.
  if (!narrow || m_dithered || m_inexact == knewBefore) return std::nullopt;
  m_dithered = true;
  return Attempt(gain);
}

double Rendering::SafeGain() const { return GainWithoutClipping(m_level, m_task.form, m_dithered); }

std::optional<RecordingFault> Rendering::Attempt(double gain) {
  const OpenedRecording opened = OpenRecording(m_task.source, m_task.raw);
  if (opened.recording == nullptr)
    return RecordingFault{RecordingFault::Kind::kInput, opened.fault};
  RecordingWriter writer(m_task.target, m_task.form, gain, m_dithered);
  const bool watch =
      !m_dithered && m_task.form.samples == WrittenForm::Samples::kPcm16 && !m_inexact;
  std::string fault = ForEachConvertedBlock(*opened.recording, m_task.conversion,
                                            [&](std::span<const double> samples) {
                                              if (!m_goOn()) return false;
                                              if (!writer.Write(samples)) return false;
                                              if (watch && !writer.Level().exact) m_inexact = true;
                                              return !watch || !m_inexact;
                                            });
  if (watch && m_inexact) return std::nullopt;
  m_level = writer.Level();
  if (fault.empty()) writer.Close();
  if (!writer.Fault().empty()) return RecordingFault{RecordingFault::Kind::kOutput, writer.Fault()};
  if (fault == kStopped) return RecordingFault{RecordingFault::Kind::kStopped, fault};
  if (!fault.empty()) return RecordingFault{RecordingFault::Kind::kInput, fault};
  return std::nullopt;
}

}  // namespace host
