#include "desktop/codec/parts/frame_codec.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/parts/codec_table.h"
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
Samples Noise(int count) {
  Samples samples;
  unsigned state = 1;
  for (int i = 0; i < count; ++i) {
    state = state * 1664525 + 1013904223;
    samples.push_back(static_cast<short>(state >> 16));
  }
  return samples;
}

// The lengths of the frames that a codec at `bitRate` makes of noise.
std::vector<int> FrameLengths(Coder coder, int rate, int bitRate) {
  const CodecVariant variant = {51, kAudioCodecUnknown, coder, 0, bitRate, Framing::kTwoByteHeader};
  const auto encoder = FrameEncoder::Create({&variant, rate, 2});
  std::vector<int> lengths;
  if (encoder == nullptr) return lengths;
  const Samples noise = Noise(encoder->samplesPerFrame() * 40);
  for (size_t at = 0; at < noise.size(); at += static_cast<size_t>(encoder->samplesPerFrame())) {
    unsigned char frame[kMaxFrameBytes];
    lengths.push_back(encoder->Encode(&noise[at], frame));
  }
  return lengths;
}

// A frame of id 51 with the longest packet that a 2-byte header can tell: Opus filled up as RFC
// 6716, section 3.2.5, has it.
std::string LongestFrame() {
  const std::string frame = Process(*OpenCodec(51, kAudioLibraryEncoder), std::string(1920, '\0'));
  const std::string coded = frame.substr(4);
  std::string packet = {static_cast<char>(frame[3] | 3), '\x41'};
  size_t padding = kMaxPacketBytes - packet.size() - coded.size();
  for (; padding > 255; padding -= 255) packet += '\xff';
  packet += static_cast<char>(padding - 1);
  packet += coded;
  packet.resize(kMaxPacketBytes, '\0');
  return "\xff\xff\x33" + packet;
}

}  // namespace

// What a caller with room for 1024 bytes counts on.
TEST(FrameEncoder, GivesAtMost1024BytesBehindA2ByteHeader) {
  EXPECT_THAT(FrameLengths(Coder::kOpus, 48000, 510000), Each(1024));
  if (AUDIO_ENGINE_HAS_AAC == 0) return;
  const CapturedStderr log;
  std::vector<int> lengths = FrameLengths(Coder::kAacLc, 44100, 351760);
  ASSERT_EQ(lengths.size(), 40U);
  std::sort(lengths.begin(), lengths.end());
  EXPECT_GT(lengths.front(), 1000) << "none was left out";
  EXPECT_EQ(lengths.back(), 1024);
  EXPECT_EQ(log.Text(), "");
}

// Bit rates at which ordinary packets fit, and at which they do not.
TEST(FrameEncoder, IsNoneWhereAPacketOfOrdinaryLengthWouldNotFit) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  EXPECT_FALSE(FrameLengths(Coder::kAacLc, 32000, 8 * 1021 * 32000 / 1024 - 8).empty());
  EXPECT_TRUE(FrameLengths(Coder::kAacLc, 32000, 8 * 1021 * 32000 / 1024 + 8).empty());
}

TEST(FrameDecoder, TakesThe1025BytesThatA2ByteHeaderCanTell) {
  const std::string frame = LongestFrame();
  ASSERT_EQ(frame.size(), 1025U);
  EXPECT_EQ(Process(*OpenCodec(51, kAudioLibraryDecoder), frame).size(), 1920U);

  AudioStreamFormat pcm = FormatFromRawCodecId(-1);
  pcm.iSampleRate = 48000;
  pcm.iNumOfChannels = 1;
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(FormatFromRawCodecId(51), pcm, processor);
  std::vector<char> out(8000);
  auto taken = static_cast<uint32_t>(frame.size());
  auto bytes = static_cast<uint32_t>(out.size());
  processor->ProcessData(frame.data(), &taken, out.data(), &bytes, 0, 0);
  AudioProcessor::Release(processor);
  EXPECT_EQ(bytes, 1920U);

  if (AUDIO_ENGINE_HAS_AAC == 0) return;
  const std::string two = frame + frame;
  unsigned char* aac = nullptr;
  EXPECT_GT(TransZUStreamToAAC(two.data(), static_cast<int>(two.size()), &aac), 0);
  free(aac);
}

// Band replication doubles the frame of id 38, and that alone tells whether it is there.
TEST(PacketCodecLag, OfId38GoesByTheLengthOfTheFrame) {
  EXPECT_EQ(PacketCodecLag({FindVariant(38), 44100, 2}, 1024), 579);
  EXPECT_EQ(PacketCodecLag({FindVariant(38), 44100, 2}, 512), 256);
}

