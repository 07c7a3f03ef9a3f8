#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "contract/codec/packet.h"
#include "fake_engine/codec/local_codec.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

char g_in[] = "in.wav";
char g_out[] = "out.enc";

// The 44 bytes of a WAVE header, of which rate and channels count.
std::string Header(uint32_t rate, uint16_t channels) {
  std::string header(44, 'h');
  header.replace(22, 2, reinterpret_cast<const char*>(&channels), 2);
  header.replace(24, 4, reinterpret_cast<const char*>(&rate), 4);
  return header;
}

std::string FrameRecord(uint32_t index, char codecType, const std::string& frame) {
  std::string record(5, '\0');  // Time stamp and ssrc.
  record.append(reinterpret_cast<const char*>(&index), sizeof index);
  record += codecType;
  record += '\1';
  return record + Packet(frame);
}

// The records of a call number from where the last one of the process has stopped.
uint32_t IndexOf(const std::string& record) {
  uint32_t index = 0;
  record.copy(reinterpret_cast<char*>(&index), sizeof index, 5);
  return index;
}

uint32_t FramesSoFar() {
  FakeEngine engine;
  engine.script<LocalCodecScript>().encoderBytes = 1;
  engine.PutFile(g_in, Header(16000, 1) + "a");
  TestEncodeFile(g_in, g_out);
  return IndexOf(engine.Bytes(g_out));
}

}  // namespace

TEST(TestEncodeFile, WritesFrameRecords) {
  const uint32_t before = FramesSoFar();
  for (const auto& [rate, channels, type] : {std::tuple(44100, 2, 1), {16000, 1, 2}}) {
    FakeEngine engine;
    engine.PutFile(g_in, Header(static_cast<uint32_t>(rate), static_cast<uint16_t>(channels)) +
                             "aaaabbbbcccc" + "ddd");
    engine.script<LocalCodecScript>().encoderBytes = 4;
    engine.script<LocalCodecScript>().encode = [](const std::string& in) {
      return in[0] == 'b' ? std::string() : in.substr(0, 2);
    };

    TestEncodeFile(g_in, g_out);

    const auto codecType = static_cast<char>(type);
    const uint32_t first = before + (type == 1 ? 1 : 4);  // The second file goes on counting.
    EXPECT_EQ(engine.Bytes(g_out), FrameRecord(first, codecType, "aa") +
                                       FrameRecord(first + 1, codecType, "") +
                                       FrameRecord(first + 2, codecType, "cc"));
    EXPECT_THAT(engine.CallsWith("Encoder"),
                Transcript("CreateAudioEncoder(" + std::to_string(type) + R"() = IAudioEncoder#1
        IAudioEncoder#1.Init()
        IAudioEncoder#1.GetEncoderBytes() = 4
        IAudioEncoder#1.Encode(4, out of 0) = 2
        IAudioEncoder#1.Encode(4, out of 0) = 0  # A fresh string each time.
        IAudioEncoder#1.Encode(4, out of 0) = 2
        IAudioEncoder#1.Destroy()
    )"));
    EXPECT_THAT(engine.live, IsEmpty());
  }
}

TEST(TestEncodeFile, OpensReadsEncodesAndCloses) {
  FakeEngine engine;
  engine.PutFile(g_in, Header(16000, 1) + "ab");
  engine.script<LocalCodecScript>().encoderBytes = 2;

  TestEncodeFile(g_in, g_out);

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.wav, rb)
      fopen(out.enc, wb)
      fread(in.wav, 44, 1) = 1
      CreateAudioEncoder(2) = IAudioEncoder#1
      IAudioEncoder#1.Init()
      IAudioEncoder#1.GetEncoderBytes() = 2
      fread(in.wav, 2, 1) = 1
      IAudioEncoder#1.Encode(2, out of 0) = 2
      fwrite(out.enc, 4, 1)
      fwrite(out.enc, 1, 1)
      fwrite(out.enc, 4, 1)
      fwrite(out.enc, 1, 1)
      fwrite(out.enc, 1, 1)
      fwrite(out.enc, 2, 1)
      fwrite(out.enc, 1, 2)
      fread(in.wav, 2, 1) = 0
      IAudioEncoder#1.Destroy()
      fclose(out.enc)
      fclose(in.wav)
  )"));
}

TEST(TestEncodeFile, CutsTheFrameTo16BitsOfItsLength) {
  const uint32_t before = FramesSoFar();
  FakeEngine engine;
  engine.PutFile(g_in, Header(16000, 1) + "a");
  engine.script<LocalCodecScript>().encoderBytes = 1;
  engine.script<LocalCodecScript>().encode = [](const std::string&) {
    return std::string(65536 + 3, 'y');
  };
  TestEncodeFile(g_in, g_out);
  EXPECT_EQ(engine.Bytes(g_out), FrameRecord(before + 1, 2, "yyy"));
}

TEST(TestEncodeFile, ReturnsForEveryOtherFormat) {
  const uint32_t before = FramesSoFar();
  for (const auto& [rate, channels] :
       {std::pair(44100, 1), {16000, 2}, {44100, 3}, {48000, 2}, {8000, 1}, {0, 0}}) {
    FakeEngine engine;
    engine.PutFile(g_in,
                   Header(static_cast<uint32_t>(rate), static_cast<uint16_t>(channels)) + "aa");
    engine.script<LocalCodecScript>().encoderBytes = 1;
    TestEncodeFile(g_in, g_out);
    EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.wav, rb)
      fopen(out.enc, wb)
      fread(in.wav, 44, 1) = 1
      fclose(out.enc)
      fclose(in.wav)
  )"));
    EXPECT_EQ(engine.Bytes(g_out), "");
  }
  EXPECT_EQ(FramesSoFar(), before + 1);
}

