#include "desktop/files/adts_writer.h"

// AAC files: LC frames with ADTS headers.

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/packet_codec.h"
#include "desktop/files/adts_reader.h"

namespace desktop {

namespace {

// By how many frames of the codec the encoder alone is late.
constexpr int kLateFrames = 2;

// Null when this build has no encoder for that.
std::unique_ptr<PacketEncoder> CreateEncoder(DeviceFormat format) {
  const auto rate = static_cast<int>(format.rate);
  const auto channels = static_cast<int>(format.channels);
  const CodecVariant variant = {-1, kAudioCodecUnknown,  Coder::kAacLc,
                                0,  2 * rate * channels, Framing::kAdts};
  return PacketEncoder::Create({&variant, rate, channels});
}

class AdtsWriter : public FileWriter {
 public:
  AdtsWriter(File file, DeviceFormat format, std::unique_ptr<PacketEncoder> encoder)
      : m_file(std::move(file)), m_format(format), m_encoder(std::move(encoder)) {
    m_coded.reserve(1 << 16);
  }

  DeviceFormat Format() const override { return m_format; }

  void Add(const short* samples, size_t frames) override {
    m_samples.insert(m_samples.end(), samples, samples + frames * m_format.channels);
    const size_t frame = m_encoder->blockSamples();
    size_t at = 0;
    for (; at + frame <= m_samples.size(); at += frame) Encode(&m_samples[at]);
    m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<ptrdiff_t>(at));
  }

  bool Flush() override {
    const bool good = AppendWhole(m_file.get(), m_coded.data(), m_coded.size());
    m_coded.clear();
    return good;
  }

  bool Finish() override {
    if (m_frames == 0 && m_samples.empty()) return Flush();
    const size_t frame = m_encoder->blockSamples();
    if (!m_samples.empty()) {
      m_samples.resize(frame);
      Encode(m_samples.data());
    }
    m_samples.assign(frame, 0);
    for (int i = 0; i < kLateFrames; ++i) Encode(m_samples.data());
    m_samples.clear();
    return Flush();
  }

 private:
  // The first packet is of the time before the first sample and left out.
  void Encode(const short* frame) {
    unsigned char packet[kMaxPacketBytes];
    const size_t bytes = m_encoder->Encode(frame, packet);
    if (m_frames++ > 0) m_coded.insert(m_coded.end(), packet, packet + bytes);
  }

  const File m_file;
  const DeviceFormat m_format;
  const std::unique_ptr<PacketEncoder> m_encoder;
  std::vector<short> m_samples;  // Less than a frame between calls.
  std::vector<unsigned char> m_coded;
  uint64_t m_frames = 0;
};

// The rate and channels of an LC frame; no valid format for others.
DeviceFormat FormatOf(const unsigned char* header) {
  constexpr uint32_t kRates[16] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                   22050, 16000, 12000, 11025, 8000,  7350};
  const bool isLc = header[2] >> 6 == 1;
  const uint32_t channels = (header[2] & 1U) << 2 | header[3] >> 6;
  return {isLc ? kRates[header[2] >> 2 & 15] : 0, channels};
}

// Cuts off what follows the last whole frame, and tells the format of the frames.
bool FindEnd(FILE* file, DeviceFormat* format) {
  AdtsReader frames(file);
  const unsigned char* frame = nullptr;
  if (frames.Next(&frame) == 0) return false;
  *format = FormatOf(frame);
  while (frames.Next(&frame) > 0) {
  }
  return format->IsValid() && ftruncate(fileno(file), static_cast<off_t>(frames.End())) == 0;
}

}  // namespace

std::unique_ptr<FileWriter> OpenAdtsWriter(const char* name, DeviceFormat format, bool append) {
  auto encoder = CreateEncoder(format);  // Before there is a file.
  if (encoder == nullptr) return nullptr;
  File file = OpenForWriting(name, append);
  if (file == nullptr || fseeko(file.get(), 0, SEEK_END) != 0) return nullptr;
  if (ftello(file.get()) > 0) {
    if (!FindEnd(file.get(), &format)) return nullptr;
    encoder = CreateEncoder(format);
    if (encoder == nullptr) return nullptr;
  }
  return std::make_unique<AdtsWriter>(std::move(file), format, std::move(encoder));
}

}  // namespace desktop
