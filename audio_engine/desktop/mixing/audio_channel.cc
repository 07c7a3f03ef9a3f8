#include "engine_api/mixing/audio_channel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <map>
#include <memory>

#include "desktop/devices/ticker.h"
#include "desktop/live/frame_packer.h"
#include "desktop/live/frame_player.h"
#include "desktop/live/loudspeaker.h"
#include "desktop/live/microphone.h"
#include "desktop/mixing/parts/capture_cleaning.h"
#include "desktop/platform/callback_scope.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::DeviceFormat;
using desktop::Loudspeaker;
using desktop::Microphone;
using desktop::RefusesInCallback;
using desktop::Resampler;

// Packs what a microphone hears, on the thread of that.
class PackedCapture : public desktop::CaptureListener {
 public:
  // Both formats have the same channels. leavesOutSilence: looked at in every block. channel: the
  // object in whose name the notify is called.
  PackedCapture(std::unique_ptr<desktop::FramePacker> packer, DeviceFormat captured,
                DeviceFormat processed, const std::atomic<bool>& leavesOutSilence,
                const IAudioChannel* channel)
      : m_packer(std::move(packer)),
        m_leavesOutSilence(leavesOutSilence),
        m_channel(channel),
        m_channels(captured.channels),
        m_resampler(captured.rate, m_channels, processed.rate, m_channels, captured.BlockFrames()),
        m_block(m_resampler.MaxFramesFor(captured.BlockFrames()) * m_channels) {}

  ~PackedCapture() override {
    const desktop::FramePacker::Counts counts = m_packer->GetCounts();
    OutputDebugInfo("packer: %u frames, %u left out, %u too long, %zu samples dropped",
                    counts.packed, counts.leftOut, counts.tooLong, counts.droppedSamples);
  }
  PackedCapture(const PackedCapture&) = delete;
  PackedCapture& operator=(const PackedCapture&) = delete;

  uint32_t DelayMs() const { return m_packer->DelayMs(); }

  void OnCaptured(const desktop::CapturedBlock& block) override {
    const desktop::CallbackScope scope(m_channel);
    m_packer->LeaveOutSilence(m_leavesOutSilence);
    const size_t frames = m_resampler.Convert(block.samples, block.frames, m_block.data());
    m_packer->Put(m_block.data(), frames);
    m_packer->Work();
  }

 private:
  const std::unique_ptr<desktop::FramePacker> m_packer;
  const std::atomic<bool>& m_leavesOutSilence;
  const IAudioChannel* const m_channel;
  const uint32_t m_channels;
  Resampler m_resampler;
  std::vector<short> m_block;
};

// A stream on the loudspeaker, whose frames are pulled on a thread of its own.
class PlayedStream final : public desktop::PlaySource {
 public:
  // channel: the object in whose name the notify is called.
  PlayedStream(IAudioFramePlayerNotify* notify, uint32_t stream, const IAudioChannel* channel)
      : m_stream(stream),
        m_player(notify, stream, Loudspeaker::kFormat.rate, Loudspeaker::kFormat.channels),
        m_ticker(std::make_unique<desktop::Ticker>(std::chrono::milliseconds(10), [this, channel] {
          const desktop::CallbackScope scope(channel);
          m_player.Work(Loudspeaker::Shared().Device().LatencyMs());
        })) {
    Loudspeaker::Shared().Add(this);
  }

  ~PlayedStream() override {
    PlayedStream::Stop();
    const desktop::FramePlayer::Counts counts = m_player.GetCounts();
    OutputDebugInfo(
        "player: stream %u, %u frames, %u concealed, %u refused, %u dropped, %u underruns",
        m_stream, counts.played, counts.concealed, counts.refused, counts.dropped,
        counts.underruns);
    desktop::AddDeviceFailures(desktop::Direction::kOutput, counts.underruns);
  }
  PlayedStream(const PlayedStream&) = delete;
  PlayedStream& operator=(const PlayedStream&) = delete;

  // No frame is pulled afterwards. From a pull until the frame is heard, ms, the mean.
  uint32_t Stop() {
    Loudspeaker::Shared().Remove(this);
    m_ticker = nullptr;
    return m_player.GetCounts().delayMs;
  }

  void FillBlock(short* samples, size_t frames) override { m_player.Render(samples, frames); }

 private:
  const uint32_t m_stream;
  desktop::FramePlayer m_player;
  std::unique_ptr<desktop::Ticker> m_ticker;
};

class AudioChannel : public IAudioChannel {
 public:
  ~AudioChannel() override {
    AudioChannel::StopPacker();
    AudioChannel::CloseCapture();
  }

  void EnablePackerVad(bool enable) override { m_leavesOutSilence = enable; }

