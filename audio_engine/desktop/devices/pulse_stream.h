#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "desktop/devices/device_format.h"
#include "desktop/devices/patience.h"
#include "desktop/devices/sound_stream.h"

struct pa_context;
struct pa_mainloop;
struct pa_operation;
struct pa_stream;

namespace desktop {

// One stream of the sound server, by libpulse's asynchronous interface on the calling thread alone:
// nothing here waits for the server longer than a second, neither at its start nor when it dies or
// hangs. A server that moves nothing is asked whether it is still there, and is lost only when it
// leaves that unanswered.
class PulseStream : public SoundStream {
 public:
  PulseStream(Direction direction, DeviceFormat format);
  ~PulseStream() override;
  PulseStream(const PulseStream&) = delete;
  PulseStream& operator=(const PulseStream&) = delete;

  // Connects to the server that the environment names, else to the user's.
  bool Connect(const std::atomic<bool>& stop) override;

  bool Wait(Time until) override;
  bool IsSuspended() const override;
  bool WantsBlock() override;
  bool Give(const short* samples) override;
  bool Take(short* samples) override;
  const std::string& Fault() const override { return m_fault; }
  uint64_t Failures() const override { return m_failures; }
  uint32_t LatencyMs() const override;

 private:
  bool WaitFor(const std::atomic<bool>& stop, bool (PulseStream::*isReady)());
  bool IsContextReady();
  bool IsStreamReady();
  bool ConnectStream();
  bool Iterate(Time until);
  bool Fail(const char* reason);
  void Collect();
  void AskWhetherItIsThere();
  static void OnAnswer(pa_stream* stream, int success, void* self);

  const Direction m_direction;
  const DeviceFormat m_format;
  const size_t m_blockBytes;
  pa_mainloop* m_loop = nullptr;
  pa_context* m_context = nullptr;
  pa_stream* m_stream = nullptr;
  // Null while the server has answered all questions.
  pa_operation* m_question = nullptr;
  // When the latest question was asked.
  Time m_asked;
  // Renewed whenever the server does anything.
  Patience m_patience;
  // What was heard and not taken yet, in the first m_heardBytes bytes.
  std::vector<char> m_heard;
  size_t m_heardBytes = 0;
  uint64_t m_givenBlocks = 0;
  uint64_t m_failures = 0;
  std::string m_fault;
};

}  // namespace desktop
