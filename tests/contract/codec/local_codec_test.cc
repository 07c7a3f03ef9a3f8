#include "fake_engine/codec/local_codec.h"

#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "contract/codec/packet.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

TEST(TestAudioEncode, EncodesThenDecodes) {
  FakeEngine engine;
  engine.PutFile("audio_test.pcm", "aaaabbbbccccddd");
  engine.script<LocalCodecScript>().encoderBytes = 4;
  engine.script<LocalCodecScript>().encode = [](const std::string& in) {
    return in[0] == 'b' ? std::string() : in.substr(0, 3);
  };
  engine.script<LocalCodecScript>().decode = [](const std::string& in) {
    return in[0] == 'c' ? "" : in + "!";
  };

  TestAudioEncode();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(audio_test.pcm, rb)
      fopen(out.enc, wb)
      CreateAudioEncoder(4) = IAudioEncoder#1
      IAudioEncoder#1.Init()
      IAudioEncoder#1.GetEncoderBytes() = 4
      fread(audio_test.pcm, 4, 1) = 1
      IAudioEncoder#1.Encode(4, out of 0) = 3
      fwrite(out.enc, 2, 1)
      fwrite(out.enc, 1, 3)
      fread(audio_test.pcm, 4, 1) = 1
      IAudioEncoder#1.Encode(4, out of 3) = 0  # The same string again.
      fread(audio_test.pcm, 4, 1) = 1
      IAudioEncoder#1.Encode(4, out of 0) = 3
      fwrite(out.enc, 2, 1)
      fwrite(out.enc, 1, 3)
      fread(audio_test.pcm, 4, 1) = 0  # Dropped.
      IAudioEncoder#1.Destroy()
      fclose(audio_test.pcm)
      fclose(out.enc)
      fopen(out.enc, rb)
      fopen(dec.pcm, wb)
      CreateAudioDecoder(4) = IAudioDecoder#1
      IAudioDecoder#1.Init()
      fread(out.enc, 2, 1) = 1
      fread(out.enc, 3, 1) = 1
      IAudioDecoder#1.Decode(3, out of 0) = 4
      fwrite(dec.pcm, 1, 4)
      fread(out.enc, 2, 1) = 1
      fread(out.enc, 3, 1) = 1
      IAudioDecoder#1.Decode(3, out of 4) = 0  # Again the same string.
      fread(out.enc, 2, 1) = 0
      IAudioDecoder#1.Destroy()
      fclose(dec.pcm)
      fclose(out.enc)
  )"));
  EXPECT_EQ(engine.Bytes("out.enc"), Packet("aaa") + Packet("ccc"));
  EXPECT_EQ(engine.Bytes("dec.pcm"), "aaa!");
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAudioEncode, LeavesAnEmptyStreamWhenTheInputIsMissing) {
  FakeEngine engine;
  TestAudioEncode();
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(audio_test.pcm, rb) = null
      fopen(out.enc, wb)
      puts("Can't Open Input File!")
      fclose(out.enc)
  )"));
  EXPECT_TRUE(engine.HasFile("out.enc"));
}

TEST(TestAudioEncode, CutsTheLengthAndNotTheData) {
  for (const size_t bytes : {65535U, 65536U, 65539U}) {
    FakeEngine engine;
    engine.PutFile("audio_test.pcm", "a");
    engine.script<LocalCodecScript>().encoderBytes = 1;
    engine.script<LocalCodecScript>().encode = [=](const std::string&) {
      return std::string(bytes, 'x');
    };
    TestAudioEncode();
    const std::string stream = engine.Bytes("out.enc");
    // 65536 counts as nothing.
    ASSERT_EQ(stream.size(), bytes == 65536 ? 0 : bytes + 2);
    if (bytes == 65535) {
      EXPECT_EQ(stream.substr(0, 3), "\xFF\xFFx");
    }
    if (bytes == 65539) {
      EXPECT_EQ(stream.substr(0, 3), std::string("\3\0x", 3));
    }
  }
}

TEST(TestAudioEncode, CutsTheSamplesTo16BitsOfTheirLength) {
  for (const auto& [bytes, written] : {std::pair(65535U, 65535U), {65536U, 0U}, {65540U, 4U}}) {
    FakeEngine engine;
    engine.PutFile("audio_test.pcm", "a");
    engine.script<LocalCodecScript>().encoderBytes = 1;
    engine.script<LocalCodecScript>().decode = [size = bytes](const std::string&) {
      return std::string(size, 'x');
    };
    TestAudioEncode();
    EXPECT_EQ(engine.Bytes("dec.pcm").size(), written) << bytes;
    EXPECT_THAT(engine.CallsWith("fwrite(dec.pcm"), SizeIs(written > 0 ? 1 : 0)) << bytes;
  }
}

TEST(TestAudioEncode, TakesThePacketsThatA16BitLengthCanSay) {
  FakeEngine engine;
  engine.PutFile("audio_test.pcm", "a");
  engine.script<LocalCodecScript>().encoderBytes = 1;
  engine.script<LocalCodecScript>().encode = [](const std::string&) {
    return std::string(65535, 'x');
  };
  TestAudioEncode();
  EXPECT_EQ(engine.Bytes("dec.pcm"), std::string(65535, 'x'));
}

TEST(TestAudioEncode, EndsWhenTheEncoderWantsNothingOrTooMuch) {
  for (const auto& [bytes, blocks] : {std::pair(0, 0), {-1, 0}, {8192, 2}, {8193, 0}}) {
    FakeEngine engine;
    engine.PutFile("audio_test.pcm", std::string(20000, 'a'));
    engine.script<LocalCodecScript>().encoderBytes = bytes;
    TestAudioEncode();
    EXPECT_THAT(engine.CallsWith("Encode("), SizeIs(blocks)) << bytes;
  }
}

TEST(TestAudioEncode, LeavesEmptyFilesWithoutACodec) {
  FakeEngine engine;
  engine.PutFile("audio_test.pcm", "aaaa");
  engine.script<LocalCodecScript>().isAvailable = [](auto) { return false; };
  TestAudioEncode();
  EXPECT_TRUE(engine.HasFile("out.enc"));
  EXPECT_TRUE(engine.HasFile("dec.pcm"));
}
