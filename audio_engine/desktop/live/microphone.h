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
#include "desktop/live/capture_cleaner.h"
#include "desktop/live/play_feed.h"

namespace desktop {

// 10 ms of the microphone path, valid for one call.
struct CapturedBlock {
  const short* samples;     // After what players feed back into it.
  const short* microphone;  // Before that; cleaned if this microphone cleans.
  size_t frames;
  VADResultKind voice;  // Of `samples`.
  uint8_t volume;       // The level of `samples`: 0 for -60 dBFS (RMS) and below, 100 for 0 dBFS.
  uint32_t timeMs;      // Of the first sample, since the start,
  uint32_t latencyMs;   // and how long ago it was heard.
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
  ~Microphone();  // Stops. Its listeners were removed.
  Microphone(const Microphone&) = delete;
  Microphone& operator=(const Microphone&) = delete;

  bool Start();  // Opens the device. False, with one line in the log, when that fails.
  void Stop();   // What was captured reaches the listeners before it returns.

  // Waits until what was captured has reached the listeners. False when they do not get on with it:
  // no block within `patience`.
  bool CatchUp(std::chrono::milliseconds patience) const { return m_worker.CatchUp(patience); }

  const AudioDevice& Device() const { return m_device; }
  DeviceFormat Format() const { return m_device.Format(); }
  uint32_t LatencyMs() const { return m_device.LatencyMs(); }

  // The listener is not called any more after Remove has returned, or, where it removes itself,
  // after the call that it is in. Any thread.
  void Add(CaptureListener* listener);
  void Remove(CaptureListener* listener);

 private:
  void Work(short* samples, size_t frames);
  void MixFeedback(const short* microphone, size_t frames);
  void Tell(const CapturedBlock& block);

  const std::atomic<bool>& m_cleans;
  PlayFeed m_feedback;
  std::unique_ptr<CaptureCleaner> m_cleaner;  // Null while nothing is cleaned.
  CVoiceDetectionEx m_voice;
  SumLimiter m_limiter;
  std::vector<short> m_mixed;
  std::vector<int32_t> m_sums;
  uint64_t m_blocks = 0;
  bool m_listens = false;  // To the loudspeaker.
  std::mutex m_mutex;      // Of the three that follow; never held while a listener is called.
  std::vector<CaptureListener*> m_listeners;
  const CaptureListener* m_called = nullptr;  // The listener that is being called,
  std::thread::id m_caller;                   // and on which thread.
  std::condition_variable m_returned;
  std::vector<CaptureListener*> m_toCall;  // Of the thread that calls them.
  BlockWorker m_worker;
  AudioDevice m_device;
};

}  // namespace desktop
