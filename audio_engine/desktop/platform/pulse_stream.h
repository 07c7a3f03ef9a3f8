#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "desktop/platform/audio_device.h"

struct pa_context;
struct pa_mainloop;
struct pa_stream;

namespace desktop {

// One stream of the sound server, by libpulse's asynchronous interface on the calling thread alone:
// nothing here waits for the server longer than a second, neither at its start nor when it dies or
// hangs.
class PulseStream {
 public:
  PulseStream(Direction direction, DeviceFormat format);
  ~PulseStream();
  PulseStream(const PulseStream&) = delete;
  PulseStream& operator=(const PulseStream&) = delete;

  // Connects to the server that the environment names, else to the user's. False when there is
  // none, or it does not answer until `stop`; Fault then says why.
  bool Connect(const std::atomic<bool>& stop);

  // Waits for the server, 10 ms at most. False when it is lost; Fault then says why.
  bool Wait();

  // Output: whether the server asks for a block, and the way to give it one.
  bool WantsBlock();
  bool Give(const short* samples);

  // Input: the next block, whole; false when there is none yet.
  bool Take(short* samples);

  const std::string& Fault() const { return m_fault; }

  uint64_t Failures() const { return m_failures; }  // Gaps in what was played or heard.

  // Output: how long the next block takes until it is heard; all that was given, as long as the
  // server has not told. Input: how long ago what it gives next was heard.
  uint32_t LatencyMs() const;

 private:
  bool WaitFor(const std::atomic<bool>& stop, bool (PulseStream::*isReady)());
  bool IsContextReady();
  bool IsStreamReady();
  bool ConnectStream();
  bool Iterate();
  bool Fail(const char* reason);
  void Collect();

  const Direction m_direction;
  const DeviceFormat m_format;
  const size_t m_blockBytes;
  pa_mainloop* m_loop = nullptr;
  pa_context* m_context = nullptr;
  pa_stream* m_stream = nullptr;
  std::chrono::steady_clock::time_point m_progress;  // The latest.
  std::vector<char> m_heard;                         // The first m_heardBytes count.
  size_t m_heardBytes = 0;
  uint64_t m_givenBlocks = 0;
  uint64_t m_failures = 0;
  std::string m_fault;
};

}  // namespace desktop
