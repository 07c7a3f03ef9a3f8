#pragma once

#include <memory>

#include "desktop/files/recorded_file.h"
#include "desktop/live/microphone.h"
#include "desktop/live/play_feed.h"

namespace desktop {

// Records what a microphone hears, alone or with what is played.
class CaptureSaver : public CaptureListener {
 public:
  enum class What {
    // The microphone alone.
    kMicrophone,
    // The microphone with what players feed back into it.
    kMicrophonePath,
    // The microphone alone, mixed with all that is played.
    kWithPlayed
  };

  // The sink has the microphone's format. The microphone outlives the saver.
  CaptureSaver(What what, Microphone& microphone, std::unique_ptr<FileSink> sink);

  // Finishes the file: all that was captured until now is in it.
  ~CaptureSaver() override;
  CaptureSaver(const CaptureSaver&) = delete;
  CaptureSaver& operator=(const CaptureSaver&) = delete;

  void OnCaptured(const CapturedBlock& block) override;

 private:
  const What m_what;
  Microphone& m_microphone;
  RecordedFile m_file;
  // Null unless what is played is recorded as well.
  std::unique_ptr<PlayFeed> m_played;
  std::vector<short> m_block;
  std::vector<int32_t> m_sums;
  SumLimiter m_limiter;
};

// Records what is played, silence included.
class RenderSaver : public PlayListener {
 public:
  // The sink has the loudspeaker's format.
  explicit RenderSaver(std::unique_ptr<FileSink> sink);

  // Finishes the file.
  ~RenderSaver() override;
  RenderSaver(const RenderSaver&) = delete;
  RenderSaver& operator=(const RenderSaver&) = delete;

  void OnPlayed(const PlayedBlock& block) override { m_file.Put(block.played); }
  bool HearsSilence() const override { return true; }

 private:
  RecordedFile m_file;
};

}  // namespace desktop
