#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "desktop/devices/background.h"
#include "desktop/devices/block_ring.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/files/open_audio_file.h"
#include "desktop/live/loudspeaker.h"
#include "desktop/platform/wake.h"

namespace desktop {

// Plays an audio file on the loudspeaker: a thread of its own reads ahead by half a second. Belongs
// to one thread.
class FilePlayer : public PlaySource {
 public:
  FilePlayer();

  // Stops.
  ~FilePlayer() override;
  FilePlayer(const FilePlayer&) = delete;
  FilePlayer& operator=(const FilePlayer&) = delete;

  FileFault Open(const char* file);
  bool IsOpen() const { return m_source != nullptr; }
  uint32_t LengthMs() const { return IsOpen() ? m_source->LengthMs() : 0; }

  // Plays from the start, or from where Pause left off. Returns false without a file.
  bool Play();
  void Pause() { m_paused = true; }
  void Stop();

  void SetFeedBack(AudioSourceType mode) { m_feedBack = mode; }

  // Returns true from Play until all was heard or Stop. Any thread.
  bool IsPlaying() const { return m_plays; }

  // Returns how much was played since the start, ms. Any thread.
  uint32_t PlayedMs() const {
    return static_cast<uint32_t>(m_playedFrames / (kFormat.rate / 1000));
  }

  // Returns the level of the latest block, 0 to 100. Any thread.
  uint32_t Volume() const { return m_volume; }

  // Returns whether the latest Play could not go on to the end of the file. Any thread.
  bool Failed() const { return m_failed; }

  // Returns how often the reading was too late since the latest Play. Any thread.
  uint64_t Underruns() const { return m_underruns; }

  void FillBlock(short* samples, size_t frames) override;
  AudioSourceType FeedBack() const override { return m_feedBack; }

 private:
  static constexpr DeviceFormat kFormat = Loudspeaker::kFormat;
  // How many samples are read ahead.
  static constexpr size_t kAhead = kFormat.rate * kFormat.channels / 2;

  // Makes one for the file that is open. Returns false when there is none to be had.
  bool MakeResampler();
  void Run();
  void ReadAhead();
  bool Convert(const short* samples, size_t frames);
  bool Queue(const short* samples, size_t count);
  bool WaitUntilOver();

  std::unique_ptr<FileSource> m_source;
  std::unique_ptr<Resampler> m_resampler;
  // How many frames of the file are converted at once, and the block that holds them.
  size_t m_blockFrames = 0;
  std::vector<short> m_block;
  std::vector<short> m_converted;
  BlockRing m_ring;
  Wake m_wake;
  std::thread m_thread;
  std::atomic<AudioSourceType> m_feedBack = AudioSourceTypeMic;
  std::atomic<bool> m_paused = false;
  std::atomic<bool> m_stop = false;
  std::atomic<bool> m_plays = false;
  // All of the file was put into the ring.
  std::atomic<bool> m_read = false;
  std::atomic<bool> m_failed = false;
  // All of it went to the loudspeaker.
  std::atomic<bool> m_over = false;
  std::atomic<size_t> m_playedFrames = 0;
  std::atomic<uint32_t> m_volume = 0;
  std::atomic<uint64_t> m_underruns = 0;
  std::optional<BackgroundWork> m_background;
};

}  // namespace desktop
