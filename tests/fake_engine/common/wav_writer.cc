#include "engine_api/common/wav_writer.h"

#include <map>

#include "fake_engine/common/fake_wav_file.h"
#include "fake_engine/fake_engine.h"

namespace {

// The name that each live writer writes to.
std::map<const zuwebrtc::WavWriter*, std::string> g_names;

}  // namespace

zuwebrtc::WavWriter::WavWriter(const std::string& filename, int sample_rate, int num_channels)
    : sample_rate_(sample_rate), num_channels_(num_channels) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Born(this, "WavWriter", "%s, %d, %d", filename.c_str(), sample_rate, num_channels);
  engine.wavs[filename] = {sample_rate, num_channels, {}};
  g_names[this] = filename;
}

zuwebrtc::WavWriter::~WavWriter() {
  FinishFakeWav(g_names[this]);
  FakeEngine::Current().Died(this);
  g_names.erase(this);
}

void zuwebrtc::WavWriter::WriteSamples(const short* samples, unsigned count) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "WriteSamples(%u)", count);
  std::vector<short>& written = engine.wavs[g_names[this]].samples;
  written.insert(written.end(), samples, samples + count);
  num_samples_ += count;
}

void zuwebrtc::WavWriter::WriteSamples(const float* samples, unsigned count) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "WriteSamples(%u floats)", count);
  std::vector<short>& written = engine.wavs[g_names[this]].samples;
  for (unsigned i = 0; i < count; ++i) written.push_back(static_cast<short>(samples[i]));
  num_samples_ += count;
}
