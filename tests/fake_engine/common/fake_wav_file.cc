#include "fake_engine/common/fake_wav_file.h"

#include "fake_engine/fake_engine.h"
#include "wave/wave_file.h"

void FinishFakeWav(const std::string& name) {
  FakeEngine& engine = FakeEngine::Current();
  const FakeWav& wav = engine.wavs[name];
  const size_t dataBytes = wav.samples.size() * sizeof(short);
  const auto header = wave::Header(wav.rate, wav.channels, 16, dataBytes);
  std::string bytes(header.begin(), header.end());
  bytes.append(reinterpret_cast<const char*>(wav.samples.data()), dataBytes);
  engine.PutFile(name, bytes);
}
