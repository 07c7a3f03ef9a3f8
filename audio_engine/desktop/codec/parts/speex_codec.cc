#include "desktop/codec/parts/speex_codec.h"

#include <speex/speex.h>

#include <algorithm>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr size_t kBlockFrames = 160;

// The room for a payload: the best mode has 62 bytes.
constexpr int kMaxBytes = 64;

// The modes of narrow-band Speex, RFC 5574, section 3.1: what a payload has to be.
struct Mode {
  int number;
  size_t bytes;
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

class SpeexEncoder : public PayloadEncoder {
 public:
  explicit SpeexEncoder(int quality) : m_state(speex_encoder_init(&speex_nb_mode)) {
    if (m_state != nullptr) speex_encoder_ctl(m_state.get(), SPEEX_SET_QUALITY, &quality);
  }

  bool IsOpen() const { return m_state != nullptr; }
  size_t blockFrames() const override { return kBlockFrames; }

  size_t Encode(const short* block, unsigned char* payload) override {
    short copy[kBlockFrames];  // The library writes into its input.
    std::copy_n(block, kBlockFrames, copy);
    speex_bits_reset(m_bits.get());
    speex_encode_int(m_state.get(), copy, m_bits.get());
    return Size(speex_bits_write(m_bits.get(), reinterpret_cast<char*>(payload), kMaxBytes));
  }

  // The quality fixes the length of the payloads, which a reader of the file counts on.
  bool SetBitRate(int /*bitRate*/) override { return false; }

  bool SetComplexity(int complexity) override {
    speex_encoder_ctl(m_state.get(), SPEEX_SET_COMPLEXITY, &complexity);
    return true;
  }

 private:
  std::unique_ptr<void, DestroyEncoder> m_state;
  Bits m_bits;
};

class SpeexDecoder : public PayloadDecoder {
 public:
  explicit SpeexDecoder(int quality)
      : m_mode(ModeOfQuality(quality)), m_state(speex_decoder_init(&speex_nb_mode)) {}

  bool IsOpen() const { return m_state != nullptr; }
  size_t blockFrames() const override { return kBlockFrames; }

  bool Decode(const unsigned char* payload, size_t bytes, short* block) override {
    // A narrow-band payload starts with a 0 and the four bits of its mode. Anything else would make
    // the library print on the error stream.
    if (bytes != m_mode.bytes || payload[0] >> 3 != m_mode.number) return false;
    speex_bits_read_from(m_bits.get(), reinterpret_cast<const char*>(payload), Count(bytes));
    return speex_decode_int(m_state.get(), m_bits.get(), block) == 0;
  }

  bool Conceal(short* block) override {
    return speex_decode_int(m_state.get(), nullptr, block) == 0;
  }

 private:
  const Mode m_mode;
  std::unique_ptr<void, DestroyDecoder> m_state;
  Bits m_bits;
};

bool IsNarrowBand(const CodecSetup& setup) { return setup.rate == 8000 && setup.channels == 1; }

}  // namespace

std::unique_ptr<PayloadEncoder> CreateSpeexEncoder(const CodecSetup& setup) {
  if (!IsNarrowBand(setup)) return nullptr;
  auto encoder = std::make_unique<SpeexEncoder>(setup.variant->quality);
  if (!encoder->IsOpen()) return nullptr;
  return encoder;
}

std::unique_ptr<PayloadDecoder> CreateSpeexDecoder(const CodecSetup& setup) {
  if (!IsNarrowBand(setup)) return nullptr;
  auto decoder = std::make_unique<SpeexDecoder>(setup.variant->quality);
  if (!decoder->IsOpen()) return nullptr;
  return decoder;
}

}  // namespace desktop
