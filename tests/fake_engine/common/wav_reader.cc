#include "engine_api/common/wav_reader.h"

#include <algorithm>
#include <map>

#include "fake_engine/fake_engine.h"

namespace {

// The samples that each live reader reads.
std::map<const zuwebrtc::WavReader*, std::vector<short>> g_samples;

}  // namespace

zuwebrtc::WavReader::WavReader(const std::string& filename) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("WavReader(%s)", filename.c_str());
  engine.Born("WavReader");
  const auto found = engine.wavs.find(filename);
  const FakeWav wav = found != engine.wavs.end() ? found->second : FakeWav();
  sample_rate_ = wav.rate;
  num_channels_ = wav.channels;
  num_samples_ = static_cast<uint32_t>(wav.samples.size());
  num_samples_remaining_ = num_samples_;
  g_samples[this] = wav.samples;
}

zuwebrtc::WavReader::~WavReader() {
  FakeEngine::Current().Record("~WavReader");
  FakeEngine::Current().Died("WavReader");
  g_samples.erase(this);
}

unsigned zuwebrtc::WavReader::ReadSamples(unsigned count, short* out) {
  const unsigned read = std::min(count, num_samples_remaining_);
  std::copy_n(g_samples[this].end() - num_samples_remaining_, read, out);
  num_samples_remaining_ -= read;
  FakeEngine::Current().Record("ReadSamples(%u) = %u", count, read);
  return read;
}

unsigned zuwebrtc::WavReader::ReadSamples(unsigned count, float* out) {
  const unsigned read = std::min(count, num_samples_remaining_);
  std::copy_n(g_samples[this].end() - num_samples_remaining_, read, out);
  num_samples_remaining_ -= read;
  FakeEngine::Current().Record("ReadSamples(%u floats) = %u", count, read);
  return read;
}
