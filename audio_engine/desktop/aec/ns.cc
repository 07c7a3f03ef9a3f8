#include "engine_api/aec/ns.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "desktop/common/apm.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

namespace {

constexpr float kFullScale = 32768.0f;
constexpr int kMaxChannels = 2;

using Apm = std::unique_ptr<webrtc::AudioProcessing>;

Apm CreateApm() {
  webrtc::Config config;
  // The library takes ownership of what it is handed here.
  config.Set<webrtc::ExperimentalAgc>(std::make_unique<webrtc::ExperimentalAgc>(false).release());
  return Apm(webrtc::AudioProcessing::Create(config));
}

// One suppressor per channel. Where a block is no whole number of frames, samples wait in `in` for
// the next block, and `out` is ahead by 10 ms.
struct Suppressor {
  int rate = 0;  // Hz, 0 until initialised.
  int policy = 0;
  int channels = 0;
  Apm apms[kMaxChannels];
  std::vector<short> in;
  std::vector<short> out;
  std::vector<float> channel;
};

using desktop::Size;

void ApplyPolicy(Suppressor& suppressor) {
  for (const Apm& apm : suppressor.apms) {
    apm->noise_suppression()->set_level(
        static_cast<webrtc::NoiseSuppression::Level>(suppressor.policy));
  }
}

void SetChannels(Suppressor& suppressor, int channels) {
  suppressor.channels = channels;
  suppressor.in.clear();
  suppressor.out.clear();
  const int block = suppressor.rate / 100 * channels;
  if (suppressor.rate * channels / 100 != block) suppressor.out.resize(Size(block));
}

// Cleans the 10 ms that stand first in `in`, a frame being one sample of each channel.
void CleanFrames(Suppressor& suppressor, int frames) {
  const webrtc::StreamConfig stream(suppressor.rate, 1);
  const size_t at = suppressor.out.size();
  suppressor.out.resize(at + Size(frames * suppressor.channels));
  for (int c = 0; c < suppressor.channels; ++c) {
    for (int i = 0; i < frames; ++i) {
      suppressor.channel[Size(i)] = suppressor.in[Size(i * suppressor.channels + c)] / kFullScale;
    }
    float* const samples = suppressor.channel.data();
    suppressor.apms[c]->ProcessStream(&samples, stream, stream, &samples);
    for (int i = 0; i < frames; ++i) {
      const float sample = std::clamp(samples[i] * kFullScale, -32768.0f, 32767.0f);
      suppressor.out[at + Size(i * suppressor.channels + c)] = static_cast<short>(sample);
    }
  }
  suppressor.in.erase(suppressor.in.begin(), suppressor.in.begin() + frames * suppressor.channels);
}

}  // namespace

int Ns_Create(void** handle) {
  if (handle == nullptr) return -1;
  *handle = new (std::nothrow) Suppressor;
  return *handle != nullptr ? 0 : -1;
}

int Ns_Free(void* handle) {
  if (handle == nullptr) return -1;
  delete static_cast<Suppressor*>(handle);
  return 0;
}

int Ns_Init(void* handle, unsigned int rate) {
  if (handle == nullptr) return -1;
  if (rate < 8000 || rate > 48000) {
    desktop::LogRefusal("noise cannot be suppressed at %u Hz", rate);
    return -1;
  }
  auto& suppressor = *static_cast<Suppressor*>(handle);
  suppressor = Suppressor();
  try {
    const auto most = static_cast<size_t>(rate) / 100 * kMaxChannels + kMaxChannels;
    suppressor.channel.resize(most);
    suppressor.in.reserve(2 * most);
    suppressor.out.reserve(4 * most);
    for (Apm& apm : suppressor.apms) {
      apm = CreateApm();
      if (!apm) throw std::bad_alloc();
      const webrtc::StreamConfig stream(static_cast<int>(rate), 1);
      apm->Initialize({{stream, stream, stream, stream}});
      apm->noise_suppression()->Enable(true);
    }
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("no memory for a noise suppressor");
    return -1;
  }
  suppressor.rate = static_cast<int>(rate);
  ApplyPolicy(suppressor);
  return 0;
}

int Ns_set_policy(void* handle, int policy) {
  auto* const suppressor = static_cast<Suppressor*>(handle);
  if (suppressor == nullptr || suppressor->rate == 0) return -1;
  if (policy < 0 || policy > 2) {
    desktop::LogRefusal("noise cannot be suppressed by policy %d", policy);
    return -1;
  }
  suppressor->policy = policy;
  ApplyPolicy(*suppressor);
  return 0;
}

int Ns_Process2(void* handle, const short* in, short* out, int16_t channels) {
  auto* const suppressor = static_cast<Suppressor*>(handle);
  if (suppressor == nullptr || suppressor->rate == 0 || in == nullptr || out == nullptr ||
      channels < 1 || channels > kMaxChannels) {
    return -1;
  }
  if (channels != suppressor->channels) SetChannels(*suppressor, channels);
  const int samples = suppressor->rate * channels / 100;
  const int frames = suppressor->rate / 100;
  suppressor->in.insert(suppressor->in.end(), in, in + samples);
  while (suppressor->in.size() >= Size(frames * channels)) CleanFrames(*suppressor, frames);
  std::copy_n(suppressor->out.begin(), samples, out);
  suppressor->out.erase(suppressor->out.begin(), suppressor->out.begin() + samples);
  return 0;
}
