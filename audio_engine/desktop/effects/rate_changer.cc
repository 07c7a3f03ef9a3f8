#include "engine_api/effects/rate_changer.h"

#include <SoundTouch.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>
#include <vector>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/dsp/tempo/time_scaler.h"
#include "desktop/platform/log.h"

namespace {

// The longest block that is passed on at once.
constexpr size_t kMaxBlockFrames = 1024;
constexpr int kMaxChannels = 8;

using desktop::Count;
using desktop::Offset;
using desktop::Size;
using desktop::ToSample;
using desktop::Unsigned;
using Shorts = std::vector<short>;

// Changes the speed as a tape does: the pitch goes with it.
class Tape {
 public:
  // Throws when there is no memory, as all its functions do.
  Tape(int rate, int channels)
      : m_channels(Size(channels)), m_floats(kMaxBlockFrames * m_channels) {
    m_resampler.setSampleRate(Unsigned(rate));
    m_resampler.setChannels(Unsigned(channels));
  }

  void SetSpeed(double speed) { m_resampler.setRate(speed); }

  void Put(const short* samples, size_t frames) {
    while (frames > 0) {
      const size_t block = std::min(frames, kMaxBlockFrames);
      std::copy_n(samples, block * m_channels, m_floats.begin());
      m_resampler.putSamples(m_floats.data(), Unsigned(Count(block)));
      samples += block * m_channels;
      frames -= block;
    }
  }

  size_t Take(short* out, size_t room) {
    const size_t frames = m_resampler.receiveSamples(m_floats.data(), Unsigned(Count(room)));
    std::transform(m_floats.begin(), m_floats.begin() + Offset(frames * m_channels), out, ToSample);
    return frames;
  }

 private:
  soundtouch::SoundTouch m_resampler;
  const size_t m_channels;
  std::vector<float> m_floats;
};

// Passes samples through `changer` and appends what is ready to `out`.
template <typename Changer>
void Pass(Changer& changer, const short* samples, size_t frames, size_t channels, Shorts& block,
          std::string& out) {
  changer.Put(samples, frames);
  while (const size_t ready = changer.Take(block.data(), kMaxBlockFrames)) {
    out.append(reinterpret_cast<const char*>(block.data()), ready * channels * sizeof(short));
  }
}

}  // namespace

struct RateChanger::Impl {
  explicit Impl(bool pitchIsKept) : keepPitch(pitchIsKept) {}

  void UpdateSpeed() {
    const double speed = enabled ? ratio : 1;
    if (scaler) scaler->SetSpeed(speed);
    if (tape) tape->SetSpeed(speed);
  }

  // Writes one line for each format, not one for each block.
  void Tell(const char* what) {
    if (!told) desktop::LogRefusal("RateChanger: %s", what);
    told = true;
  }

  const bool keepPitch;
  bool enabled = false;
  double ratio = 1;
  int channels = 0;
  bool told = false;

  // One of the two, when the format is good.
  std::optional<desktop::TimeScaler> scaler;
  std::optional<Tape> tape;
  Shorts block;
};

RateChanger::RateChanger(bool keepPitch) : m_impl(std::make_unique<Impl>(keepPitch)) {}

RateChanger::~RateChanger() = default;

void RateChanger::SetEnabled(bool enabled) {
  m_impl->enabled = enabled;
  m_impl->UpdateSpeed();
}

void RateChanger::SetRatio(double ratio) {
  if (std::isnan(ratio)) {
    desktop::LogRefusal("RateChanger: a ratio that is no number is ignored");
    return;
  }
  m_impl->ratio = std::clamp(ratio, 0.25, 4.0);
  m_impl->UpdateSpeed();
}

void RateChanger::SetFsAndCh(int rate, int channels) {
  Impl& impl = *m_impl;
  impl.scaler.reset();
  impl.tape.reset();
  impl.told = false;
  if (rate < 8000 || rate > 48000 || channels < 1 || channels > kMaxChannels) {
    impl.Tell("a format that cannot be done");
    return;
  }
  try {
    impl.channels = channels;
    impl.block.resize(kMaxBlockFrames * Size(channels));
    if (impl.keepPitch) {
      impl.scaler.emplace(rate, channels);
    } else {
      impl.tape.emplace(rate, channels);
    }
    impl.UpdateSpeed();
  } catch (const std::exception&) {
    impl.scaler.reset();
    impl.tape.reset();
    impl.Tell("no memory");
  }
}

void RateChanger::Process(short* samples, int samplesPerChannel, int channels, std::string& out) {
  Impl& impl = *m_impl;
  out.clear();
  if (!impl.scaler && !impl.tape) {
    impl.Tell("no format is set");
    return;
  }
  if (samples == nullptr || samplesPerChannel < 0 || channels != impl.channels) {
    impl.Tell("a block that does not have the channels set");
    return;
  }
  const size_t frames = Size(samplesPerChannel);
  const size_t ch = Size(channels);
  try {
    if (impl.scaler) Pass(*impl.scaler, samples, frames, ch, impl.block, out);
    if (impl.tape) Pass(*impl.tape, samples, frames, ch, impl.block, out);
  } catch (const std::exception&) {
    impl.Tell("no memory for a block");
  }
}
