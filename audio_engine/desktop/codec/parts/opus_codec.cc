#include "desktop/codec/parts/opus_codec.h"

#include <opus.h>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {

namespace {

struct Destroy {
  void operator()(OpusEncoder* encoder) const { opus_encoder_destroy(encoder); }
  void operator()(OpusDecoder* decoder) const { opus_decoder_destroy(decoder); }
};
using Encoder = std::unique_ptr<OpusEncoder, Destroy>;
using Decoder = std::unique_ptr<OpusDecoder, Destroy>;

class OpusPacketEncoder : public PacketEncoder {
 public:
  OpusPacketEncoder(Encoder encoder, int frame) : m_encoder(std::move(encoder)), m_frame(frame) {}

  int frameSamples() const override { return m_frame; }

  int Encode(const short* frame, unsigned char* packet) override {
    const int bytes = opus_encode(m_encoder.get(), frame, m_frame, packet, kMaxEncodedBytes);
    return bytes > 0 ? bytes : 0;
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
  const int m_frame;
};

class OpusPacketDecoder : public PacketDecoder {
 public:
  OpusPacketDecoder(Decoder decoder, int rate)
      : m_decoder(std::move(decoder)), m_rate(rate), m_frame(rate / 50) {}

  int frameSamples() const override { return m_frame; }

  bool Decode(const unsigned char* packet, int bytes, short* frame) override {
    // A packet of another length would leave a part of the frame as it was.
    if (bytes < 1 || opus_packet_get_nb_samples(packet, bytes, m_rate) != m_frame) return false;
    return opus_decode(m_decoder.get(), packet, bytes, frame, m_frame, 0) == m_frame;
  }

  bool Conceal(short* frame) override {
    return opus_decode(m_decoder.get(), nullptr, 0, frame, m_frame, 0) == m_frame;
  }

 private:
  Decoder m_decoder;
  const int m_rate;
  const int m_frame;
};

}  // namespace

std::unique_ptr<PacketEncoder> CreateOpusEncoder(const CodecSetup& setup) {
  // The application for speech has a high-pass, which costs up to 10 dB of waveform accuracy.
  int error = OPUS_OK;
  Encoder encoder(opus_encoder_create(setup.rate, setup.channels, OPUS_APPLICATION_AUDIO, &error));
  if (encoder == nullptr) return nullptr;

  const auto set = [&](int request, int value) {
    return opus_encoder_ctl(encoder.get(), request, value) == OPUS_OK;
  };
  bool ready = set(OPUS_SET_BITRATE_REQUEST, setup.variant->bitRate);
  if (setup.variant->coder == Coder::kSilk) {
    // Together these two leave Silk frames only.
    ready = ready && set(OPUS_SET_SIGNAL_REQUEST, OPUS_SIGNAL_VOICE) &&
            set(OPUS_SET_MAX_BANDWIDTH_REQUEST, OPUS_BANDWIDTH_WIDEBAND);
  } else if (setup.rate == 48000) {
    // Frames without Silk, for speech as well: 3 dB better at these rates, and the lag of all
    // bands is the same. Silk's part of a hybrid frame is 2 samples early.
    ready = ready && set(OPUS_SET_SIGNAL_REQUEST, OPUS_SIGNAL_MUSIC);
  }
  if (!ready) return nullptr;
  return std::make_unique<OpusPacketEncoder>(std::move(encoder), setup.rate / 50);
}

std::unique_ptr<PacketDecoder> CreateOpusDecoder(const CodecSetup& setup) {
  int error = OPUS_OK;
  Decoder decoder(opus_decoder_create(setup.rate, setup.channels, &error));
  if (decoder == nullptr) return nullptr;
  return std::make_unique<OpusPacketDecoder>(std::move(decoder), setup.rate);
}

// The encoder looks 6.5 ms ahead; at 24 kHz, Silk's change of rate takes one sample back.
int OpusLag(const CodecSetup& setup) {
  const int lookAhead = setup.rate * 13 / 2000;
  return setup.variant->coder == Coder::kSilk && setup.rate == 24000 ? lookAhead - 1 : lookAhead;
}

}  // namespace desktop
