// AAC in ADTS, by libfdk-aac.

#include <fdk-aac/aacdecoder_lib.h>
#include <unistd.h>

#include <algorithm>
#include <type_traits>
#include <vector>

#include "base/units.h"
#include "recording/recording.h"

namespace host {

namespace {

static_assert(std::is_same_v<INT_PCM, short>);

struct CloseDecoder {
  void operator()(HANDLE_AACDECODER decoder) const { aacDecoder_Close(decoder); }
};
using Decoder = std::unique_ptr<std::remove_pointer_t<HANDLE_AACDECODER>, CloseDecoder>;

constexpr size_t kHeaderBytes = 7;
constexpr size_t kMaxFrameBytes = 8191;
constexpr size_t kMaxSamples = 2048 * 8;  // Of a frame, all channels.

// Band replication and the second channel of HE may show after the first frame only.
constexpr int kFramesToSettle = 8;

// The frames of a file, one at a time (ISO/IEC 13818-7, 6.2).
class AdtsFrames {
 public:
  explicit AdtsFrames(int file) : m_file(file) {
    unsigned char tag[10] = {};
    // ID3v2: its length without this header, seven bits a byte.
    if (pread(file, tag, sizeof tag, 0) != sizeof tag || tag[0] != 'I' || tag[1] != 'D' ||
        tag[2] != '3') {
      return;
    }
    for (size_t i = 6; i < sizeof tag; ++i) m_at = m_at << 7 | (tag[i] & 0x7F);
    m_at += sizeof tag;
  }

  // False at the end, and where no whole frame follows.
  bool Next(std::vector<unsigned char>& frame) {
    frame.resize(kMaxFrameBytes);
    const ssize_t count = pread(m_file, frame.data(), frame.size(), m_at);
    if (count <= 0) return false;
    m_broken = true;
    if (static_cast<size_t>(count) < kHeaderBytes) return false;
    if (frame[0] != 0xFF || (frame[1] & 0xF6) != 0xF0) return false;
    const size_t bytes =
        (frame[3] & 3U) << 11U | static_cast<size_t>(frame[4]) << 3U | frame[5] >> 5U;
    if (bytes < kHeaderBytes || bytes > static_cast<size_t>(count)) return false;
    m_broken = false;
    frame.resize(bytes);
    m_at += static_cast<off_t>(bytes);
    return true;
  }

  // Whether there is something else than a whole frame where the next one should be.
  bool Broken() const { return m_broken; }

 private:
  int m_file;
  off_t m_at = 0;
  bool m_broken = false;
};

struct Layout {
  int rate = 0;
  int channels = 0;
  int frames = 0;

  bool operator==(const Layout& other) const = default;
};

class AacRecording : public Recording {
 public:
  explicit AacRecording(int file) : m_file(file) {}

  // Finds the format. False when nothing can be decoded.
  bool Examine() {
    if (!Start()) return false;
    for (int i = 0; i < kFramesToSettle && m_frames->Next(m_frame); ++i) Decode(m_layout);
    if (m_layout.frames == 0) return false;
    m_format = {.container = "AAC",
                .samples = "ADTS",
                .rate = m_layout.rate,
                .channels = m_layout.channels};
    return Start();
  }

  const RecordingFormat& Format() const override { return m_format; }

  size_t Read(double* samples, size_t frames) override {
    const auto channels = static_cast<size_t>(m_layout.channels);
    size_t done = 0;
    while (done < frames && (m_at < m_waiting || NextFrame())) {
      const size_t part = std::min(frames - done, m_waiting - m_at);
      for (size_t i = 0; i < part * channels; ++i) {
        samples[done * channels + i] = m_samples[m_at * channels + i] / 32768.0;
      }
      m_at += part;
      done += part;
      m_read += part;
    }
    return done;
  }

  std::string Fault() const override { return m_fault; }

 private:
  bool Start() {
    m_frames.emplace(m_file);
    m_decoder.reset(aacDecoder_Open(TT_MP4_ADTS, 1));
    m_settling = kFramesToSettle;
    return m_decoder != nullptr &&
           aacDecoder_SetParam(m_decoder.get(), AAC_PCM_LIMITER_ENABLE, 0) == AAC_DEC_OK &&
           (m_layout.channels == 0 ||
            aacDecoder_SetParam(m_decoder.get(), AAC_PCM_MIN_OUTPUT_CHANNELS, m_layout.channels) ==
                AAC_DEC_OK);
  }

  bool NextFrame() {
    if (!m_fault.empty()) return false;
    if (!m_frames->Next(m_frame)) {
      if (m_frames->Broken()) Blame("no whole frame follows");
      return false;
    }
    Layout layout;
    const bool decoded = Decode(layout);
    if (--m_settling < 0 && !decoded) return Blame("a frame is damaged");
    if (!decoded || layout != m_layout) {
      if (m_settling < 0) return Blame("another format follows");
      // What comes before band replication has shown is as long as the rest, and silent.
      std::fill_n(m_samples, m_layout.frames * m_layout.channels, short{0});
    }
    m_at = 0;
    m_waiting = static_cast<size_t>(m_layout.frames);
    return true;
  }

  bool Blame(const std::string& what) {
    m_fault = "cannot be read beyond " + Seconds(static_cast<double>(m_read) / m_layout.rate) +
              ": " + what;
    return false;
  }

  bool Decode(Layout& layout) {
    UCHAR* data = m_frame.data();
    const auto size = static_cast<UINT>(m_frame.size());
    UINT left = size;
    if (aacDecoder_Fill(m_decoder.get(), &data, &size, &left) != AAC_DEC_OK) return false;
    if (aacDecoder_DecodeFrame(m_decoder.get(), m_samples, kMaxSamples, 0) != AAC_DEC_OK) {
      return false;
    }
    const CStreamInfo* const info = aacDecoder_GetStreamInfo(m_decoder.get());
    if (info->sampleRate < 1 || info->numChannels < 1 || info->frameSize < 1) return false;
    layout = {info->sampleRate, info->numChannels, info->frameSize};
    return true;
  }

  int m_file;
  Layout m_layout;
  RecordingFormat m_format;
  std::optional<AdtsFrames> m_frames;
  Decoder m_decoder;
  std::vector<unsigned char> m_frame;
  int m_settling = 0;    // Frames at the start that need not have the format of the rest.
  uint64_t m_read = 0;   // Frames of samples.
  size_t m_at = 0;       // The next frame of samples in m_samples,
  size_t m_waiting = 0;  // of so many.
  std::string m_fault;
  INT_PCM m_samples[kMaxSamples];
};

}  // namespace

OpenedRecording OpenAacRecording(int file) {
  auto recording = std::make_unique<AacRecording>(file);
  if (!recording->Examine()) return {.fault = "is AAC that cannot be decoded"};
  return {.recording = std::move(recording)};
}

}  // namespace host
