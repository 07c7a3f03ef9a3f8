#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "desktop/devices/audio_device.h"
#include "desktop/dsp/dynamics/sum_limiter.h"
#include "engine_api/mixing/audio_source.h"

namespace desktop {

// Something that is heard: it fills a block of 10 ms in the format of the loudspeaker. Called on
// the device's thread, which neither allocates nor waits.
class PlaySource {
 public:
  virtual ~PlaySource() = default;
  virtual void FillBlock(short* samples, size_t frames) = 0;

  // Returns whether it is also heard in the microphone path.
  virtual AudioSourceType FeedBack() const { return AudioSourceTypeMic; }
};

// What was played in 10 ms, in the format of the loudspeaker.
struct PlayedBlock {
  const short* played;
  // The part that goes into the microphone path; null for nothing.
  const short* feedback;
  bool replacesMicrophone;
  size_t frames;
};

// Something that follows what is played. Called on the device's thread.
class PlayListener {
 public:
  virtual ~PlayListener() = default;
  virtual void OnPlayed(const PlayedBlock& block) = 0;

  // Returns whether it is also called while nothing plays, for which the device has to run.
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
  ~Loudspeaker();
  Loudspeaker(const Loudspeaker&) = delete;
  Loudspeaker& operator=(const Loudspeaker&) = delete;

  void Add(PlaySource* source);
  void Add(PlayListener* listener);

  // Waits for a block in which it is being called; afterwards it is not called any more. Nothing
  // happens for one that was not added, or is removed already.
  void Remove(PlaySource* source);
  void Remove(PlayListener* listener);

  const AudioDevice& Device() const { return m_device; }

 private:
  struct Parts {
    std::vector<PlaySource*> sources;
    std::vector<PlayListener*> listeners;
  };
  // Parts that were replaced in a turn of the device, which may use them until that turn ends
  // (Fraser, "Practical lock-freedom", 2004, epochs).
  struct Retired {
    std::unique_ptr<const Parts> parts;
    uint64_t turn;
  };

  template <typename Edit>
  uint64_t Change(const Edit& edit);
  bool IsOver(uint64_t turn) const;
  void WaitForTheEndOf(uint64_t turn) const;
  void MixBlock(short* samples, size_t frames);
  void MixParts(const Parts& parts, short* samples, size_t frames);
  void StartOrStop();

  // Held while the parts or the device change, but never by the device's thread.
  std::mutex m_mutex;
  std::atomic<const Parts*> m_parts;
  // Odd while the device's thread mixes a block.
  std::atomic<uint64_t> m_turn = 0;
  std::vector<Retired> m_retired;
  bool m_runs = false;
  SumLimiter m_limiter;
  SumLimiter m_feedbackLimiter;
  std::vector<int32_t> m_sums;
  std::vector<int32_t> m_feedbackSums;
  std::vector<short> m_block;
  AudioDevice m_device;
};

}  // namespace desktop
