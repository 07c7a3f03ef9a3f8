#include "desktop/live/file_player.h"

#include <algorithm>
#include <cinttypes>
#include <exception>

#include "desktop/dsp/dynamics/volume.h"
#include "desktop/files/refused_files.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace desktop {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// What has a lower rate (Hz) holds nothing that anybody could hear.
constexpr uint32_t kMinRate = 100;

}  // namespace

FilePlayer::FilePlayer() : m_ring(kAhead) {}

FilePlayer::~FilePlayer() { Stop(); }

FileFault FilePlayer::Open(const char* file) {
  Stop();
  m_resampler = nullptr;
  const FileFault fault = OpenAudioFile(file, &m_source);
  if (fault != FileFault::kNone) return fault;
  if (m_source->Rate() >= kMinRate && MakeResampler()) return fault;
  m_resampler = nullptr;
  m_source = nullptr;
  RefuseFile(file, "cannot play the audio file", "its rate cannot be played");
  return FileFault::kNoDecoder;
}

bool FilePlayer::MakeResampler() {
  try {
    m_blockFrames = Resampler::BlockFrames(m_source->Rate(), kFormat.rate);
    m_resampler = std::make_unique<Resampler>(m_source->Rate(), m_source->Channels(), kFormat.rate,
                                              kFormat.channels, m_blockFrames);
    if (!m_resampler->IsOpen()) return false;
    m_block.resize(m_blockFrames * m_source->Channels());
    m_converted.resize(m_resampler->MaxFramesFor(m_blockFrames) * kFormat.channels);
    return true;
  } catch (const std::exception&) {
    // Memory is short.
    return false;
  }
}

bool FilePlayer::Play() {
  if (!IsOpen()) return false;
  m_paused = false;
  if (m_plays) return true;
  Stop();
  m_underruns = 0;
  try {
    m_plays = true;
    m_thread = StartThread([this] { Run(); });
    m_background.emplace([this](steady_clock::time_point deadline) {
      while (m_plays && !m_paused && steady_clock::now() < deadline) {
        std::this_thread::sleep_for(milliseconds(5));
      }
      return !m_plays || m_paused;
    });
  } catch (const std::exception& error) {
    m_plays = m_thread.joinable();
    LogRefusal("player: %s", error.what());
  }
  return m_plays;
}

void FilePlayer::Stop() {
  m_background.reset();
  if (!m_thread.joinable()) return;
  m_stop = true;
  m_wake.Post();
  m_thread.join();
  m_stop = m_read = m_failed = m_over = m_paused = false;
  m_playedFrames = 0;
  m_volume = 0;
  m_ring.Clear();
}

void FilePlayer::Run() {
  ReadAhead();
  m_read = true;
  // A short file has not been added by ReadAhead.
  Loudspeaker::Shared().Add(this);
  if (WaitUntilOver()) {
    // The last samples are still on their way to the loudspeaker.
    const milliseconds latency(Loudspeaker::Shared().Device().LatencyMs());
    const Time heard = Now() + latency;
    while (!m_stop && Now() < heard) m_wake.WaitUntil(heard);
  }
  Loudspeaker::Shared().Remove(this);
  if (m_underruns > 0) {
    OutputDebugInfo("player: %" PRIu64 " blocks of 10 ms came too late", m_underruns.load());
    AddDeviceFailures(Direction::kOutput, m_underruns);
  }
  m_plays = false;
}

void FilePlayer::ReadAhead() {
  if (!m_source->Rewind()) {
    m_failed = true;
    LogRefusal("player: cannot go back to the start of the file");
    return;
  }
  while (const size_t frames = m_source->Read(m_block.data(), m_blockFrames)) {
    if (!Convert(m_block.data(), frames)) return;
  }
  if (m_source->Failed()) {
    m_failed = true;
    LogRefusal("player: the file cannot be read to its end");
  }
  // Silence moves what the resampler still holds out of it.
  const size_t lag = m_resampler->LagFrames() * m_source->Rate() / kFormat.rate;
  std::fill(m_block.begin(), m_block.end(), short{0});
  for (size_t left = lag > 0 ? lag + 1 : 0; left > 0;) {
    const size_t part = std::min(left, m_blockFrames);
    if (!Convert(m_block.data(), part)) return;
    left -= part;
  }
}

// Returns false when the player is to stop.
bool FilePlayer::Convert(const short* samples, size_t frames) {
  const size_t got = m_resampler->Convert(samples, frames, m_converted.data());
  const size_t count = got * kFormat.channels;
  for (size_t at = 0; at < count; at += kAhead / 4) {
    if (!Queue(&m_converted[at], std::min(count - at, kAhead / 4))) return false;
  }
  return !m_stop;
}

// Waits for room. Returns false when the player is to stop.
bool FilePlayer::Queue(const short* samples, size_t count) {
  while (!m_ring.Write(samples, count)) {
    if (m_stop) return false;
    Loudspeaker::Shared().Add(this);
    m_wake.WaitFor(milliseconds(1000));
  }
  return !m_stop;
}

// Returns false when the player is to stop.
bool FilePlayer::WaitUntilOver() {
  while (!m_over && !m_stop) m_wake.WaitFor(milliseconds(1000));
  return m_over;
}

void FilePlayer::FillBlock(short* samples, size_t frames) {
  const size_t count = frames * kFormat.channels;
  const bool read = m_read;
  const size_t got = m_paused || m_over ? 0 : std::min(m_ring.Waiting(), count);
  m_ring.Read(samples, got);
  std::fill(samples + got, samples + count, short{0});
  m_playedFrames += got / kFormat.channels;
  m_volume = VolumeOf(samples, count);
  if (m_paused || m_over) return;
  if (got < count && !read) ++m_underruns;
  if (got < count && read) {
    m_over = true;
    m_wake.Post();
  } else if (m_ring.Waiting() < kAhead / 2) {
    m_wake.Post();
  }
}

}  // namespace desktop
