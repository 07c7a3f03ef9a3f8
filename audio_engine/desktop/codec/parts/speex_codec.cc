#include "desktop/codec/parts/speex_codec.h"

#include <speex/speex.h>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {

namespace {

constexpr int kFrame = 160;
constexpr int kMaxBytes = 64;  // The best mode has 62.

// The modes of narrow-band Speex, RFC 5574, section 3.1: what a packet has to be.
struct Mode {
  int number;
  int bytes;
};

constexpr Mode ModeOfQuality(int quality) {
  switch (quality) {
    case 8:
      return {5, 38};
    case 4:
      return {3, 20};
    default:
      return {2, 15};
  }
}

struct DestroyEncoder {
  void operator()(void* state) const { speex_encoder_destroy(state); }
};
struct DestroyDecoder {
  void operator()(void* state) const { speex_decoder_destroy(state); }
};

class Bits {
 public:
  Bits() : m_bits() { speex_bits_init(&m_bits); }
  ~Bits() { speex_bits_destroy(&m_bits); }
  Bits(const Bits&) = delete;
  Bits& operator=(const Bits&) = delete;

  SpeexBits* get() { return &m_bits; }

 private:
  SpeexBits m_bits;
};

class SpeexEncoder : public PacketEncoder {
 public:
  explicit SpeexEncoder(int quality) : m_state(speex_encoder_init(&speex_nb_mode)) {
    if (m_state != nullptr) speex_encoder_ctl(m_state.get(), SPEEX_SET_QUALITY, &quality);
  }

  bool IsOpen() const { return m_state != nullptr; }
  int frameSamples() const override { return kFrame; }

  int Encode(const short* frame, unsigned char* packet) override {
    short copy[kFrame];  // The library writes into its input.
    for (int i = 0; i < kFrame; ++i) copy[i] = frame[i];
    speex_bits_reset(m_bits.get());
    speex_encode_int(m_state.get(), copy, m_bits.get());
    return speex_bits_write(m_bits.get(), reinterpret_cast<char*>(packet), kMaxBytes);
  }

  // The quality fixes the length of the packets, which a reader of the file counts on.
  bool SetBitRate(int /*bitRate*/) override { return false; }

  bool SetComplexity(int complexity) override {
    speex_encoder_ctl(m_state.get(), SPEEX_SET_COMPLEXITY, &complexity);
    return true;
  }

 private:
  std::unique_ptr<void, DestroyEncoder> m_state;
  Bits m_bits;
};

class SpeexDecoder : public PacketDecoder {
 public:
  explicit SpeexDecoder(int quality)
      : m_mode(ModeOfQuality(quality)), m_state(speex_decoder_init(&speex_nb_mode)) {}

  bool IsOpen() const { return m_state != nullptr; }
  int frameSamples() const override { return kFrame; }

  bool Decode(const unsigned char* packet, int bytes, short* frame) override {
    // A narrow-band frame starts with a 0 and the four bits of its mode. Anything else would make
    // the library print on the error stream.
    if (bytes != m_mode.bytes || packet[0] >> 3 != m_mode.number) return false;
    speex_bits_read_from(m_bits.get(), reinterpret_cast<const char*>(packet), bytes);
    return speex_decode_int(m_state.get(), m_bits.get(), frame) == 0;
  }

  bool Conceal(short* frame) override {
    return speex_decode_int(m_state.get(), nullptr, frame) == 0;
  }

 private:
  const Mode m_mode;
  std::unique_ptr<void, DestroyDecoder> m_state;
  Bits m_bits;
};

bool IsNarrowBand(const CodecSetup& setup) { return setup.rate == 8000 && setup.channels == 1; }

}  // namespace

std::unique_ptr<PacketEncoder> CreateSpeexEncoder(const CodecSetup& setup) {
  if (!IsNarrowBand(setup)) return nullptr;
  auto encoder = std::make_unique<SpeexEncoder>(setup.variant->quality);
  if (!encoder->IsOpen()) return nullptr;
  return encoder;
}

std::unique_ptr<PacketDecoder> CreateSpeexDecoder(const CodecSetup& setup) {
  if (!IsNarrowBand(setup)) return nullptr;
  auto decoder = std::make_unique<SpeexDecoder>(setup.variant->quality);
  if (!decoder->IsOpen()) return nullptr;
  return decoder;
}

}  // namespace desktop
