#include "engine_api/aec/aec_file_writer.h"

#include <new>

#include "desktop/aec/parts/aec_recorder.h"
#include "desktop/common/counts.h"

using desktop::AecRecorder;

struct CAecFileWriter::Recorder {
  std::unique_ptr<AecRecorder> recorder;
};

CAecFileWriter::CAecFileWriter(int sampleRate, int channels, const char* farTag,
                               const char* nearTag, const char* outTag, const char* delayTag,
                               const char* logTag, int) {
  auto recorder =
      AecRecorder::Create(sampleRate, channels, {{farTag, nearTag, outTag}, delayTag, logTag});
  if (recorder != nullptr) m_recorder.reset(new (std::nothrow) Recorder{std::move(recorder)});
}

CAecFileWriter::~CAecFileWriter() = default;

void CAecFileWriter::EchoDetectionStart(int sampleRate) {
  if (m_recorder) m_recorder->recorder->Detect(sampleRate);
}

void CAecFileWriter::EchoDetectionEnd() {
  if (m_recorder) m_recorder->recorder->Finish();
}

int CAecFileWriter::EchoDetect() { return m_recorder && m_recorder->recorder->HasEcho() ? 1 : 0; }

void CAecFileWriter::RecordFarendData(const void* data, int bytes) {
  if (m_recorder) m_recorder->recorder->Record(AecRecorder::kFar, data, desktop::Size(bytes));
}

void CAecFileWriter::RecordNearendData(const void* data, int bytes) {
  if (m_recorder) m_recorder->recorder->Record(AecRecorder::kNear, data, desktop::Size(bytes));
}

void CAecFileWriter::RecordOutData(const void* data, int bytes) {
  if (m_recorder) m_recorder->recorder->Record(AecRecorder::kOut, data, desktop::Size(bytes));
}

void CAecFileWriter::WriteAecFiles() {
  if (m_recorder) m_recorder->recorder->WriteQueued();
}
