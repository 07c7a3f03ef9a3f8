#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "desktop/devices/audio_device.h"
#include "desktop/devices/block_worker.h"
#include "desktop/dsp/dynamics/sum_limiter.h"
#include "desktop/enhancement/parts/voice_detector.h"
#include "desktop/live/capture_cleaner.h"
#include "desktop/live/play_feed.h"

namespace desktop {

// 10 ms of the microphone path, valid for one call.
struct CapturedBlock {
  // The microphone mixed with what players feed back into it.
  const short* samples;
  // The microphone alone, cleaned if it cleans.
  const short* microphone;
  size_t frames;
  // What the detector says of `samples`.
  VADResultKind voice;
  // The level of `samples`: 0 for -60 dBFS (RMS) and below, 100 for 0 dBFS.
  uint8_t volume;
  // The time of the first sample since the start.
  uint32_t timeMs;
  // How long ago the first sample was heard.
  uint32_t latencyMs;
};

// Hears every block, on a thread of its own and never the device's.
class CaptureListener {
 public:
  virtual ~CaptureListener() = default;
  virtual void OnCaptured(const CapturedBlock& block) = 0;
};

// One use of the machine's microphone, in a format of its own. Belongs to one thread.
class Microphone {
 public:
  // format: a valid one. cleans: whether what is captured is cleaned, looked at in every block.
  // Throws std::system_error when there is no thread to be had.
  Microphone(DeviceFormat format, const std::atomic<bool>& cleans);

  // Stops. All listeners must have been removed.
  ~Microphone();
  Microphone(const Microphone&) = delete;
  Microphone& operator=(const Microphone&) = delete;

  // Opens the device. Returns false, with one line in the log, when that fails.
  bool Start();

  // Closes the device. What was captured reaches the listeners before it returns.
  void Stop();

  // Waits until what was captured has reached the listeners. Returns false when they take no block
  // within `patience`.
  bool CatchUp(std::chrono::milliseconds patience) const { return m_worker.CatchUp(patience); }

  const AudioDevice& Device() const { return m_device; }
  DeviceFormat Format() const { return m_device.Format(); }
  uint32_t LatencyMs() const { return m_device.LatencyMs(); }

  // A listener is not called any more after Remove has returned, or, where it removes itself, after
  // the call that it is in. Any thread.
  void Add(CaptureListener* listener);
  void Remove(CaptureListener* listener);

 private:
  void Work(short* samples, size_t frames);
  void MixFeedback(const short* microphone, size_t frames);
  void Tell(const CapturedBlock& block);

  const std::atomic<bool>& m_cleans;
  PlayFeed m_feedback;
  // Null while nothing is cleaned.
  std::unique_ptr<CaptureCleaner> m_cleaner;
  VoiceDetector m_voice;
  SumLimiter m_limiter;
  std::vector<short> m_mixed;
  std::vector<int32_t> m_sums;
  uint64_t m_blocks = 0;
  // Whether m_feedback was added to the loudspeaker.
  bool m_listens = false;
  // Guards m_listeners, m_called and m_caller; never held while a listener is called.
  std::mutex m_mutex;
  std::vector<CaptureListener*> m_listeners;
  // The listener that is being called, and the thread that calls it.
  const CaptureListener* m_called = nullptr;
  std::thread::id m_caller;
  std::condition_variable m_returned;
  // Used by the thread that calls the listeners alone.
  std::vector<CaptureListener*> m_toCall;
  BlockWorker m_worker;
  AudioDevice m_device;
};

}  // namespace desktop
