#include "fake_engine/common/fake_wav_file.h"

#include "engine_api/common/wav_file_writer.h"
#include "fake_engine/fake_engine.h"

void FinishFakeWav(const std::string& name) {
  FakeEngine& engine = FakeEngine::Current();
  const FakeWav& wav = engine.wavs[name];
  const auto dataBytes = static_cast<uint32_t>(wav.samples.size() * sizeof(short));
  const auto blockAlign = static_cast<uint16_t>(2 * wav.channels);
  const WavHeader header = {.riff = {'R', 'I', 'F', 'F'},
                            .riffBytes = 36 + dataBytes,
                            .wave = {'W', 'A', 'V', 'E'},
                            .fmt = {'f', 'm', 't', ' '},
                            .fmtBytes = 16,
                            .formatTag = 1,
                            .channels = static_cast<uint16_t>(wav.channels),
                            .sampleRate = static_cast<uint32_t>(wav.rate),
                            .bytesPerSecond = static_cast<uint32_t>(wav.rate) * blockAlign,
                            .blockAlign = blockAlign,
                            .bitsPerSample = 16,
                            .data = {'d', 'a', 't', 'a'},
                            .dataBytes = dataBytes};
  std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
  bytes.append(reinterpret_cast<const char*>(wav.samples.data()), dataBytes);
  engine.PutFile(name, bytes);
}
