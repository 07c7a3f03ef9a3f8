#include "desktop/aec/parts/capture_chain.h"

#include <algorithm>
#include <new>
#include <string>

#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

namespace desktop {

namespace {

// The levels of noise suppression: the first takes about 11 dB off.
constexpr int kDenoise = 1;
constexpr int kStrongDenoise = 2;

}  // namespace

CaptureChain::CaptureChain() { SetRate(m_rate); }

void CaptureChain::SetRate(int rate) {
  // The files of a recorder are of the rate before.
  if (rate != m_rate) m_recorder.reset();
  m_rate = rate;
  m_canceller = std::make_unique<EchoCanceller>(rate, EchoCanceller::Delay::kFound,
                                                EchoCanceller::Suppressor::kOwn);
  m_canceller->SetSuppression(EchoCanceller::Suppression::kHigh);
  ApplyDenoise();
  m_voice.emplace(Unsigned(rate), 1u);
  m_voice->SetMode(m_vadMode);
  if (m_level) EnableGainControl(true);
  m_render = Path();
  m_capture = Path();
  m_block.resize(Size(rate / 100));
}

bool CaptureChain::SetVadMode(VoiceDetectionMode mode) {
  if (mode == voiceDetectionUnknown) {
    LogRefusal("no voice detection in an unknown mode");
    return false;
  }
  if (!m_voice->SetMode(mode)) return false;
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
  const std::string far = name + "_far", near = name + "_near", out = name + "_out";
  const std::string delay = name + "_delay", log = name + "_log";
  m_recorder = AecRecorder::Create(
      m_rate, 1, {{far.c_str(), near.c_str(), out.c_str()}, delay.c_str(), log.c_str()});
  return true;
}

// Makes the resamplers of a path for the format of a frame. Returns false for a frame that is not
// processed.
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
      std::max(path.in->MaxFramesFor(frames), path.out->MaxFramesFor(inside) * Size(channels)));
  path.rate = rate;
  path.channels = channels;
  return true;
}

// Prepares the path of one end, "far" or "near", for a frame. Returns false for a frame that is not
// processed, and, with one line in the log, where there is no memory for its format.
bool CaptureChain::Prepare(Path& path, const zuwebrtc::AudioFrame& frame, const char* end) const {
  try {
    return Follow(path, frame);
  } catch (const std::bad_alloc&) {
    LogRefusal("no memory for another format of the %s end", end);
    return false;
  }
}

bool CaptureChain::ProcessRender(const zuwebrtc::AudioFrame& frame) {
  if (!Prepare(m_render, frame, "far")) return false;
  m_render.in->Convert(frame.data_, Size(frame.samples_per_channel_), m_render.samples.data());
  std::copy_n(m_render.samples.begin(), m_block.size(), m_block.begin());
  m_canceller->ProcessFar(m_block.data());
  if (m_recorder) {
    m_recorder->Record(AecRecorder::kFar, m_render.samples.data(), 2 * m_canceller->Block());
  }
  return true;
}

bool CaptureChain::ProcessCapture(zuwebrtc::AudioFrame& frame) {
  if (!Prepare(m_capture, frame, "near")) return false;
  short* const samples = m_capture.samples.data();
  const size_t bytes = 2 * m_canceller->Block();
  m_capture.in->Convert(frame.data_, Size(frame.samples_per_channel_), samples);
  if (m_recorder) m_recorder->Record(AecRecorder::kNear, samples, bytes);

  std::copy_n(samples, m_block.size(), m_block.begin());
  if (m_bypassed) {
    m_canceller->PassNear(m_block.data());
  } else {
    m_canceller->ProcessNear(m_block.data());
    if (m_level) m_level->Process(m_block.data(), m_block.size(), !m_canceller->HasEcho());
    std::transform(m_block.begin(), m_block.end(), samples,
                   [](float sample) { return static_cast<short>(sample); });
  }
  const VADResultKind voice = m_voice->Detect(samples, m_block.size());
  frame.vad_activity_ = static_cast<zuwebrtc::VADActivity>(voice);
  if (m_recorder) m_recorder->Record(AecRecorder::kOut, samples, bytes);
  if (m_bypassed) return true;

  const size_t frames = m_capture.out->Convert(samples, m_block.size(), samples);
  std::copy_n(samples, frames * Size(m_capture.channels), frame.data_);
  return true;
}

}  // namespace desktop
