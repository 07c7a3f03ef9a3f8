#include "engine_api/common/wav_file_writer.h"

#include "fake_engine/fake_engine.h"

CWavFileWriter::CWavFileWriter(int sampleRate, int channels, int bitsPerSample,
                               const std::string& fileName)
    : m_wavHeader(), m_FileName(fileName) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("CWavFileWriter(%d, %d, %d, %s)", sampleRate, channels, bitsPerSample,
                fileName.c_str());
  engine.Born("CWavFileWriter");
  engine.wavs[fileName] = {sampleRate, channels, {}};
}

CWavFileWriter::~CWavFileWriter() {
  FakeEngine::Current().Record("~CWavFileWriter");
  FakeEngine::Current().Died("CWavFileWriter");
}

void CWavFileWriter::Write(const void* data, int bytes) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("Write(%d)", bytes);
  std::vector<short>& written = engine.wavs[m_FileName].samples;
  const auto* samples = static_cast<const short*>(data);
  written.insert(written.end(), samples, samples + bytes / 2);
  m_nTotalBytes += bytes;
}
