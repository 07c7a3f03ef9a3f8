#include "desktop/mixing/karaoke/karaoke_mix.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "desktop/dsp/filters/denormal_guard.h"

namespace desktop {

namespace {

// This limiter lets everything up to full scale pass as it is.
constexpr LimiterParam kMixLimiter = {.fCeiling = 0,
                                      .fThreshold = 0,
                                      .fPreGain = 0,
                                      .fRelease = 90,
                                      .fAttack = 0,
                                      .fLookahead = 5,
                                      .fLookaheadRatio = 1,
                                      .fRMS = 0,
                                      .fStLink = 1};

}  // namespace

KaraokeMix::KaraokeMix(std::unique_ptr<ConvertedSource> voice,
                       std::unique_ptr<ConvertedSource> music, DeviceFormat format,
                       const VoiceSettings& settings)
    : m_format(format), m_samples(kMaxFrames * format.channels) {
  m_chain.EnableEqualizer(settings.equalizer);
  m_chain.equalizer.SetGains(settings.gains, false);
  m_chain.EnableReverb(settings.reverb);
  if (settings.reverbParameter) m_chain.reverb.SetParameter(*settings.reverbParameter);
  m_chain.EnableLimiter(settings.limiter);
  if (settings.limiterParameter) m_chain.limiter.SetParameter(*settings.limiterParameter);
  m_limiter.SetParameter(kMixLimiter);

  const int rate = static_cast<int>(format.rate);
  m_chainLatency = static_cast<size_t>(m_chain.Latency(rate));
  m_latency = m_chainLatency + static_cast<size_t>(m_limiter.Latency(rate));
  const size_t shift =
      static_cast<size_t>(std::abs(int64_t{settings.offsetMs})) * format.rate / 1000;
  const size_t later = settings.offsetMs > 0 ? shift : 0;
  const size_t cut = settings.offsetMs < 0 ? shift : 0;
  const size_t voiceEnd = voice->Frames() + later - std::min(cut, voice->Frames());
  m_length = std::max(music->Frames(), voiceEnd);
  m_voice = {std::move(voice), later};
  // The music waits for as long as the voice takes through its chain.
  m_music = {std::move(music), m_chainLatency};
  Skip(m_voice, cut, format);
}

void KaraokeMix::Skip(Track& track, size_t frames, DeviceFormat format) {
  std::vector<short> skipped(kMaxFrames * format.channels);
  while (frames > 0) {
    const size_t part = std::min(frames, kMaxFrames);
    if (track.source->Read(skipped.data(), part) < part) return;
    frames -= part;
  }
}

void KaraokeMix::Read(Track& track, Block& block) {
  const size_t silent = std::min(track.silence, kMaxFrames);
  track.silence -= silent;
  const size_t wanted = kMaxFrames - silent;
  const size_t got = track.ended ? 0 : track.source->Read(m_samples.data(), wanted);
  if (!track.ended) track.frames += silent + got;
  track.ended = got < wanted;
  for (size_t c = 0; c < m_format.channels; ++c) {
    std::fill_n(block[c], silent, 0.0F);
    for (size_t i = 0; i < got; ++i) {
      block[c][silent + i] = static_cast<float>(m_samples[i * m_format.channels + c]) / 32768.0F;
    }
    std::fill(block[c] + silent + got, block[c] + kMaxFrames, 0.0F);
  }
}

void KaraokeMix::MixBlock() {
  constexpr int kFrames = kMaxFrames;
  const int channels = static_cast<int>(m_format.channels);
  const int rate = static_cast<int>(m_format.rate);
  Block music;
  Read(m_voice, m_mix);
  Read(m_music, music);
  float* const rows[] = {m_mix[0], m_mix[1]};
  m_chain.Process(rows, channels, kFrames, rate);
  for (int c = 0; c < channels; ++c) {
    for (int i = 0; i < kFrames; ++i) m_mix[c][i] += music[c][i];
  }
  m_limiter.Process(rows, channels, kFrames, rate);
  m_mixed += kMaxFrames;
}

// Returns where in the mix both files are over; SIZE_MAX as long as one has not ended. The
// accompaniment was held back by as much as the voice is late after its chain.
size_t KaraokeMix::End() const {
  if (!m_voice.ended || !m_music.ended) return SIZE_MAX;
  return std::max(m_voice.frames, m_music.frames - m_chainLatency) + m_latency;
}

size_t KaraokeMix::Next(short* samples) {
  const DenormalGuard guard;
  size_t given = 0;
  while (given == 0 && m_mixed < End()) {
    const size_t start = m_mixed;
    MixBlock();
    const size_t first = std::max(start, m_latency);
    const size_t last = std::min(m_mixed, End());
    for (size_t at = first; at < last; ++at, ++given) {
      for (size_t c = 0; c < m_format.channels; ++c) *samples++ = ToSample16(m_mix[c][at - start]);
    }
  }
  return given;
}

}  // namespace desktop
