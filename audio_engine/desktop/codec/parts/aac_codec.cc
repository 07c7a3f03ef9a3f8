#include "desktop/codec/parts/aac_codec.h"

#include <fdk-aac/aacdecoder_lib.h>
#include <fdk-aac/aacenc_lib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"

namespace desktop {

namespace {

struct CloseEncoder {
  void operator()(AACENCODER* encoder) const { aacEncClose(&encoder); }
};
struct CloseDecoder {
  void operator()(HANDLE_AACDECODER decoder) const { aacDecoder_Close(decoder); }
};
using Encoder = std::unique_ptr<AACENCODER, CloseEncoder>;
using Decoder = std::unique_ptr<std::remove_pointer_t<HANDLE_AACDECODER>, CloseDecoder>;

// The longest access unit that the standard allows two channels.
constexpr int kMaxUnitBytes = 2 * 6144 / 8;

bool Set(AACENCODER* encoder, AACENC_PARAM parameter, int value) {
  return aacEncoder_SetParam(encoder, parameter, Unsigned(value)) == AACENC_OK;
}

// Makes what was set take effect.
bool Configure(AACENCODER* encoder) {
  return aacEncEncode(encoder, nullptr, nullptr, nullptr, nullptr) == AACENC_OK;
}

AUDIO_OBJECT_TYPE ObjectType(Coder coder) {
  switch (coder) {
    case Coder::kAacHe:
      return AOT_SBR;
    case Coder::kAacHeV2:
      return AOT_PS;
    case Coder::kAacEld:
    case Coder::kAacEldSbr:
      return AOT_ER_AAC_ELD;
    default:
      return AOT_AAC_LC;
  }
}

// Returns whether the library takes the rate and the channels: at other rates it divides by zero.
bool IsSupported(const CodecSetup& setup) {
  constexpr int kRates[] = {8000,  11025, 12000, 16000, 22050, 24000,
                            32000, 44100, 48000, 64000, 88200, 96000};
  return setup.channels >= 1 && setup.channels <= 2 &&
         std::find(std::begin(kRates), std::end(kRates), setup.rate) != std::end(kRates);
}

bool SetVariant(AACENCODER* encoder, const CodecSetup& setup, bool sbr) {
  switch (setup.variant->coder) {
    case Coder::kAacLc: {
      // No access unit may outgrow its packet: two channels could reach 1536 bytes.
      constexpr int kMaxBits = 8 * kMaxEncodedPayloadBytes;
      const int peak = kMaxBits * setup.rate / 1024;
      return setup.channels == 1 || Set(encoder, AACENC_PEAK_BITRATE, peak);
    }
    case Coder::kAacEld:
    case Coder::kAacEldSbr:
      // At the dual rate, blocks of 512 frames of the core coder last 1024.
      return Set(encoder, AACENC_GRANULE_LENGTH, 512) &&
             Set(encoder, AACENC_SBR_MODE, sbr ? 1 : 0) &&
             (!sbr || Set(encoder, AACENC_SBR_RATIO, 2));
    default:
      return true;
  }
}

Encoder OpenWith(const CodecSetup& setup, bool sbr) {
  if (!IsSupported(setup)) return nullptr;
  HANDLE_AACENCODER handle = nullptr;
  if (aacEncOpen(&handle, 0, Unsigned(setup.channels)) != AACENC_OK) return nullptr;
  Encoder encoder(handle);
  // Without the afterburner LC loses 5 to 8 dB.
  const bool ready = Set(handle, AACENC_AOT, ObjectType(setup.variant->coder)) &&
                     Set(handle, AACENC_SAMPLERATE, setup.rate) &&
                     Set(handle, AACENC_CHANNELMODE, setup.channels == 2 ? MODE_2 : MODE_1) &&
                     Set(handle, AACENC_BITRATE, setup.variant->bitRate) &&
                     Set(handle, AACENC_TRANSMUX, TT_MP4_RAW) &&
                     Set(handle, AACENC_AFTERBURNER, 1) && SetVariant(handle, setup, sbr) &&
                     Configure(handle);
  return ready ? std::move(encoder) : nullptr;
}

// Returns whether a payload of the mean length fits its packet; at low rates it may not.
bool FitsPacket(int64_t bitRate, int64_t blockFrames, int rate) {
  constexpr int64_t kMaxBytes = kMaxEncodedPayloadBytes;
  return bitRate / 8 * blockFrames <= kMaxBytes * rate;
}

Encoder Open(const CodecSetup& setup, AACENC_InfoStruct* info) {
  Encoder encoder = OpenWith(setup, setup.variant->coder == Coder::kAacEldSbr);
  if (encoder == nullptr && setup.variant->coder == Coder::kAacEldSbr) {
    encoder = OpenWith(setup, false);
  }
  const bool usable = encoder != nullptr && aacEncInfo(encoder.get(), info) == AACENC_OK &&
                      FitsPacket(setup.variant->bitRate, info->frameLength, setup.rate);
  return usable ? std::move(encoder) : nullptr;
}

class AacEncoder : public PayloadEncoder {
 public:
  AacEncoder(Encoder encoder, const CodecSetup& setup, int blockFrames)
      : m_encoder(std::move(encoder)),
        m_rate(setup.rate),
        m_channels(setup.channels),
        m_blockFrames(blockFrames) {}

  size_t blockFrames() const override { return Size(m_blockFrames); }

