#include "desktop/files/aac_file.h"

// AAC files with ADTS headers, by libfdk-aac.

#include <fdk-aac/aacdecoder_lib.h>

#include <algorithm>
#include <type_traits>

#include "desktop/common/counts.h"
#include "desktop/files/adts_reader.h"

namespace desktop {

namespace {

struct CloseDecoder {
  void operator()(HANDLE_AACDECODER decoder) const { aacDecoder_Close(decoder); }
};
using Decoder = std::unique_ptr<std::remove_pointer_t<HANDLE_AACDECODER>, CloseDecoder>;

// The most samples that a packet decodes to, of all channels, before they are mixed to two.
constexpr int kMaxSamples = 2048 * 8;

// What one packet decodes to.
struct Layout {
  uint32_t rate = 0;
  uint32_t channels = 0;
  size_t frames = 0;

  bool operator==(const Layout& other) const = default;
};

// channels: how many come out; 0 for as many as the file has, two at most.
Decoder OpenDecoder(uint32_t channels) {
  Decoder decoder(aacDecoder_Open(TT_MP4_ADTS, 1));
  HANDLE_AACDECODER handle = decoder.get();
  const bool ready =
      handle != nullptr && aacDecoder_SetParam(handle, AAC_PCM_LIMITER_ENABLE, 0) == AAC_DEC_OK &&
      aacDecoder_SetParam(handle, AAC_PCM_MAX_OUTPUT_CHANNELS,
                          channels > 0 ? Count(channels) : 2) == AAC_DEC_OK &&
      (channels == 0 ||
       aacDecoder_SetParam(handle, AAC_PCM_MIN_OUTPUT_CHANNELS, Count(channels)) == AAC_DEC_OK);
  return ready ? std::move(decoder) : nullptr;
}

class AacFile : public FileSource {
 public:
  explicit AacFile(File file) : m_file(std::move(file)) {}

  // Finds the length and the format. Returns false when no packet can be decoded.
  bool Examine() {
    AdtsReader packets(m_file.get());
    const unsigned char* packet = nullptr;
    Decoder decoder = OpenDecoder(0);
    if (decoder == nullptr) return false;
    while (const size_t bytes = packets.Next(&packet)) {
      // Band replication and the second channel of HE may show after the first packet only.
      if (m_count++ < 8) Decode(decoder.get(), packet, bytes, &m_layout);
    }
    return m_layout.frames > 0 && Rewind();
  }

  uint32_t Rate() const override { return m_layout.rate; }
  uint32_t Channels() const override { return m_layout.channels; }
  size_t Frames() const override { return m_count * m_layout.frames; }

  size_t Read(short* samples, size_t frames) override {
    const size_t channels = m_layout.channels;
    size_t done = 0;
    while (done < frames && (m_at < m_waiting || NextPacket())) {
      const size_t part = std::min(frames - done, m_waiting - m_at);
      std::copy_n(m_samples + m_at * channels, part * channels, samples + done * channels);
      m_at += part;
      done += part;
    }
    m_read += done;
    m_ended = done < frames;
    return done;
  }

  bool Failed() const override { return m_ended && m_read < Frames(); }

  bool Rewind() override {
    m_packets = std::make_unique<AdtsReader>(m_file.get());
    m_decoder = OpenDecoder(m_layout.channels);
    m_at = m_waiting = 0;
    m_read = 0;
    m_ended = false;
    return m_decoder != nullptr;
  }

 private:
  bool NextPacket() {
    const unsigned char* packet = nullptr;
    const size_t bytes = m_decoder != nullptr ? m_packets->Next(&packet) : 0;
    if (bytes == 0) return false;
    Layout layout;
    const size_t count = m_layout.frames * m_layout.channels;
    // A packet that is damaged, or of another format, is as long as the others and silent.
    if (!Decode(m_decoder.get(), packet, bytes, &layout) || layout != m_layout) {
      std::fill_n(m_samples, count, short{0});
    }
    m_at = 0;
    m_waiting = m_layout.frames;
    return true;
  }

  bool Decode(HANDLE_AACDECODER decoder, const unsigned char* packet, size_t bytes,
              Layout* layout) {
    auto* data = const_cast<UCHAR*>(packet);
    const auto size = static_cast<UINT>(bytes);
    UINT left = size;
    if (aacDecoder_Fill(decoder, &data, &size, &left) != AAC_DEC_OK) return false;
    if (aacDecoder_DecodeFrame(decoder, m_samples, kMaxSamples, 0) != AAC_DEC_OK) return false;
    const CStreamInfo* info = aacDecoder_GetStreamInfo(decoder);
    if (info->sampleRate < 1 || info->numChannels < 1 || info->frameSize < 1) return false;
    layout->rate = Unsigned(info->sampleRate);
    layout->channels = Unsigned(info->numChannels);
    layout->frames = Size(info->frameSize);
    return true;
  }

  File m_file;
  Layout m_layout;
  // Packets in the file.
  size_t m_count = 0;
  std::unique_ptr<AdtsReader> m_packets;
  Decoder m_decoder;
  // Frames that were read since the start, and whether there are no more.
  size_t m_read = 0;
  bool m_ended = false;
  // The frames of one packet, m_waiting of them; m_at is the next one to be read.
  size_t m_at = 0;
  size_t m_waiting = 0;
  INT_PCM m_samples[kMaxSamples];
};

static_assert(std::is_same_v<INT_PCM, short>);

}  // namespace

FileFault OpenAacFile(File file, std::unique_ptr<FileSource>* source) {
  auto opened = std::make_unique<AacFile>(std::move(file));
  if (!opened->Examine()) return FileFault::kDamaged;
  *source = std::move(opened);
  return FileFault::kNone;
}

}  // namespace desktop
