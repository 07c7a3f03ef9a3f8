#include "desktop/codec/parts/packet_codec.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/create_payload_codec.h"
#include "engine_api/codec/audio_processor.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/codec/stream_to_aac.h"
#include "support/captured_stderr.h"

namespace desktop {
namespace {

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::Le;

// White noise, which no codec makes smaller.
Samples Noise(size_t count) {
  Samples samples;
  unsigned state = 1;
  for (size_t i = 0; i < count; ++i) {
    state = state * 1664525 + 1013904223;
    samples.push_back(static_cast<short>(state >> 16));
  }
  return samples;
}

// The lengths of the packets that a codec at `bitRate` makes of noise.
std::vector<size_t> PacketLengths(Coder coder, int rate, int bitRate) {
  const CodecVariant variant = {51, kAudioCodecUnknown, coder, 0, bitRate, Framing::kTwoByteHeader};
  const auto encoder = PacketEncoder::Create({&variant, rate, 2});
  std::vector<size_t> lengths;
  if (encoder == nullptr) return lengths;
  const Samples noise = Noise(encoder->blockSamples() * 40);
  for (size_t at = 0; at < noise.size(); at += encoder->blockSamples()) {
    unsigned char packet[kMaxPacketBytes];
    lengths.push_back(encoder->Encode(&noise[at], packet));
  }
  return lengths;
}

// A packet of id 51 with the longest payload that a 2-byte header can tell: Opus filled up as RFC
// 6716, section 3.2.5, has it.
std::string LongestPacket() {
  const std::string packet = Process(*OpenCodec(51, kAudioLibraryEncoder), std::string(1920, '\0'));
  const std::string coded = packet.substr(4);
  std::string payload = {static_cast<char>(packet[3] | 3), '\x41'};
  size_t padding = kMaxPayloadBytes - payload.size() - coded.size();
  for (; padding > 255; padding -= 255) payload += '\xff';
  payload += static_cast<char>(padding - 1);
  payload += coded;
  payload.resize(kMaxPayloadBytes, '\0');
  return "\xff\xff\x33" + payload;
}

}  // namespace

// What a caller with room for 1024 bytes counts on.
TEST(PacketEncoder, GivesAtMost1024BytesWithA2ByteHeader) {
  EXPECT_THAT(PacketLengths(Coder::kOpus, 48000, 510000), Each(1024U));
  if (AUDIO_ENGINE_HAS_AAC == 0) return;
  const CapturedStderr log;
  std::vector<size_t> lengths = PacketLengths(Coder::kAacLc, 44100, 351760);
  ASSERT_EQ(lengths.size(), 40U);
  std::sort(lengths.begin(), lengths.end());
  EXPECT_GT(lengths.front(), 1000U) << "none was left out";
  EXPECT_EQ(lengths.back(), 1024U);
  EXPECT_EQ(log.Text(), "");
}

// Bit rates at which ordinary packets fit, and at which they do not.
TEST(PacketEncoder, IsNoneWhereAPacketOfOrdinaryLengthWouldNotFit) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  EXPECT_FALSE(PacketLengths(Coder::kAacLc, 32000, 8 * 1021 * 32000 / 1024 - 8).empty());
  EXPECT_TRUE(PacketLengths(Coder::kAacLc, 32000, 8 * 1021 * 32000 / 1024 + 8).empty());
}

// The mode of the id says the length of its packets.
TEST(PacketEncoder, HasOneBitRateAndAnyComplexityOfAmr) {
  const auto encoder = PacketEncoder::Create({FindVariant(3), 16000, 1});
  ASSERT_NE(encoder, nullptr);
  EXPECT_FALSE(encoder->SetBitRate(23850));
  EXPECT_TRUE(encoder->SetComplexity(5));
  unsigned char packet[kMaxPacketBytes];
  const Samples noise = Noise(encoder->blockSamples());
  EXPECT_EQ(encoder->Encode(noise.data(), packet), 3U + 41U);
}

TEST(PacketDecoder, TakesThe1025BytesThatA2ByteHeaderCanTell) {
  const std::string packet = LongestPacket();
  ASSERT_EQ(packet.size(), 1025U);
  EXPECT_EQ(Process(*OpenCodec(51, kAudioLibraryDecoder), packet).size(), 1920U);

  AudioStreamFormat pcm = FormatFromRawCodecId(-1);
  pcm.iSampleRate = 48000;
  pcm.iNumOfChannels = 1;
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(FormatFromRawCodecId(51), pcm, processor);
  std::vector<char> out(8000);
  auto taken = static_cast<uint32_t>(packet.size());
  auto bytes = static_cast<uint32_t>(out.size());
  processor->ProcessData(packet.data(), &taken, out.data(), &bytes, 0, 0);
  AudioProcessor::Release(processor);
  EXPECT_EQ(bytes, 1920U);

  if (AUDIO_ENGINE_HAS_AAC == 0) return;
  const std::string two = packet + packet;
  unsigned char* aac = nullptr;
  EXPECT_GT(TransZUStreamToAAC(two.data(), static_cast<int>(two.size()), &aac), 0);
  free(aac);
}

// Band replication doubles the block of id 38, and that alone tells whether it is there.
TEST(PayloadCodecLag, OfId38GoesByTheLengthOfTheBlock) {
  EXPECT_EQ(PayloadCodecLag({FindVariant(38), 44100, 2}, 1024), 579);
  EXPECT_EQ(PayloadCodecLag({FindVariant(38), 44100, 2}, 512), 256);
}

