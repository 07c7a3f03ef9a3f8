#include "engine_api/common/wav_file_writer.h"

#include "fake_engine/common/fake_wav_file.h"
#include "fake_engine/fake_engine.h"

CWavFileWriter::CWavFileWriter(int sampleRate, int channels, int bitsPerSample,
                               const std::string& fileName)
    : m_wavHeader(), m_FileName(fileName) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Born(this, "CWavFileWriter", "%d, %d, %d, %s", sampleRate, channels, bitsPerSample,
              fileName.c_str());
  engine.wavs[fileName] = {sampleRate, channels, {}};
}

CWavFileWriter::~CWavFileWriter() {
  FinishFakeWav(m_FileName);
  FakeEngine::Current().Died(this);
}

void CWavFileWriter::Write(const void* data, int bytes) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "Write(%d)", bytes);
  std::vector<short>& written = engine.wavs[m_FileName].samples;
  const auto* samples = static_cast<const short*>(data);
  written.insert(written.end(), samples, samples + bytes / 2);
  m_nTotalBytes += bytes;
}
