#include "fake_engine/aec/aec_file_writer.h"

#include "engine_api/aec/aec_file_writer.h"
#include "fake_engine/fake_engine.h"

struct CAecFileWriter::Recorder {};

CAecFileWriter::CAecFileWriter(int sampleRate, int channels, const char* farTag,
                               const char* nearTag, const char* outTag, const char* delayTag,
                               const char* logTag, int reserved) {
  FakeEngine::Current().Born(this, "CAecFileWriter", "%d, %d, %s, %s, %s, %s, %s, %d", sampleRate,
                             channels, farTag, nearTag, outTag, delayTag, logTag, reserved);
}

CAecFileWriter::~CAecFileWriter() { FakeEngine::Current().Died(this); }

void CAecFileWriter::EchoDetectionStart(int sampleRate) {
  FakeEngine::Current().Call(this, "EchoDetectionStart(%d)", sampleRate);
}

void CAecFileWriter::EchoDetectionEnd() { FakeEngine::Current().Call(this, "EchoDetectionEnd"); }

int CAecFileWriter::EchoDetect() {
  FakeEngine::Current().Call(this, "EchoDetect");
  return FakeEngine::Current().Answer(0, -1);
}

void CAecFileWriter::RecordFarendData(const void* data, int bytes) {
  FakeEngine& engine = FakeEngine::Current();
  engine.script<AecFileWriterScript>().farend(data, bytes);
  engine.Call(this, "RecordFarendData(%d)", bytes);
}

void CAecFileWriter::RecordNearendData(const void*, int bytes) {
  FakeEngine::Current().Call(this, "RecordNearendData(%d)", bytes);
}

void CAecFileWriter::RecordOutData(const void* data, int bytes) {
  FakeEngine& engine = FakeEngine::Current();
  engine.script<AecFileWriterScript>().out(data, bytes);
  engine.Call(this, "RecordOutData(%d)", bytes);
}

void CAecFileWriter::WriteAecFiles() { FakeEngine::Current().Call(this, "WriteAecFiles"); }
