#include "desktop/mixing/audio_saver.h"

#include <utility>

namespace desktop {

CaptureSaver::CaptureSaver(AudioSaverMode mode, Microphone& microphone,
                           std::unique_ptr<FileSink> sink)
    : m_mode(mode), m_microphone(microphone), m_sink(std::move(sink)) {
  if (mode == AudioSaverBoth) {
    m_played = std::make_unique<PlayFeed>(PlayFeed::What::kPlayed, microphone.Format());
    m_block.resize(microphone.Format().BlockFrames() * microphone.Format().channels);
    m_sums.resize(m_block.size());
    Loudspeaker::Shared().Add(m_played.get());
  }
  microphone.Add(this);
}

CaptureSaver::~CaptureSaver() {
  m_microphone.CatchUp();
  m_microphone.Remove(this);
  if (m_played != nullptr) Loudspeaker::Shared().Remove(m_played.get());
}

void CaptureSaver::OnCaptured(const CapturedBlock& block) {
  switch (m_mode) {
    case AudioSaverBoth:
      m_played->Read(m_block.data(), block.frames);
      for (size_t i = 0; i < m_sums.size(); ++i) m_sums[i] = m_block[i] + block.microphone[i];
      m_limiter.Process(m_sums.data(), block.frames, m_microphone.Format().channels,
                        m_block.data());
      m_sink->Write(m_block.data(), block.frames);
      break;
    case AusioSaverOnlyCaptureOri:
      m_sink->Write(block.microphone, block.frames);
      break;
    default:
      m_sink->Write(block.samples, block.frames);
  }
}

RenderSaver::RenderSaver(std::unique_ptr<FileSink> sink)
    : m_sink(std::move(sink)),
      m_worker(Loudspeaker::kFormat,
               [this](short* samples, size_t frames) { m_sink->Write(samples, frames); }) {
  Loudspeaker::Shared().Add(this);
}

RenderSaver::~RenderSaver() { Loudspeaker::Shared().Remove(this); }

}  // namespace desktop