// A block before the first one is silence for every codec, also where the library has none to give.
TEST(PacketDecoder, ConcealsWithSilenceBeforeTheFirstPacket) {
  for (int id = 0; id <= 55; ++id) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const CodecVariant* variant = FindVariant(id);
    if (variant == nullptr || !IsBuiltIn(variant->coder)) continue;
    const auto decoder =
        PacketDecoder::Create({variant, format.iSampleRate, format.iNumOfChannels});
    ASSERT_NE(decoder, nullptr) << id;
    Samples block(decoder->blockSamples(), 0x5a5a);
    decoder->Conceal(block.data());
    EXPECT_THAT(block, Each(AllOf(Ge(-1), Le(1)))) << id;
  }
}

// The last packet again, or what else the library makes up: the voice does not stop at once.
TEST(PacketDecoder, ConcealsALossAfterABlockWithSound) {
  for (const int id : {0, 3, 21, 23}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const CodecSetup setup = {FindVariant(id), format.iSampleRate, 1};
    const auto encoder = PacketEncoder::Create(setup);
    const auto decoder = PacketDecoder::Create(setup);
    const Samples voice = Voice(format.iSampleRate, 1, 0.2);
    const size_t step = encoder->blockSamples();
    Samples samples(step);
    for (size_t at = 0; at + step <= voice.size(); at += step) {
      unsigned char packet[kMaxPacketBytes];
      const size_t bytes = encoder->Encode(&voice[at], packet);
      ASSERT_TRUE(decoder->Decode(packet, decoder->Find(packet, bytes), samples.data())) << id;
    }
    decoder->Conceal(samples.data());
    EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 1000) << id;
  }
}

// The first octet of an AMR-WB payload: another mode, bad quality, or padding that is set.
TEST(PacketDecoder, TakesAmrWbOfItsModeAndGoodQualityAlone) {
  const CodecSetup setup = {FindVariant(3), 16000, 1};
  const auto encoder = PacketEncoder::Create(setup);
  const auto decoder = PacketDecoder::Create(setup);
  const Samples noise = Noise(320);
  unsigned char packet[kMaxPacketBytes];
  const size_t bytes = encoder->Encode(noise.data(), packet);
  ASSERT_EQ(bytes, 3U + 41U);
  const CapturedStderr log;
  for (int octet = 0; octet < 256; ++octet) {
    packet[3] = static_cast<unsigned char>(octet);
    short samples[320];
    const PacketSpan span = decoder->Find(packet, bytes);
    EXPECT_EQ(decoder->Decode(packet, span, samples), octet == 0x24) << octet;
  }
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
}

// The same length, and not a byte less or more.
TEST(PacketDecoder, TakesPacketsOfTheLengthOfTheirMode) {
  const CapturedStderr log;
  for (const auto& [id, bytes] : {std::pair(0, size_t{38}), {21, 20}, {23, 15}, {3, 41}}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const CodecSetup setup = {FindVariant(id), format.iSampleRate, 1};
    const auto encoder = PacketEncoder::Create(setup);
    const auto decoder = PacketDecoder::Create(setup);
    unsigned char packet[kMaxPacketBytes + 1] = {};
    const Samples noise = Noise(encoder->blockSamples());
    ASSERT_EQ(encoder->Encode(noise.data(), packet), 3 + bytes) << id;
    short samples[320];
    for (const size_t length : {bytes - 1, bytes, bytes + 1}) {
      const PacketSpan span = {PacketSpan::kWhole, 3 + length, 3, length};
      EXPECT_EQ(decoder->Decode(packet, span, samples), length == bytes) << id << ", " << length;
    }
  }
}

// Rates and channels that these two have not.
TEST(PacketEncoder, IsNoneForSpeechCodecsAtOtherRates) {
  for (const auto& [id, rate, channels] :
       {std::tuple(3, 8000, 1), {3, 16000, 2}, {0, 16000, 1}, {0, 8000, 2}}) {
    EXPECT_EQ(PacketEncoder::Create({FindVariant(id), rate, channels}), nullptr) << id;
    EXPECT_EQ(PacketDecoder::Create({FindVariant(id), rate, channels}), nullptr) << id;
  }
  for (const int mode : {-1, 9}) {
    const CodecVariant amr = {3, kAudioCodecUnknown,     Coder::kAmrWb, mode,
                              0, Framing::kTwoByteHeader};
    EXPECT_EQ(PacketEncoder::Create({&amr, 16000, 1}), nullptr) << mode;
    EXPECT_EQ(PacketDecoder::Create({&amr, 16000, 1}), nullptr) << mode;
  }
  for (const int mode : {0, 8}) {
    const CodecVariant amr = {3, kAudioCodecUnknown,     Coder::kAmrWb, mode,
                              0, Framing::kTwoByteHeader};
    const auto encoder = PacketEncoder::Create({&amr, 16000, 1});
    ASSERT_NE(encoder, nullptr);
    unsigned char packet[kMaxPacketBytes];
    EXPECT_EQ(encoder->Encode(Noise(320).data(), packet), mode == 0 ? 3U + 18U : 3U + 61U);
  }
}

}  // namespace desktop