TEST(TestEncodeFile, ReturnsWithoutAnEncoderAndCountsNothing) {
  const uint32_t before = FramesSoFar();
  FakeEngine engine;
  engine.PutFile(g_in, Header(16000, 1) + "aa");
  engine.script<LocalCodecScript>().isAvailable = [](auto) { return false; };
  TestEncodeFile(g_in, g_out);
  EXPECT_EQ(engine.CallsWith("Encoder").size(), 1U);
  EXPECT_THAT(engine.CallsWith("fclose"), SizeIs(2));
  EXPECT_EQ(FramesSoFar(), before + 1);
}

TEST(TestEncodeFile, EndsWhenTheEncoderWantsNothing) {
  for (const int bytes : {0, -1}) {
    FakeEngine engine;
    engine.PutFile(g_in, Header(16000, 1) + "aa");
    engine.script<LocalCodecScript>().encoderBytes = bytes;
    TestEncodeFile(g_in, g_out);
    EXPECT_THAT(engine.CallsWith("Encode("), IsEmpty()) << bytes;
    EXPECT_EQ(engine.Bytes(g_out), "");
    EXPECT_THAT(engine.live, IsEmpty());
  }
}

TEST(TestEncodeFile, ReturnsForAHeaderThatIsCutShortAndForNoFile) {
  FakeEngine engine;
  engine.PutFile(g_in, Header(16000, 1).substr(0, 43));
  TestEncodeFile(g_in, g_out);
  char missing[] = "missing.wav";
  TestEncodeFile(missing, g_out);
  EXPECT_THAT(engine.CallsWith("Encoder"), IsEmpty());
}

TEST(TestDecodeFile, DecodesShortPrefixedPackets) {
  FakeEngine engine;
  engine.PutFile(g_in, Packet("abc") + Packet("d") + Packet("") + Packet("e"));

  TestDecodeFile(g_in, g_out, AudioLocalCodec::SPEEX_CODEC_4);

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.wav, rb)
      fopen(out.enc, wb)
      CreateAudioDecoder(21) = IAudioDecoder#1
      IAudioDecoder#1.Init()
      fread(in.wav, 2, 1) = 1
      fread(in.wav, 3, 1) = 1
      IAudioDecoder#1.Decode(3, out of 0) = 3
      fwrite(out.enc, 1, 3)
      fread(in.wav, 2, 1) = 1
      fread(in.wav, 1, 1) = 1
      IAudioDecoder#1.Decode(1, out of 0) = 1  # A fresh string each time.
      fwrite(out.enc, 1, 1)
      fread(in.wav, 2, 1) = 1
      fread(in.wav, 0, 1) = 0  # A length of 0 ends it.
      IAudioDecoder#1.Destroy()
      fclose(out.enc)
      fclose(in.wav)
  )"));
  EXPECT_EQ(engine.Bytes(g_out), "abcd");
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestDecodeFile, WritesAllSamplesHoweverMany) {
  FakeEngine engine;
  engine.PutFile(g_in, Packet("a"));
  engine.script<LocalCodecScript>().decode = [](const std::string&) {
    return std::string(65536 + 5, 'x');
  };
  TestDecodeFile(g_in, g_out, AudioLocalCodec::SILK_CODEC);
  EXPECT_EQ(engine.Bytes(g_out).size(), 65536U + 5);
}

TEST(TestDecodeFile, EndsInsideAPacket) {
  FakeEngine engine;
  engine.PutFile(g_in, Packet("abc") + Packet("defg").substr(0, 5));
  TestDecodeFile(g_in, g_out, AudioLocalCodec::SILK_CODEC);
  EXPECT_EQ(engine.Bytes(g_out), "abc");
}

TEST(TestDecodeFile, TakesThePacketsThatA16BitLengthCanSay) {
  FakeEngine engine;
  std::string frames(65535, 'x');
  engine.PutFile(g_in, Packet(frames) + Packet("a"));
  TestDecodeFile(g_in, g_out, AudioLocalCodec::SILK_CODEC);
  frames += 'a';
  EXPECT_EQ(engine.Bytes(g_out), frames);
}

TEST(TestDecodeFile, FindsNothingInAFileOfFrameRecords) {
  FakeEngine engine;
  engine.PutFile(g_in, FrameRecord(1, 2, "abc"));
  TestDecodeFile(g_in, g_out, AudioLocalCodec::SILK_CODEC);
  EXPECT_THAT(engine.CallsWith("Decode("), IsEmpty());
}

TEST(TestDecodeFile, LeavesAnEmptyFileWithoutInputOrCodec) {
  FakeEngine engine;
  TestDecodeFile(g_in, g_out, AudioLocalCodec::SILK_CODEC);
  EXPECT_EQ(engine.Bytes(g_out), "");
  engine.PutFile(g_in, Packet("abc"));
  engine.script<LocalCodecScript>().isAvailable = [](auto) { return false; };
  TestDecodeFile(g_in, g_out, AudioLocalCodec::UNKNOWN_CODEC);
  EXPECT_EQ(engine.CallsWith("CreateAudioDecoder").back(), "CreateAudioDecoder(-1) = null");
  EXPECT_EQ(engine.Bytes(g_out), "");
  EXPECT_THAT(engine.live, IsEmpty());
}
