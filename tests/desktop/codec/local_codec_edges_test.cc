// Losses, settings and lengths at which the local codecs change what they do.

#include <gmock/gmock.h>

#include <climits>
#include <cstdlib>
#include <memory>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/parts/lost_block.h"
#include "engine_api/codec/local_codec.h"
#include "support/captured_stderr.h"

namespace AudioLocalCodec {
namespace {

using testing::Each;
using testing::IsEmpty;
using testing::Not;

struct Destroyer {
  void operator()(IAudioEncoder* encoder) const { encoder->Destroy(); }
  void operator()(IAudioDecoder* decoder) const { decoder->Destroy(); }
};
using EncoderPtr = std::unique_ptr<IAudioEncoder, Destroyer>;
using DecoderPtr = std::unique_ptr<IAudioDecoder, Destroyer>;

struct Type {
  AudioCodecType type;
  int rate;
  int channels;
};
const Type kTypes[] = {
    {SPEEX_CODEC_8, 8000, 1},  {SPEEX_CODEC_4, 8000, 1}, {SPEEX_CODEC_2, 8000, 1},
    {SILK_CODEC, 16000, 1},    {WAV_CODEC, 44100, 2},    {AAC_PLUS_CODEC, 44100, 2},
    {AAC_ELD_CODEC, 44100, 2}, {AAC_LC_CODEC, 44100, 2}, {AAC_AUDIT_CODEC, 44100, 2}};

std::vector<Type> BuiltIn() {
  std::vector<Type> types(std::begin(kTypes), std::end(kTypes));
  if (AUDIO_ENGINE_HAS_AAC == 0) types.resize(5);
  return types;
}

EncoderPtr OpenEncoder(AudioCodecType type) {
  EncoderPtr encoder(CreateAudioEncoder(type));
  EXPECT_TRUE(encoder->Init());
  return encoder;
}

DecoderPtr OpenDecoder(AudioCodecType type) {
  DecoderPtr decoder(CreateAudioDecoder(type));
  EXPECT_TRUE(decoder->Init());
  return decoder;
}

// The packets of a second of a voice.
std::vector<std::string> Packets(IAudioEncoder& encoder, const Type& type) {
  const std::string voice = BytesOf(Voice(type.rate, type.channels, 1));
  const auto frame = static_cast<size_t>(encoder.GetEncoderBytes());
  std::vector<std::string> packets;
  for (size_t at = 0; at + frame <= voice.size(); at += frame) {
    encoder.Encode(voice.data() + at, static_cast<int>(frame), packets.emplace_back());
  }
  return packets;
}

size_t BytesIn(const std::vector<std::string>& packets) {
  size_t bytes = 0;
  for (const std::string& packet : packets) bytes += packet.size();
  return bytes;
}

}  // namespace

TEST(LocalCodecEdges, ALossBeforeTheFirstPacketIsSilent) {
  for (const Type& type : BuiltIn()) {
    const DecoderPtr decoder = OpenDecoder(type.type);
    std::string out;
    decoder->DecodeLoss(out);
    for (const short sample : SamplesOf(out)) EXPECT_LE(std::abs(sample), 1) << type.type;
  }
}

TEST(LocalCodecEdges, APacketEndsWhereItSays) {
  for (const Type& type : BuiltIn()) {
    const CapturedStderr log;
    const std::string packet = Packets(*OpenEncoder(type.type), type)[0];
    const DecoderPtr decoder = OpenDecoder(type.type);
    std::string out;
    for (const size_t more : {1U, 2U, 7U}) {
      const std::string longer = packet + std::string(more, '\0');
      decoder->Decode(longer.data(), static_cast<int>(longer.size()), out);
      EXPECT_EQ(out, "") << type.type << " and " << more;
    }
    // Samples as they are have no packets that could be refused.
    EXPECT_EQ(log.Lines().size(), type.type == WAV_CODEC ? 0U : 1U) << log.Text();
    decoder->Decode(packet.data(), static_cast<int>(packet.size()), out);
    EXPECT_NE(out, "") << type.type;
  }
}

TEST(LocalCodecEdges, NullIsNoInput) {
  for (const Type& type : BuiltIn()) {
    std::string out = "before";
    OpenEncoder(type.type)->Encode(nullptr, 10, out);
    EXPECT_EQ(out, "");
    out = "before";
    OpenDecoder(type.type)->Decode(nullptr, 10, out);
    EXPECT_EQ(out, "");
  }
}

// A lost frame goes into the encoder's own history too.
TEST(LocalCodecEdges, EncodesALossOfSamplesAsTheMirroredFrame) {
  const EncoderPtr encoder = OpenEncoder(WAV_CODEC);
  Samples frame(1764, 0);
  frame[1762] = 882;
  frame[1763] = -882;
  const std::string bytes = BytesOf(frame);
  std::string out;
  encoder->Encode(bytes.data(), static_cast<int>(bytes.size()), out);
  encoder->EncodeLoss(out);
  const Samples lost = SamplesOf(out);
  EXPECT_EQ(lost[0], 882);
  EXPECT_EQ(lost[1], -882);
  EXPECT_THAT(Samples(lost.begin() + 2, lost.end()), Each(0));
}

// A bit rate at which no packet would fit is refused, and then the last one stays.
TEST(LocalCodecEdges, ARefusedBitRateLeavesTheLastOne) {
  for (const Type& type : BuiltIn()) {
    const size_t usual = BytesIn(Packets(*OpenEncoder(type.type), type));
    for (const int refused : {-1, 0, 360000, 100000000}) {
      const EncoderPtr encoder = OpenEncoder(type.type);
      const bool varies = type.type == SILK_CODEC || type.type == AAC_PLUS_CODEC;
      EXPECT_EQ(encoder->SetBitRate(refused), refused > 0 && varies) << type.type << refused;
      if (refused > 0 && varies) continue;
      const std::vector<std::string> packets = Packets(*encoder, type);
      EXPECT_THAT(packets, Each(Not(IsEmpty()))) << type.type << " at " << refused;
      EXPECT_NEAR(static_cast<double>(BytesIn(packets)), static_cast<double>(usual),
                  0.03 * static_cast<double>(usual))
          << type.type << " at " << refused;
    }
  }
}

// Whatever is taken, each frame has its packet.
TEST(LocalCodecEdges, EveryBitRateThatIsTakenFits) {
  for (const Type& type : BuiltIn()) {
    for (const int rate : {1, 8000, 340000, 350000, 1000000, INT_MAX}) {
      const EncoderPtr encoder = OpenEncoder(type.type);
      if (!encoder->SetBitRate(rate)) continue;
      for (const std::string& packet : Packets(*encoder, type)) {
        EXPECT_FALSE(packet.empty()) << type.type << " at " << rate;
        EXPECT_LE(packet.size(), 1028U) << type.type << " at " << rate;
      }
    }
  }
}

// The whole frame backwards, falling in a line.
TEST(LostBlock, MirrorsEveryFrame) {
  for (const int frames : {1, 2, 3, 10, 11}) {
    Samples arrived;
    for (int i = 1; i <= frames; ++i) {
      arrived.push_back(static_cast<short>(i * 1000));
      arrived.push_back(static_cast<short>(-i * 1000));
    }
    desktop::LostBlock loss(arrived.size(), 2);
    loss.Arrived(arrived.data());
    const short* lost = loss.Lost();
    for (int i = 0; i < frames; ++i) {
      const int expected = (frames - i) * 1000 * (frames - i) / frames;
      EXPECT_NEAR(lost[2 * i], expected, 1) << frames << ": " << i;
      EXPECT_NEAR(lost[2 * i + 1], -expected, 1) << frames << ": " << i;
    }
  }
}

// Before the first block, and from the second loss in a row on; a block that arrives ends the row.
TEST(LostBlock, IsSilentOnlyInARow) {
  desktop::LostBlock loss(4, 1);
  EXPECT_THAT(Samples(loss.Lost(), loss.Lost() + 4), Each(0));
  const short block[] = {100, 200, 300, 400};
  for (int i = 0; i < 3; ++i) {
    loss.Arrived(block);
    const short* lost = loss.Lost();
    EXPECT_THAT(Samples(lost, lost + 4), testing::ElementsAre(400, 225, 100, 25));
    for (int more = 0; more < 2; ++more) {
      lost = loss.Lost();
      EXPECT_THAT(Samples(lost, lost + 4), Each(0));
    }
  }
}

}  // namespace AudioLocalCodec