  size_t Encode(const short* block, unsigned char* payload) override {
    void* in = const_cast<short*>(block);
    int inKind = IN_AUDIO_DATA;
    int inElement = sizeof(short);
    int inBytes = m_blockFrames * m_channels * inElement;
    const AACENC_BufDesc source = {1, &in, &inKind, &inBytes, &inElement};
    void* out = m_unit;
    int outKind = OUT_BITSTREAM_DATA;
    int outElement = 1;
    int outBytes = kMaxUnitBytes;
    const AACENC_BufDesc target = {1, &out, &outKind, &outBytes, &outElement};
    const AACENC_InArgs given = {m_blockFrames * m_channels, 0};
    AACENC_OutArgs made = {};
    if (aacEncEncode(m_encoder.get(), &source, &target, &given, &made) != AACENC_OK) return 0;
    const size_t bytes = Size(made.numOutBytes);
    if (bytes > kMaxEncodedPayloadBytes) return 0;
    memcpy(payload, m_unit, bytes);
    return bytes;
  }

  bool SetBitRate(int bitRate) override {
    const UINT before = BitRate();
    // The library takes any number and limits it to what its payloads could hold.
    if (bitRate > 0 && Set(m_encoder.get(), AACENC_BITRATE, bitRate) &&
        Configure(m_encoder.get()) && FitsPacket(BitRate(), m_blockFrames, m_rate)) {
      return true;
    }
    Set(m_encoder.get(), AACENC_BITRATE, Count(before));
    Configure(m_encoder.get());
    return false;
  }

  bool SetComplexity(int complexity) override {
    return Set(m_encoder.get(), AACENC_AFTERBURNER, complexity < 5 ? 0 : 1) &&
           Configure(m_encoder.get());
  }

 private:
  // Returns the bit rate that was set, or what the library has made of it.
  UINT BitRate() const { return aacEncoder_GetParam(m_encoder.get(), AACENC_BITRATE); }

  Encoder m_encoder;
  const int m_rate;
  const int m_channels;
  const int m_blockFrames;
  unsigned char m_unit[kMaxUnitBytes];
};

class AacDecoder : public PayloadDecoder {
 public:
  AacDecoder(Decoder decoder, const CodecSetup& setup, int blockFrames)
      : m_decoder(std::move(decoder)),
        m_rate(setup.rate),
        m_channels(setup.channels),
        m_blockFrames(blockFrames) {}

  size_t blockFrames() const override { return Size(m_blockFrames); }

  bool Decode(const unsigned char* payload, size_t bytes, short* block) override {
    auto* data = const_cast<UCHAR*>(payload);
    const UINT size = Unsigned(Count(bytes));
    UINT left = size;
    return aacDecoder_Fill(m_decoder.get(), &data, &size, &left) == AAC_DEC_OK && Take(block, 0);
  }

  bool Conceal(short* block) override { return Take(block, AACDEC_CONCEAL); }

 private:
  // The library sees to it that no damage changes the length or the channels of a block only in
  // part; a block that differs all the same is none of this stream.
  bool Take(short* block, UINT flags) {
    if (aacDecoder_DecodeFrame(m_decoder.get(), m_samples, kMaxBlockSamples, flags) != AAC_DEC_OK) {
      return false;
    }
    const CStreamInfo* info = aacDecoder_GetStreamInfo(m_decoder.get());
    if (info->sampleRate != m_rate || info->numChannels != m_channels ||
        info->frameSize != m_blockFrames) {
      return false;
    }
    memcpy(block, m_samples, sizeof(short) * Size(m_blockFrames * m_channels));
    return true;
  }

  Decoder m_decoder;
  const int m_rate;
  const int m_channels;
  const int m_blockFrames;
  INT_PCM m_samples[kMaxBlockSamples];
};

static_assert(sizeof(INT_PCM) == sizeof(short));

}  // namespace

std::unique_ptr<PayloadEncoder> CreateAacEncoder(const CodecSetup& setup) {
  AACENC_InfoStruct info = {};
  Encoder encoder = Open(setup, &info);
  if (encoder == nullptr) return nullptr;
  return std::make_unique<AacEncoder>(std::move(encoder), setup, Count(info.frameLength));
}

std::unique_ptr<PayloadDecoder> CreateAacDecoder(const CodecSetup& setup) {
  // Bare access units do not say how they are coded, but an encoder of the same setup does.
  AACENC_InfoStruct info = {};
  const Encoder encoder = Open(setup, &info);
  if (encoder == nullptr) return nullptr;
  UCHAR* config = info.confBuf;
  const UINT configBytes = info.confSize;

  Decoder decoder(aacDecoder_Open(TT_MP4_RAW, 1));
  HANDLE_AACDECODER handle = decoder.get();
  const bool ready =
      handle != nullptr && aacDecoder_ConfigRaw(handle, &config, &configBytes) == AAC_DEC_OK &&
      aacDecoder_SetParam(handle, AAC_PCM_LIMITER_ENABLE, 0) == AAC_DEC_OK &&
      aacDecoder_SetParam(handle, AAC_PCM_MIN_OUTPUT_CHANNELS, setup.channels) == AAC_DEC_OK &&
      aacDecoder_SetParam(handle, AAC_PCM_MAX_OUTPUT_CHANNELS, setup.channels) == AAC_DEC_OK;
  if (!ready) return nullptr;
  return std::make_unique<AacDecoder>(std::move(decoder), setup, Count(info.frameLength));
}

}  // namespace desktop
