#include "engine_api/common/wav_reader.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "fake_engine/fake_engine.h"

namespace {

// The samples that each live reader reads.
std::map<const zuwebrtc::WavReader*, std::vector<short>> g_samples;

// A file that a routine wrote byte by byte, with the canonical header.
FakeWav Parsed(const std::string& bytes) {
  FakeWav wav;
  if (bytes.size() < 44 || bytes.compare(0, 4, "RIFF") != 0) return wav;
  uint16_t channels = 0;
  memcpy(&channels, bytes.data() + 22, sizeof channels);
  memcpy(&wav.rate, bytes.data() + 24, sizeof wav.rate);
  wav.channels = channels;
  wav.samples.resize((bytes.size() - 44) / sizeof(short));
  memcpy(wav.samples.data(), bytes.data() + 44, wav.samples.size() * sizeof(short));
  return wav;
}

FakeWav Find(const FakeEngine& engine, const std::string& name) {
  const auto found = engine.wavs.find(name);
  return found != engine.wavs.end() ? found->second : Parsed(engine.Bytes(name));
}

}  // namespace

zuwebrtc::WavReader::WavReader(const std::string& filename) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Born(this, "WavReader", "%s", filename.c_str());
  const FakeWav wav = Find(engine, filename);
  sample_rate_ = wav.rate;
  num_channels_ = wav.channels;
  num_samples_ = static_cast<uint32_t>(wav.samples.size());
  num_samples_remaining_ = num_samples_;
  g_samples[this] = wav.samples;
}

zuwebrtc::WavReader::~WavReader() {
  FakeEngine::Current().Died(this);
  g_samples.erase(this);
}

unsigned zuwebrtc::WavReader::ReadSamples(unsigned count, short* out) {
  const unsigned read = std::min(count, num_samples_remaining_);
  std::copy_n(g_samples[this].end() - num_samples_remaining_, read, out);
  num_samples_remaining_ -= read;
  FakeEngine::Current().Call(this, "ReadSamples(%u) = %u", count, read);
  return read;
}

unsigned zuwebrtc::WavReader::ReadSamples(unsigned count, float* out) {
  const unsigned read = std::min(count, num_samples_remaining_);
  std::copy_n(g_samples[this].end() - num_samples_remaining_, read, out);
  num_samples_remaining_ -= read;
  FakeEngine::Current().Call(this, "ReadSamples(%u floats) = %u", count, read);
  return read;
}
