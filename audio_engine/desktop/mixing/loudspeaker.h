#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "desktop/mixing/sum_limiter.h"
#include "desktop/platform/audio_device.h"
#include "engine_api/mixing/audio_source.h"

namespace desktop {

// Something that is heard: it fills a block of 10 ms in the format of the loudspeaker. Called on
// the device's thread, which neither allocates nor waits.
class PlaySource {
 public:
  virtual ~PlaySource() = default;
  virtual void FillBlock(short* samples, size_t frames) = 0;

  // Whether it is also heard in the microphone path.
  virtual AudioSourceType FeedBack() const { return AudioSourceTypeMic; }
};

// What was played in 10 ms, in the format of the loudspeaker.
struct PlayedBlock {
  const short* played;
  const short* feedback;  // The part that goes into the microphone path; null for nothing.
  bool replacesMicrophone;
  size_t frames;
};

// Something that follows what is played. Called on the device's thread.
class PlayListener {
 public:
  virtual ~PlayListener() = default;
  virtual void OnPlayed(const PlayedBlock& block) = 0;

  // Whether it is also called while nothing plays, which makes the device run.
  virtual bool HearsSilence() const { return false; }
};

// The one loudspeaker of the process: mixes its sources, limited. The device runs while there is a
// source, or a listener that hears silence. Any thread, but not a device's.
class Loudspeaker {
 public:
  static constexpr DeviceFormat kFormat = {48000, 2};

  // Lives as long as the process.
  static Loudspeaker& Shared();

  Loudspeaker();
  Loudspeaker(const Loudspeaker&) = delete;
  Loudspeaker& operator=(const Loudspeaker&) = delete;

  void Add(PlaySource* source);
  void Add(PlayListener* listener);

  // It is not called any more afterwards. One that was not added, or is removed already, is fine.
  void Remove(PlaySource* source);
  void Remove(PlayListener* listener);

  const AudioDevice& Device() const { return m_device; }

 private:
  void MixBlock(short* samples, size_t frames);
  void StartOrStop();

  std::mutex m_control;  // Of the device. Taken before m_mutex.
  std::mutex m_mutex;    // Of the lists. The device's thread holds it while it mixes.
  std::vector<PlaySource*> m_sources;
  std::vector<PlayListener*> m_listeners;
  bool m_runs = false;
  SumLimiter m_limiter;
  SumLimiter m_feedbackLimiter;
  std::vector<int32_t> m_sums;
  std::vector<int32_t> m_feedbackSums;
  std::vector<short> m_block;
  AudioDevice m_device;
};

}  // namespace desktop
