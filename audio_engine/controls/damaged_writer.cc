// The facility common/wav_writer with a fault: what is given is kept until the end, damaged, and
// written by the engine beneath.

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "controls/beneath.h"
#include "controls/damage.h"
#include "engine_api/common/interface_version.h"
#include "engine_api/common/wav_writer.h"

AUDIO_ENGINE_INTERFACE_VERSION;

namespace {

using zuwebrtc::WavWriter;

// What the writers hold that are open, which any thread may have.
std::mutex g_lock;
std::map<const WavWriter*, std::vector<short>> g_held;

void Hold(const WavWriter* writer, const short* samples, unsigned count) {
  const std::lock_guard guard(g_lock);
  std::vector<short>& held = g_held[writer];
  held.insert(held.end(), samples, samples + count);
}

}  // namespace

namespace zuwebrtc {

WavWriter::WavWriter(const std::string& filename, int sample_rate, int num_channels) {
  controls::Beneath<void(WavWriter*, const std::string&, int, int)>(
      "_ZN8zuwebrtc9WavWriterC1ERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEii")(
      this, filename, sample_rate, num_channels);
}

WavWriter::~WavWriter() {
  std::vector<short> held;
  {
    const std::lock_guard guard(g_lock);
    held = std::move(g_held[this]);
    g_held.erase(this);
  }
  if (num_channels_ > 0) controls::Damage(held, num_channels_, sample_rate_);
  controls::Beneath<void(WavWriter*, const short*, unsigned)>(
      "_ZN8zuwebrtc9WavWriter12WriteSamplesEPKsj")(this, held.data(),
                                                   static_cast<unsigned>(held.size()));
  controls::Beneath<void(WavWriter*)>("_ZN8zuwebrtc9WavWriterD1Ev")(this);
}

void WavWriter::WriteSamples(const short* samples, unsigned count) { Hold(this, samples, count); }

void WavWriter::WriteSamples(const float* samples, unsigned count) {
  std::vector<short> rounded(count);
  std::transform(samples, samples + count, rounded.begin(), controls::ToSample);
  Hold(this, rounded.data(), count);
}

}  // namespace zuwebrtc
