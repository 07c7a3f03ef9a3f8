#include "bench/codec/decode_frames.h"

#include <gmock/gmock.h>

#include <memory>

#include "bench/codec/routines.h"
#include "bench/codec/whole_frame.h"
#include "codec_formats.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/fake_engine.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

// How many bytes come of three frames that decode to 6, 0 and 4 bytes when `most` may.
size_t DecodedBytes(FakeEngine& engine, size_t most) {
  engine.script<AudioCodecScript>().process = [](int, const std::string& in) {
    return std::string(in == "a" ? 6 : in == "b" ? 0 : 4, 'x');
  };
  const std::unique_ptr<CAudioCodec> decoder(decoderFromRawCodecId(2));
  std::vector<unsigned char> stream = {1, 0, 0, 0, 'a', 1, 0, 0, 0, 'b', 1, 0, 0, 0, 'c'};
  return bench::DecodeFrames(*decoder, CodecFormat(2, 44100, 2, 10), stream, 4, most).size();
}

}  // namespace

TEST(DecodeFrames, KeepsTheWholeFramesThatFit) {
  for (const auto& [most, kept] : {std::pair(0U, 0U), {5U, 0U}, {6U, 6U}, {9U, 6U}, {10U, 10U}}) {
    FakeEngine engine;
    EXPECT_EQ(DecodedBytes(engine, most), kept) << most;
    EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
  }
}

TEST(DecodeFrames, AsksForNothingMoreOnceAFrameDoesNotFit) {
  FakeEngine engine;
  EXPECT_EQ(DecodedBytes(engine, 5), 0U);
  EXPECT_THAT(engine.CallsWith("Process"), SizeIs(1));
}

TEST(DecodeFrames, HasRoomForAsMuchAsOneWriteTakes) {
  FakeEngine engine;
  EXPECT_EQ(DecodedBytes(engine, INT_MAX), 10U);
}

// Of ADTS the length ends in the sixth byte: it is not known of a header that is cut before it,
// whatever lies behind the stream.
TEST(WholeFrameLength, LooksAtNoByteBehindTheStream) {
  unsigned char data[] = {0xFF, 0xF1, 0x50, 0x80, 0x00, 0xA0, 0xFC};
  EXPECT_EQ(bench::WholeFrameLength(data, 5, 0, 7), 0);
  EXPECT_EQ(bench::WholeFrameLength(data, 6, 0, 7), 5);
}
