#pragma once

#include <memory>

#include "../common/audio_frame.h"
#include "../common/visibility.h"
#include "audio_source.h"

// Mixes frames that are pushed, an accompaniment for example, into frames of a recorded voice.
// Pushing and fetching may come from two threads.
class ENGINE_API AudioRecordMixer {
 public:
  AudioRecordMixer();   // Mode AudioSourceTypeMix.
  ~AudioRecordMixer();  // Deletes the frames that were not fetched.
  AudioRecordMixer(const AudioRecordMixer&) = delete;
  AudioRecordMixer& operator=(const AudioRecordMixer&) = delete;

  // What a fetched frame holds: the voice alone (AudioSourceTypeMic), what was pushed alone
  // (AudioSourceTypeOuterPCM), or both, summed and limited (AudioSourceTypeMix).
  void SetMixerMode(AudioSourceType mode);

  // Takes a frame of the source `sourceId` over; the mixer deletes it. Each source keeps at most 50
  // frames that were not fetched, of which the oldest go first.
  void PushAudioFrame(zuwebrtc::AudioFrame* frame, unsigned sourceId);

  // Mixes the oldest frame of every source into `frame`, the voice, in place: samples_per_channel_
  // x num_channels_ of its samples. A frame of another format is converted. Without a pushed frame
  // the voice stays as it is, and silence stands for what was pushed.
  void GetMixedAudioFrame(zuwebrtc::AudioFrame& frame);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
