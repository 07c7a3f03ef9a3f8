#include "desktop/files/adts_writer.h"

// AAC files: packets of LC with ADTS headers (ISO/IEC 14496-3, 1.A.2).

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/packet_codec.h"
#include "desktop/common/counts.h"
#include "desktop/files/adts_reader.h"

namespace desktop {

namespace {

// By how many packets the encoder alone is late.
constexpr int kLatePackets = 2;

// Returns null when this build has no encoder for that.
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
      : m_file(std::move(file)),
        m_format(format),
        m_encoder(std::move(encoder)),
        m_packetSamples(Offset(m_encoder->blockSamples())) {
    m_coded.reserve(1 << 16);
  }

  DeviceFormat Format() const override { return m_format; }

  void Add(const short* samples, size_t frames) override {
    m_samples.insert(m_samples.end(), samples, samples + frames * m_format.channels);
    auto next = m_samples.cbegin();
    for (; m_samples.cend() - next >= m_packetSamples; next += m_packetSamples) Encode(&*next);
    m_samples.erase(m_samples.cbegin(), next);
  }

  bool Flush() override {
    const bool good = AppendWhole(m_file.get(), m_coded.data(), m_coded.size());
    m_coded.clear();
    return good;
  }

  bool Finish() override {
    if (m_packets == 0 && m_samples.empty()) return Flush();
    if (!m_samples.empty()) {
      m_samples.resize(Size(m_packetSamples));
      Encode(m_samples.data());
    }
    m_samples.assign(Size(m_packetSamples), 0);
    for (int i = 0; i < kLatePackets; ++i) Encode(m_samples.data());
    m_samples.clear();
    return Flush();
  }

 private:
  // The first packet, which is of the time before the first sample, is left out.
  void Encode(const short* samples) {
    unsigned char packet[kMaxPacketBytes];
    const size_t bytes = m_encoder->Encode(samples, packet);
    if (m_packets++ > 0) m_coded.insert(m_coded.end(), packet, packet + bytes);
  }

  const File m_file;
  const DeviceFormat m_format;
  const std::unique_ptr<PacketEncoder> m_encoder;
  // Samples, of all channels, that one packet takes.
  const ptrdiff_t m_packetSamples;
  // Between calls, fewer samples than a packet takes.
  std::vector<short> m_samples;
  std::vector<unsigned char> m_coded;
  uint64_t m_packets = 0;
};

// Returns the rate and channels of a packet of LC; no valid format for others.
DeviceFormat FormatOf(const unsigned char* header) {
  constexpr uint32_t kRates[16] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                   22050, 16000, 12000, 11025, 8000,  7350};
  const bool isLc = header[2] >> 6 == 1;
  const uint32_t channels = (header[2] & 1U) << 2 | header[3] >> 6;
  return {isLc ? kRates[header[2] >> 2 & 15] : 0, channels};
}

// Cuts off what follows the last whole packet, and tells the format of the first one.
bool FindEnd(FILE* file, DeviceFormat* format) {
  AdtsReader packets(file);
  const unsigned char* packet = nullptr;
  if (packets.Next(&packet) == 0) return false;
  *format = FormatOf(packet);
  while (packets.Next(&packet) > 0) {
  }
  return format->IsValid() && ftruncate(fileno(file), static_cast<off_t>(packets.End())) == 0;
}

}  // namespace

std::unique_ptr<FileWriter> OpenAdtsWriter(const char* name, DeviceFormat format, bool append) {
  // No file is made where there is no encoder.
  auto encoder = CreateEncoder(format);
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
