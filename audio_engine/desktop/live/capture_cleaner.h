#pragma once

#include "desktop/aec/parts/capture_chain.h"
#include "desktop/dsp/filters/biquad.h"
#include "desktop/live/play_feed.h"

namespace desktop {

// Cleans captured speech, 10 ms at a time and in place: high-pass at 100 Hz, echo control against
// what the loudspeaker plays, noise suppression, gain control. Belongs to one thread.
class CaptureCleaner {
 public:
  explicit CaptureCleaner(DeviceFormat format);
  ~CaptureCleaner();
  CaptureCleaner(const CaptureCleaner&) = delete;
  CaptureCleaner& operator=(const CaptureCleaner&) = delete;

  // Hears what the loudspeaker plays; the object adds it to the loudspeaker itself.
  PlayListener& FarEnd() { return m_played; }

  // Takes one block of the format. Returns whether there is voice in it.
  VADResultKind Process(short* samples, size_t frames);

 private:
  void HighPass(short* samples, size_t frames);

  const DeviceFormat m_format;
  PlayFeed m_played;
  CaptureChain m_chain;
  // One for each channel.
  Biquad m_highPass[2];
  std::vector<float> m_channel;
  zuwebrtc::AudioFrame m_frame;
  bool m_plays = false;
};

}  // namespace desktop
