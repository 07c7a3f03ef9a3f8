#include "desktop/mixing/parts/audio_saver.h"

#include <utility>

#include "engine_api/platform/log.h"

namespace desktop {

CaptureSaver::CaptureSaver(What what, Microphone& microphone, std::unique_ptr<FileSink> sink)
    : m_what(what), m_microphone(microphone), m_file(std::move(sink), microphone.Format()) {
  if (what == What::kWithPlayed) {
    m_played = std::make_unique<PlayFeed>(PlayFeed::What::kPlayed, microphone.Format());
    m_block.resize(microphone.Format().BlockFrames() * microphone.Format().channels);
    m_sums.resize(m_block.size());
    Loudspeaker::Shared().Add(m_played.get());
  }
  microphone.Add(this);
}

CaptureSaver::~CaptureSaver() {
  if (!m_microphone.CatchUp(RecordedFile::kPatience)) {
    OutputDebugInfo(
        "saver: what the microphone heard last is lost: its other listeners stand still");
  }
  m_microphone.Remove(this);
  if (m_played != nullptr) Loudspeaker::Shared().Remove(m_played.get());
}

void CaptureSaver::OnCaptured(const CapturedBlock& block) {
  switch (m_what) {
    case What::kWithPlayed:
      m_played->Read(m_block.data(), block.frames);
      for (size_t i = 0; i < m_sums.size(); ++i) m_sums[i] = m_block[i] + block.microphone[i];
      m_limiter.Process(m_sums.data(), block.frames, m_microphone.Format().channels,
                        m_block.data());
      m_file.Put(m_block.data());
      break;
    case What::kMicrophone:
      m_file.Put(block.microphone);
      break;
    case What::kMicrophonePath:
      m_file.Put(block.samples);
  }
}

RenderSaver::RenderSaver(std::unique_ptr<FileSink> sink)
    : m_file(std::move(sink), Loudspeaker::kFormat) {
  Loudspeaker::Shared().Add(this);
}

RenderSaver::~RenderSaver() { Loudspeaker::Shared().Remove(this); }

}  // namespace desktop
