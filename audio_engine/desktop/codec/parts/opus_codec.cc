#include "desktop/codec/parts/opus_codec.h"

#include <opus.h>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"

namespace desktop {

namespace {

struct Destroy {
  void operator()(OpusEncoder* encoder) const { opus_encoder_destroy(encoder); }
  void operator()(OpusDecoder* decoder) const { opus_decoder_destroy(decoder); }
};
using Encoder = std::unique_ptr<OpusEncoder, Destroy>;
using Decoder = std::unique_ptr<OpusDecoder, Destroy>;

class OpusPayloadEncoder : public PayloadEncoder {
 public:
  OpusPayloadEncoder(Encoder encoder, int rate)
      : m_encoder(std::move(encoder)), m_blockFrames(rate / 50) {}

  size_t blockFrames() const override { return Size(m_blockFrames); }

  size_t Encode(const short* block, unsigned char* payload) override {
    // An error is a negative number.
    return Size(
        opus_encode(m_encoder.get(), block, m_blockFrames, payload, kMaxEncodedPayloadBytes));
  }

  // Negative numbers have meanings of their own in the library.
  bool SetBitRate(int bitRate) override {
    return bitRate > 0 && opus_encoder_ctl(m_encoder.get(), OPUS_SET_BITRATE(bitRate)) == OPUS_OK;
  }

  bool SetComplexity(int complexity) override {
    return opus_encoder_ctl(m_encoder.get(), OPUS_SET_COMPLEXITY(complexity)) == OPUS_OK;
  }

 private:
  Encoder m_encoder;
  const int m_blockFrames;
};

class OpusPayloadDecoder : public PayloadDecoder {
 public:
  OpusPayloadDecoder(Decoder decoder, int rate)
      : m_decoder(std::move(decoder)), m_rate(rate), m_blockFrames(rate / 50) {}

  size_t blockFrames() const override { return Size(m_blockFrames); }

  bool Decode(const unsigned char* payload, size_t bytes, short* block) override {
    // A payload of another length would leave a part of the block as it was.
    const int length = Count(bytes);
    if (length < 1 || opus_packet_get_nb_samples(payload, length, m_rate) != m_blockFrames) {
      return false;
    }
    return opus_decode(m_decoder.get(), payload, length, block, m_blockFrames, 0) == m_blockFrames;
  }

  bool Conceal(short* block) override {
    return opus_decode(m_decoder.get(), nullptr, 0, block, m_blockFrames, 0) == m_blockFrames;
  }

 private:
  Decoder m_decoder;
  const int m_rate;
  const int m_blockFrames;
};

}  // namespace

std::unique_ptr<PayloadEncoder> CreateOpusEncoder(const CodecSetup& setup) {
  // The application for speech has a high-pass, which costs up to 10 dB of waveform accuracy.
  int error = OPUS_OK;
  Encoder encoder(opus_encoder_create(setup.rate, setup.channels, OPUS_APPLICATION_AUDIO, &error));
  if (encoder == nullptr) return nullptr;

  const auto set = [&](int request, int value) {
    return opus_encoder_ctl(encoder.get(), request, value) == OPUS_OK;
  };
  bool ready = set(OPUS_SET_BITRATE_REQUEST, setup.variant->bitRate);
  if (setup.variant->coder == Coder::kSilk) {
    // These two together leave only Silk.
    ready = ready && set(OPUS_SET_SIGNAL_REQUEST, OPUS_SIGNAL_VOICE) &&
            set(OPUS_SET_MAX_BANDWIDTH_REQUEST, OPUS_BANDWIDTH_WIDEBAND);
  } else if (setup.rate == 48000) {
    // Without Silk speech, too, is 3 dB better at these rates, and the lag of all bands is the
    // same: Silk's part of a hybrid payload would be 2 frames early.
    ready = ready && set(OPUS_SET_SIGNAL_REQUEST, OPUS_SIGNAL_MUSIC);
  }
  if (!ready) return nullptr;
  return std::make_unique<OpusPayloadEncoder>(std::move(encoder), setup.rate);
}

std::unique_ptr<PayloadDecoder> CreateOpusDecoder(const CodecSetup& setup) {
  int error = OPUS_OK;
  Decoder decoder(opus_decoder_create(setup.rate, setup.channels, &error));
  if (decoder == nullptr) return nullptr;
  return std::make_unique<OpusPayloadDecoder>(std::move(decoder), setup.rate);
}

// The encoder looks 6.5 ms ahead; at 24 kHz, Silk's change of rate takes one sample back.
int OpusLag(const CodecSetup& setup) {
  const int lookAhead = setup.rate * 13 / 2000;
  return setup.variant->coder == Coder::kSilk && setup.rate == 24000 ? lookAhead - 1 : lookAhead;
}

}  // namespace desktop
