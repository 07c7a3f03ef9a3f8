#include "engine_api/mixing/audio_channel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "desktop/devices/ticker.h"
#include "desktop/live/loudspeaker.h"
#include "desktop/live/microphone.h"
#include "desktop/live/packet_maker.h"
#include "desktop/live/packet_player.h"
#include "desktop/mixing/parts/capture_cleaning.h"
#include "desktop/mixing/parts/try_to_start.h"
#include "desktop/platform/callback_scope.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::DeviceFormat;
using desktop::Loudspeaker;
using desktop::Microphone;
using desktop::RefusesInCallback;
using desktop::Resampler;

// Packs what a microphone hears, on the microphone's thread.
class PackedCapture : public desktop::CaptureListener {
 public:
  // Both formats have the same channels. leavesOutSilence is looked at in every block; channel is
  // the object in whose name the notify is called.
  PackedCapture(std::unique_ptr<desktop::PacketMaker> packer, DeviceFormat captured,
                DeviceFormat processed, const std::atomic<bool>& leavesOutSilence,
                const IAudioChannel* channel)
      : m_packer(std::move(packer)),
        m_leavesOutSilence(leavesOutSilence),
        m_channel(channel),
        m_channels(captured.channels),
        m_resampler(captured.rate, m_channels, processed.rate, m_channels, captured.BlockFrames()),
        m_block(m_resampler.MaxFramesFor(captured.BlockFrames()) * m_channels) {}

  ~PackedCapture() override {
    const desktop::PacketMaker::Counts counts = m_packer->GetCounts();
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
  const std::unique_ptr<desktop::PacketMaker> m_packer;
  const std::atomic<bool>& m_leavesOutSilence;
  const IAudioChannel* const m_channel;
  const uint32_t m_channels;
  Resampler m_resampler;
  std::vector<short> m_block;
};

// A stream on the loudspeaker, whose packets are pulled on a thread of its own.
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
    const desktop::PacketPlayer::Counts counts = m_player.GetCounts();
    OutputDebugInfo(
        "player: stream %u, %u frames, %u concealed, %u refused, %u dropped, %u underruns",
        m_stream, counts.played, counts.concealed, counts.refused, counts.dropped,
        counts.underruns);
    desktop::AddDeviceFailures(desktop::Direction::kOutput, counts.underruns);
  }
  PlayedStream(const PlayedStream&) = delete;
  PlayedStream& operator=(const PlayedStream&) = delete;

  // Stops the stream, after which no packet is pulled. Returns the mean delay from pull to
  // loudspeaker, ms.
  uint32_t Stop() {
    Loudspeaker::Shared().Remove(this);
    m_ticker = nullptr;
    return m_player.GetCounts().delayMs;
  }

  void FillBlock(short* samples, size_t frames) override { m_player.Render(samples, frames); }

 private:
  const uint32_t m_stream;
  desktop::PacketPlayer m_player;
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
                   int channels, int bytesPerSample) override {
    if (RefusesInCallback(this, "IAudioChannel::StartPacker")) return false;
    return desktop::TryToStart("packer:", [&] {
      StopPacker();
      const auto sameChannels = static_cast<uint32_t>(channels);
      const DeviceFormat captured = {static_cast<uint32_t>(captureRate), sameChannels};
      const DeviceFormat processed = {static_cast<uint32_t>(processRate), sameChannels};
      if (notify == nullptr || !captured.IsValid() || !processed.IsValid() ||
          bytesPerSample != sizeof(short)) {
        desktop::LogRefusal("packer: cannot capture %d Hz, process %d Hz, %d channels, %d bytes",
                            captureRate, processRate, channels, bytesPerSample);
        return false;
      }
      auto packer = desktop::PacketMaker::Create(notify, codecType, processed);
      if (packer == nullptr) return false;
      m_packed = std::make_unique<PackedCapture>(std::move(packer), captured, processed,
                                                 m_leavesOutSilence, this);
      const bool reopens = m_microphone != nullptr && (m_captured.rate != captured.rate ||
                                                       m_captured.channels != captured.channels);
      m_captured = captured;
      if (reopens) return OpenCapture();
      if (m_microphone != nullptr) m_microphone->Add(m_packed.get());
      return true;
    });
  }

  bool OpenCapture() override {
    if (RefusesInCallback(this, "IAudioChannel::OpenCapture")) return false;
    return desktop::TryToStart("microphone:", [&] {
      CloseCapture();
      auto microphone = std::make_unique<Microphone>(m_captured, desktop::CleansCapture());
      if (m_packed != nullptr) microphone->Add(m_packed.get());
      if (!microphone->Start()) return false;
      m_microphone = std::move(microphone);
      return true;
    });
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
                 uint32_t channels) override {
    if (RefusesInCallback(this, "IAudioChannel::StartPlay")) return false;
    return desktop::TryToStart(("player: stream " + std::to_string(stream)).c_str(), [&] {
      StopPlay(stream);
      if (notify == nullptr || !DeviceFormat{sampleRate, channels}.IsValid()) {
        desktop::LogRefusal("player: stream %u cannot play at %u Hz with %u channels", stream,
                            sampleRate, channels);
        return false;
      }
      m_streams[stream] = std::make_unique<PlayedStream>(notify, stream, this);
      return true;
    });
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
    // The block of 10 ms that the microphone's latency holds is a part of the packet.
    m_packDelayMs = std::max(m_microphone->LatencyMs(), 10U) - 10 + m_packed->DelayMs();
  }

  std::atomic<bool> m_leavesOutSilence = false;
  DeviceFormat m_captured = {48000, 1};
  std::unique_ptr<PackedCapture> m_packed;
  // The delay from the microphone to a packet; 0 as long as it is unknown.
  uint32_t m_packDelayMs = 0;
  // Null while it is closed.
  std::unique_ptr<Microphone> m_microphone;
  std::map<uint32_t, std::unique_ptr<PlayedStream>> m_streams;
};

}  // namespace

IAudioChannel* IAudioChannel::Create() { return new AudioChannel; }