// A frame before the first one is silence for every codec, also where the library has none to give.
TEST(FrameDecoder, ConcealsWithSilenceBeforeTheFirstFrame) {
  for (int id = 0; id <= 55; ++id) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const CodecVariant* variant = FindVariant(id);
    if (variant == nullptr || !IsBuiltIn(variant->coder)) continue;
    const auto decoder = FrameDecoder::Create({variant, format.iSampleRate, format.iNumOfChannels});
    ASSERT_NE(decoder, nullptr) << id;
    Samples frame(static_cast<size_t>(decoder->samplesPerFrame()), 0x5a5a);
    decoder->Conceal(frame.data());
    EXPECT_THAT(frame, Each(AllOf(Ge(-1), Le(1)))) << id;
  }
}

// The last packet again, or what else the library makes up: the voice does not stop at once.
TEST(FrameDecoder, ConcealsALossAfterAFrameWithSound) {
  for (const int id : {0, 3, 21, 23}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const CodecSetup setup = {FindVariant(id), format.iSampleRate, 1};
    const auto encoder = FrameEncoder::Create(setup);
    const auto decoder = FrameDecoder::Create(setup);
    const Samples voice = Voice(format.iSampleRate, 1, 0.2);
    const auto step = static_cast<size_t>(encoder->samplesPerFrame());
    Samples samples(step);
    for (size_t at = 0; at + step <= voice.size(); at += step) {
      unsigned char frame[kMaxFrameBytes];
      const int bytes = encoder->Encode(&voice[at], frame);
      ASSERT_TRUE(decoder->Decode(frame, decoder->Find(frame, bytes), samples.data())) << id;
    }
    decoder->Conceal(samples.data());
    EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 1000) << id;
  }
}

// The octet ahead of an AMR-WB frame: another mode, a frame of bad quality, or padding that is set.
TEST(FrameDecoder, TakesAmrWbOfItsModeAndGoodQualityAlone) {
  const CodecSetup setup = {FindVariant(3), 16000, 1};
  const auto encoder = FrameEncoder::Create(setup);
  const auto decoder = FrameDecoder::Create(setup);
  const Samples noise = Noise(320);
  unsigned char frame[kMaxFrameBytes];
  const int bytes = encoder->Encode(noise.data(), frame);
  ASSERT_EQ(bytes, 3 + 41);
  const CapturedStderr log;
  for (int octet = 0; octet < 256; ++octet) {
    frame[3] = static_cast<unsigned char>(octet);
    short samples[320];
    const FrameSpan span = decoder->Find(frame, bytes);
    EXPECT_EQ(decoder->Decode(frame, span, samples), octet == 0x24) << octet;
  }
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
}

// The same length, and not a byte less or more.
TEST(FrameDecoder, TakesPacketsOfTheLengthOfTheirMode) {
  const CapturedStderr log;
  for (const auto& [id, bytes] : {std::pair(0, 38), {21, 20}, {23, 15}, {3, 41}}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const CodecSetup setup = {FindVariant(id), format.iSampleRate, 1};
    const auto encoder = FrameEncoder::Create(setup);
    const auto decoder = FrameDecoder::Create(setup);
    unsigned char frame[kMaxFrameBytes + 1] = {};
    const Samples noise = Noise(encoder->samplesPerFrame());
    ASSERT_EQ(encoder->Encode(noise.data(), frame), 3 + bytes) << id;
    short samples[320];
    for (const int more : {-1, 0, 1}) {
      EXPECT_EQ(
          decoder->Decode(frame, {FrameSpan::kWhole, 3 + bytes + more, 3, bytes + more}, samples),
          more == 0)
          << id << ", " << more;
    }
  }
}

// Rates and channels that these two have not.
TEST(FrameEncoder, IsNoneForSpeechCodecsAtOtherRates) {
  for (const auto& [id, rate, channels] :
       {std::tuple(3, 8000, 1), {3, 16000, 2}, {0, 16000, 1}, {0, 8000, 2}}) {
    EXPECT_EQ(FrameEncoder::Create({FindVariant(id), rate, channels}), nullptr) << id;
    EXPECT_EQ(FrameDecoder::Create({FindVariant(id), rate, channels}), nullptr) << id;
  }
  for (const int mode : {-1, 9}) {
    const CodecVariant amr = {3, kAudioCodecUnknown,     Coder::kAmrWb, mode,
                              0, Framing::kTwoByteHeader};
    EXPECT_EQ(FrameEncoder::Create({&amr, 16000, 1}), nullptr) << mode;
    EXPECT_EQ(FrameDecoder::Create({&amr, 16000, 1}), nullptr) << mode;
  }
  for (const int mode : {0, 8}) {
    const CodecVariant amr = {3, kAudioCodecUnknown,     Coder::kAmrWb, mode,
                              0, Framing::kTwoByteHeader};
    const auto encoder = FrameEncoder::Create({&amr, 16000, 1});
    ASSERT_NE(encoder, nullptr);
    unsigned char frame[kMaxFrameBytes];
    EXPECT_EQ(encoder->Encode(Noise(320).data(), frame), 3 + (mode == 0 ? 18 : 61));
  }
}

}  // namespace desktop