  bool StartPacker(IAudioFramePackerNotify* notify, int codecType, int captureRate, int processRate,
                   int channels, int bytesPerSample) override try {
    if (RefusesInCallback(this, "IAudioChannel::StartPacker")) return false;
    StopPacker();
    const auto sameChannels = static_cast<uint32_t>(channels);
    const DeviceFormat captured = {static_cast<uint32_t>(captureRate), sameChannels};
    const DeviceFormat processed = {static_cast<uint32_t>(processRate), sameChannels};
    if (notify == nullptr || !captured.IsValid() || !processed.IsValid() ||
        bytesPerSample != sizeof(short)) {
      OutputDebugInfo("packer: cannot capture %d Hz, process %d Hz, %d channels, %d bytes",
                      captureRate, processRate, channels, bytesPerSample);
      return false;
    }
    auto packer = desktop::FramePacker::Create(notify, codecType, processRate, channels);
    if (packer == nullptr) return false;
    m_packed = std::make_unique<PackedCapture>(std::move(packer), captured, processed,
                                               m_leavesOutSilence, this);
    const bool reopens = m_microphone != nullptr && (m_captured.rate != captured.rate ||
                                                     m_captured.channels != captured.channels);
    m_captured = captured;
    if (reopens) return OpenCapture();
    if (m_microphone != nullptr) m_microphone->Add(m_packed.get());
    return true;
  } catch (const std::exception& error) {
    OutputDebugInfo("packer: does not start: %s", error.what());
    return false;
  }

  bool OpenCapture() override try {
    if (RefusesInCallback(this, "IAudioChannel::OpenCapture")) return false;
    CloseCapture();
    auto microphone = std::make_unique<Microphone>(m_captured, desktop::CleansCapture());
    if (m_packed != nullptr) microphone->Add(m_packed.get());
    if (!microphone->Start()) return false;
    m_microphone = std::move(microphone);
    return true;
  } catch (const std::exception& error) {
    OutputDebugInfo("microphone: does not start: %s", error.what());
    return false;
  }

  void CloseCapture() override {
    if (RefusesInCallback(this, "IAudioChannel::CloseCapture")) return;
    if (m_microphone == nullptr) return;
    m_microphone->Stop();
    if (m_packed != nullptr) m_microphone->Remove(m_packed.get());
    m_microphone = nullptr;
  }

  void StopPacker() override {
    if (RefusesInCallback(this, "IAudioChannel::StopPacker")) return;
    NotePackDelay();
    if (m_microphone != nullptr && m_packed != nullptr) m_microphone->Remove(m_packed.get());
    m_packed = nullptr;
  }

  bool StartPlay(IAudioFramePlayerNotify* notify, uint32_t stream, uint32_t sampleRate,
                 uint32_t channels) override try {
    if (RefusesInCallback(this, "IAudioChannel::StartPlay")) return false;
    StopPlay(stream);
    if (notify == nullptr || !DeviceFormat{sampleRate, channels}.IsValid()) {
      OutputDebugInfo("player: stream %u cannot play at %u Hz with %u channels", stream, sampleRate,
                      channels);
      return false;
    }
    m_streams[stream] = std::make_unique<PlayedStream>(notify, stream, this);
    return true;
  } catch (const std::exception& error) {
    OutputDebugInfo("player: stream %u does not start: %s", stream, error.what());
    return false;
  }

  void StopPlay(uint32_t stream) override {
    if (RefusesInCallback(this, "IAudioChannel::StopPlay")) return;
    const auto found = m_streams.find(stream);
    if (found == m_streams.end()) return;
    const uint32_t playDelayMs = found->second->Stop();
    m_streams.erase(found);
    NotePackDelay();
    if (m_packDelayMs == 0 || playDelayMs == 0) return;
    OutputDebugInfo("channel: loop delay %u ms: %u to a packed frame, %u from there until heard",
                    m_packDelayMs + playDelayMs, m_packDelayMs, playDelayMs);
  }

  void Destroy() override {
    if (!RefusesInCallback(this, "IAudioChannel::Destroy")) delete this;
  }

 private:
  void NotePackDelay() {
    if (m_microphone == nullptr || m_packed == nullptr) return;
    // The block of 10 ms that the microphone's latency holds is a part of the frame.
    m_packDelayMs = std::max(m_microphone->LatencyMs(), 10U) - 10 + m_packed->DelayMs();
  }

  std::atomic<bool> m_leavesOutSilence = false;
  DeviceFormat m_captured = {48000, 1};
  std::unique_ptr<PackedCapture> m_packed;
  uint32_t m_packDelayMs = 0;  // From the microphone to a packed frame; 0 as long as it is unknown.
  std::unique_ptr<Microphone> m_microphone;  // Null while it is closed.
  std::map<uint32_t, std::unique_ptr<PlayedStream>> m_streams;
};

}  // namespace

IAudioChannel* IAudioChannel::Create() { return new AudioChannel; }
