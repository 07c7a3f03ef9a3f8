#include "desktop/aec/parts/capture_chain.h"

#include <algorithm>
#include <new>
#include <string>

#include "desktop/common/counts.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

constexpr int kDenoise = 1;  // About 11 dB of noise.
constexpr int kStrongDenoise = 2;

}  // namespace

CaptureChain::CaptureChain() { SetRate(m_rate); }

void CaptureChain::SetRate(int rate) {
  if (rate != m_rate) m_recorder.reset();  // Its files are of the rate before.
  m_rate = rate;
  m_canceller = std::make_unique<EchoCanceller>(rate, EchoCanceller::Delay::kFound);
  m_canceller->SetSuppression(EchoCanceller::Suppression::kHigh);
  ApplyDenoise();
  m_voice = std::make_unique<CVoiceDetectionEx>(Unsigned(rate), 1u);
  m_voice->SetVoiceDetectionMode(m_vadMode);
  if (m_level) EnableGainControl(true);
  m_render = Path();
  m_capture = Path();
  m_block.resize(static_cast<size_t>(rate / 100));
}

bool CaptureChain::SetVadMode(VoiceDetectionMode mode) {
  if (mode == voiceDetectionUnknown) {
    OutputDebugInfo("no voice detection in an unknown mode");
    return false;
  }
  if (!m_voice->SetVoiceDetectionMode(mode)) return false;
  m_vadMode = mode;
  return true;
}

void CaptureChain::EnableGainControl(bool on) {
  m_level.reset();
  if (on) m_level.emplace(m_rate, LevelControl::Settings());
}

void CaptureChain::EnableDenoise(bool on) {
  m_denoises = on;
  ApplyDenoise();
}

void CaptureChain::StrongDenoise(bool on) {
  m_strongDenoise = on;
  ApplyDenoise();
}

void CaptureChain::ApplyDenoise() {
  const int level = m_strongDenoise ? kStrongDenoise : kDenoise;
  m_canceller->SetNoiseSuppression(m_denoises ? level : EchoCanceller::kNoNoiseSuppression);
}

bool CaptureChain::Record(const char* tag) {
  m_recorder.reset();
  if (tag == nullptr) return false;
  const std::string name(tag);
  m_recorder = std::make_unique<CAecFileWriter>(
      m_rate, 1, (name + "_far").c_str(), (name + "_near").c_str(), (name + "_out").c_str(),
      (name + "_delay").c_str(), (name + "_log").c_str(), 0);
  return true;
}

// Prepares a path for the format of a frame; false for one that is not processed.
bool CaptureChain::Follow(Path& path, const zuwebrtc::AudioFrame& frame) const {
  const int rate = frame.sample_rate_hz_;
  const int channels = frame.num_channels_;
  if (rate < 8000 || rate > 48000 || channels < 1 || channels > 2 ||
      frame.samples_per_channel_ != rate / 100) {
    return false;
  }
  if (rate == path.rate && channels == path.channels) return true;

  const uint32_t frames = Unsigned(rate / 100);
  const uint32_t inside = Unsigned(m_rate / 100);
  path.in = std::make_unique<Resampler>(frames, Unsigned(channels), inside, 1u, frames);
  path.out = std::make_unique<Resampler>(inside, 1u, frames, Unsigned(channels), inside);
  path.samples.resize(
      std::max(path.in->MaxFramesFor(frames), path.out->MaxFramesFor(inside) * Unsigned(channels)));
  path.rate = rate;
  path.channels = channels;
  return true;
}

bool CaptureChain::ProcessRender(const zuwebrtc::AudioFrame& frame) try {
  if (!Follow(m_render, frame)) return false;
  m_render.in->Convert(frame.data_, Unsigned(frame.samples_per_channel_), m_render.samples.data());
  std::copy_n(m_render.samples.begin(), m_block.size(), m_block.begin());
  m_canceller->ProcessFar(m_block.data());
  if (m_recorder) {
    m_recorder->RecordFarendData(m_render.samples.data(), 2 * m_canceller->Block());
  }
  return true;
} catch (const std::bad_alloc&) {
  OutputDebugInfo("no memory for another format of the far end");
  return false;
}

bool CaptureChain::ProcessCapture(zuwebrtc::AudioFrame& frame) try {
  if (!Follow(m_capture, frame)) return false;
  short* const samples = m_capture.samples.data();
  const int bytes = 2 * m_canceller->Block();
  m_capture.in->Convert(frame.data_, Unsigned(frame.samples_per_channel_), samples);
  if (m_recorder) m_recorder->RecordNearendData(samples, bytes);

  if (!m_bypassed) {
    std::copy_n(samples, m_block.size(), m_block.begin());
    m_canceller->ProcessNear(m_block.data());
    if (m_level) m_level->Process(m_block.data(), static_cast<int>(m_block.size()), true);
    std::transform(m_block.begin(), m_block.end(), samples,
                   [](float sample) { return static_cast<short>(sample); });
  }
  const VADResultKind voice = m_voice->Detect(samples, static_cast<unsigned>(m_block.size()));
  frame.vad_activity_ = static_cast<zuwebrtc::VADActivity>(voice);
  if (m_recorder) m_recorder->RecordOutData(samples, bytes);
  if (m_bypassed) return true;

  const size_t frames = m_capture.out->Convert(samples, m_block.size(), samples);
  std::copy_n(samples, frames * Unsigned(m_capture.channels), frame.data_);
  return true;
} catch (const std::bad_alloc&) {
  OutputDebugInfo("no memory for another format of the near end");
  return false;
}

}  // namespace desktop
