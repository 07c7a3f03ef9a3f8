#include "desktop/devices/pulse_stream.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <cstring>

namespace desktop {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How long the server may leave a question without an answer, and how often it is asked.
constexpr milliseconds kPatience{800};
constexpr milliseconds kBetweenQuestions{200};
constexpr microseconds kMaxWait{10'000};
constexpr uint32_t kBufferedBlocks = 16;

void CountFailure(pa_stream* /*stream*/, void* failures) { ++*static_cast<uint64_t*>(failures); }

}  // namespace

PulseStream::PulseStream(Direction direction, DeviceFormat format)
    : m_direction(direction),
      m_format(format),
      m_blockBytes(format.BlockFrames() * format.channels * sizeof(short)),
      m_patience(kPatience, steady_clock::now()),
      m_heard(200 * m_blockBytes) {}

PulseStream::~PulseStream() {
  if (m_question != nullptr) {
    pa_operation_cancel(m_question);
    pa_operation_unref(m_question);
  }
  if (m_stream != nullptr) {
    pa_stream_set_underflow_callback(m_stream, nullptr, nullptr);
    pa_stream_set_overflow_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(m_stream);
  }
  if (m_context != nullptr) {
    pa_context_disconnect(m_context);
    pa_context_unref(m_context);
  }
  if (m_loop != nullptr) pa_mainloop_free(m_loop);
}

bool PulseStream::Connect(const std::atomic<bool>& stop) {
  m_loop = pa_mainloop_new();
  if (m_loop == nullptr) return Fail("no memory");
  m_context = pa_context_new(pa_mainloop_get_api(m_loop), "audio engine");
  if (m_context == nullptr) return Fail("no memory");
  if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
    return Fail(pa_strerror(pa_context_errno(m_context)));
  }
  return WaitFor(stop, &PulseStream::IsContextReady) && ConnectStream() &&
         WaitFor(stop, &PulseStream::IsStreamReady);
}

bool PulseStream::WaitFor(const std::atomic<bool>& stop, bool (PulseStream::*isReady)()) {
  m_patience.Renew(steady_clock::now());
  while (!stop && Wait(Time::max())) {
    if (!(this->*isReady)()) continue;
    m_patience.Renew(steady_clock::now());
    return true;
  }
  return m_fault.empty() ? Fail("stopped before it answered") : false;
}

bool PulseStream::IsContextReady() { return pa_context_get_state(m_context) == PA_CONTEXT_READY; }

bool PulseStream::IsStreamReady() { return pa_stream_get_state(m_stream) == PA_STREAM_READY; }

bool PulseStream::ConnectStream() {
  const pa_sample_spec samples = {PA_SAMPLE_S16LE, m_format.rate,
                                  static_cast<uint8_t>(m_format.channels)};
  const bool isOutput = m_direction == Direction::kOutput;
  m_stream = pa_stream_new(m_context, isOutput ? "loudspeaker" : "microphone", &samples, nullptr);
  if (m_stream == nullptr) return Fail(pa_strerror(pa_context_errno(m_context)));
  pa_stream_set_underflow_callback(m_stream, CountFailure, &m_failures);
  pa_stream_set_overflow_callback(m_stream, CountFailure, &m_failures);

  const auto block = static_cast<uint32_t>(m_blockBytes);
  const auto serverChooses = static_cast<uint32_t>(-1);
  const pa_buffer_attr buffer = {serverChooses, kBufferedBlocks * block, serverChooses, block,
                                 block};
  const auto flags = static_cast<pa_stream_flags_t>(
      PA_STREAM_ADJUST_LATENCY | PA_STREAM_INTERPOLATE_TIMING | PA_STREAM_AUTO_TIMING_UPDATE);
  const int error =
      isOutput ? pa_stream_connect_playback(m_stream, nullptr, &buffer, flags, nullptr, nullptr)
               : pa_stream_connect_record(m_stream, nullptr, &buffer, flags);
  return error >= 0 || Fail(pa_strerror(pa_context_errno(m_context)));
}

