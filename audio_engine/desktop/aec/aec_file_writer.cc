#include "engine_api/aec/aec_file_writer.h"

#include <exception>
#include <new>
#include <string>

#include "desktop/aec/parts/aec_recorder.h"
#include "engine_api/platform/log.h"

struct CAecFileWriter::Recorder {
  Recorder(int rate, int channels, const desktop::AecRecorder::Names& names)
      : recorder(rate, channels, names) {}

  desktop::AecRecorder recorder;
};

CAecFileWriter::CAecFileWriter(int sampleRate, int channels, const char* farTag,
                               const char* nearTag, const char* outTag, const char* delayTag,
                               const char* logTag, int) {
  if (sampleRate < 1 || sampleRate > 192000 || channels < 1 || channels > 8) {
    OutputDebugInfo("no recorder for %d Hz, %d channels", sampleRate, channels);
    return;
  }
  try {
    const desktop::AecRecorder::Names names = {
        {std::string(farTag) + ".wav", std::string(nearTag) + ".wav", std::string(outTag) + ".wav"},
        std::string(delayTag) + ".txt",
        std::string(logTag) + ".txt"};
    m_recorder = std::make_unique<Recorder>(sampleRate, channels, names);
  } catch (const std::bad_alloc&) {
    OutputDebugInfo("no memory for a recorder");
  } catch (const std::exception& error) {  // No thread, or a tag that is null.
    OutputDebugInfo("no recorder: %s", error.what());
  }
}

CAecFileWriter::~CAecFileWriter() = default;

void CAecFileWriter::EchoDetectionStart(int sampleRate) {
  if (m_recorder) m_recorder->recorder.Detect(sampleRate);
}

void CAecFileWriter::EchoDetectionEnd() {
  if (m_recorder) m_recorder->recorder.Finish();
}

int CAecFileWriter::EchoDetect() { return m_recorder && m_recorder->recorder.HasEcho() ? 1 : 0; }

void CAecFileWriter::RecordFarendData(const void* data, int bytes) {
  if (m_recorder) m_recorder->recorder.Record(desktop::AecRecorder::kFar, data, bytes);
}

void CAecFileWriter::RecordNearendData(const void* data, int bytes) {
  if (m_recorder) m_recorder->recorder.Record(desktop::AecRecorder::kNear, data, bytes);
}

void CAecFileWriter::RecordOutData(const void* data, int bytes) {
  if (m_recorder) m_recorder->recorder.Record(desktop::AecRecorder::kOut, data, bytes);
}

void CAecFileWriter::WriteAecFiles() {
  if (m_recorder) m_recorder->recorder.WriteQueued();
}