bool PulseStream::Wait(Time until) {
  if (!Iterate(until)) return Fail("its connection broke");
  if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context)) ||
      (m_stream != nullptr && pa_stream_get_state(m_stream) != PA_STREAM_UNCONNECTED &&
       !PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream)))) {
    return Fail(pa_strerror(pa_context_errno(m_context)));
  }
  if (m_direction == Direction::kInput && m_stream != nullptr) Collect();
  AskWhetherItIsThere();
  return !m_patience.IsOver(steady_clock::now()) || Fail("it does not answer");
}

bool PulseStream::Iterate(Time until) {
  const auto left = std::chrono::ceil<microseconds>(until - steady_clock::now());
  const microseconds wait = std::clamp(left, microseconds(0), kMaxWait);
  return pa_mainloop_prepare(m_loop, static_cast<int>(wait.count())) >= 0 &&
         pa_mainloop_poll(m_loop) >= 0 && pa_mainloop_dispatch(m_loop) >= 0;
}

void PulseStream::AskWhetherItIsThere() {
  const Time now = steady_clock::now();
  if (m_stream == nullptr || !IsStreamReady() || m_question != nullptr ||
      now - m_asked < kBetweenQuestions) {
    return;
  }
  m_asked = now;
  m_question = pa_stream_update_timing_info(m_stream, OnAnswer, this);
}

void PulseStream::OnAnswer(pa_stream* /*stream*/, int /*success*/, void* self) {
  auto* const own = static_cast<PulseStream*>(self);
  own->m_patience.Renew(steady_clock::now());
  pa_operation_unref(own->m_question);
  own->m_question = nullptr;
}

bool PulseStream::IsSuspended() const { return pa_stream_is_suspended(m_stream) == 1; }

bool PulseStream::Fail(const char* reason) {
  m_fault = reason;
  return false;
}

bool PulseStream::WantsBlock() {
  const size_t bytes = pa_stream_writable_size(m_stream);
  return bytes != static_cast<size_t>(-1) && bytes >= m_blockBytes;
}

bool PulseStream::Give(const short* samples) {
  ++m_givenBlocks;
  return pa_stream_write(m_stream, samples, m_blockBytes, nullptr, 0, PA_SEEK_RELATIVE) >= 0 ||
         Fail(pa_strerror(pa_context_errno(m_context)));
}

// Takes over all that the server has sent.
void PulseStream::Collect() {
  const void* data = nullptr;
  size_t bytes = 0;
  while (IsStreamReady() && pa_stream_peek(m_stream, &data, &bytes) >= 0 && bytes > 0) {
    const size_t kept = std::min(bytes, m_heard.size() - m_heardBytes);
    if (data != nullptr) {
      memcpy(&m_heard[m_heardBytes], data, kept);
    } else {
      // The server lost something.
      memset(&m_heard[m_heardBytes], 0, kept);
    }
    if (data == nullptr || kept < bytes) ++m_failures;
    m_heardBytes += kept;
    pa_stream_drop(m_stream);
    m_patience.Renew(steady_clock::now());
  }
}

bool PulseStream::Take(short* samples) {
  if (m_heardBytes < m_blockBytes) return false;
  memcpy(samples, m_heard.data(), m_blockBytes);
  m_heardBytes -= m_blockBytes;
  memmove(m_heard.data(), &m_heard[m_blockBytes], m_heardBytes);
  return true;
}

uint32_t PulseStream::LatencyMs() const {
  pa_usec_t latency = 0;
  int isNegative = 0;
  if (pa_stream_get_latency(m_stream, &latency, &isNegative) < 0) {
    return static_cast<uint32_t>(10 * m_givenBlocks);
  }
  if (isNegative != 0) return 0;
  return static_cast<uint32_t>(latency / 1000);
}

}  // namespace desktop
