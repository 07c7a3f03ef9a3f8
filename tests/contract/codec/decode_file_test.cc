#include <gmock/gmock.h>

#include <regex>

#include "bench/codec/routines.h"
#include "codec_formats.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Room for 20 x 2 x 10 = 400 bytes.
void UseFrames(FakeEngine& engine) {
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 44100, 2, 10); };
}

std::string Adts(size_t bytes) {
  std::string frame(bytes, 'a');
  frame[3] = '\xFF';  // The length's high bits, which do not count.
  frame[4] = static_cast<char>(bytes >> 3);
  frame[5] = static_cast<char>((bytes & 7) << 5 | 0x1F);
  return frame;
}

std::string Marked(const std::string& payload) {
  const size_t word = 0xFC00 | payload.size();
  return {std::string({static_cast<char>(word & 0xFF), static_cast<char>(word >> 8)}) + payload};
}

std::string Prefixed(int length, const std::string& payload) {
  return std::string(reinterpret_cast<const char*>(&length), sizeof length) + payload;
}

// What the decoder was given by `decode` for these bytes.
template <typename Decode>
std::vector<std::string> FramesOf(const std::string& stream, Decode decode) {
  FakeEngine engine;
  UseFrames(engine);
  engine.PutFile("in.enc", stream);
  std::vector<std::string> frames;
  engine.script<AudioCodecScript>().process = [&](int, const std::string& in) {
    frames.push_back(in);
    return std::string();
  };
  decode("in.enc", "out.wav");
  EXPECT_THAT(engine.live, IsEmpty());
  return frames;
}

std::vector<std::string> Decoded(const std::string& stream, int id, bool extraHeader) {
  return FramesOf(stream,
                  [=](const char* in, const char* out) { TestZUDecode(in, out, id, extraHeader); });
}

std::vector<std::string> NewDecoded(const std::string& stream, int id, bool extraHeader) {
  return FramesOf(stream, [=](const char* in, const char* out) {
    newTestZUDecode(in, out, id, 16000, extraHeader);
  });
}

}  // namespace

TEST(TestZUDecode, ReadsDecodesLogsAndThenWrites) {
  FakeEngine engine;
  UseFrames(engine);
  engine.PutFile("in.enc", Marked("ab") + Marked("") + Marked("cde"));
  engine.nowMs = 50;
  engine.script<AudioCodecScript>().process = [&](int, const std::string& in) {
    engine.nowMs += 3;
    // Nothing for the frame without a payload.
    return in.size() == 2
               ? ""
               : std::string(in.size() == 4 ? "\1\0\2\0" : "\3\0", in.size() == 4 ? 4 : 2);
  };

  TestZUDecode("in.enc", "out.wav", 2, false);

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.enc, rb)
      fseek(in.enc, 0, 2)
      ftell(in.enc) = 11
      fseek(in.enc, 0, 0)
      fread(in.enc, 1, 11) = 11
      fclose(in.enc)
      FormatFromRawCodecId(2)
      GetExactTickCount() = 50
      CreateAudioCodec(4, 0) = CAudioCodec#1
      CAudioCodec#1.Init(id 2, 44100 Hz x 2, 10) = 1
      CAudioCodec#1.Process(4, room 400) = 4
      CAudioCodec#1.Process(2, room 400) = 0
      CAudioCodec#1.Process(5, room 400) = 2
      ~CAudioCodec#1
      GetExactTickCount() = 59
      OutputDebugInfo("decode elapse time: %d.", 9)
      CWavFileWriter#1(44100, 2, 16, out.wav)
      CWavFileWriter#1.Write(6)
      ~CWavFileWriter#1
  )"));
  EXPECT_EQ(engine.wavs["out.wav"].samples, (std::vector<short>{1, 2, 3}));
}

TEST(TestZUDecode, TakesAdtsOf55And1) {
  const std::string stream = Adts(9) + Adts(300);
  for (const int id : {55, 1}) {
    EXPECT_THAT(Decoded(stream, id, false), ElementsAre(Adts(9), Adts(300))) << id;
    EXPECT_THAT(Decoded(Marked("ab"), id, false), IsEmpty()) << id;
  }
}

// No frame of a codec is this short, but its length and what is there agree.
TEST(TestZUDecode, LooksAtSixBytesOfAnAdtsHeader) {
  EXPECT_THAT(Decoded(Adts(9) + Adts(6), 55, false), ElementsAre(Adts(9), Adts(6)));
}

TEST(TestZUDecode, TakesMarkedFramesOfEveryOtherId) {
  for (const int id : {2, 22, 35, 38, 46, 50, 51, 53}) {
    EXPECT_THAT(Decoded(Marked("ab") + Marked("c"), id, false),
                ElementsAre(Marked("ab"), Marked("c")))
        << id;
    EXPECT_THAT(Decoded(Adts(9), id, false), IsEmpty()) << id;
  }
}

TEST(TestZUDecode, TakesPrefixedFramesOfEveryId) {
  for (const int id : {1, 2, 46, 55}) {
    EXPECT_THAT(Decoded(Prefixed(3, "abc") + Prefixed(1, "d"), id, true), ElementsAre("abc", "d"))
        << id;
  }
}

TEST(TestZUDecode, EndsAtTheFirstFrameThatIsNone) {
  EXPECT_THAT(Decoded(Marked("ab") + std::string("\xFF\xFB") + Marked("cd"), 2, false),
              ElementsAre(Marked("ab")));
  EXPECT_THAT(Decoded(Prefixed(1, "a") + Prefixed(0, "") + Prefixed(1, "b"), 2, true),
              ElementsAre("a"));
}

TEST(TestZUDecode, EndsAtANegativeLength) {
  for (const int length : {-1, -4, -8, -2147483647 - 1}) {
    EXPECT_THAT(Decoded(Prefixed(1, "a") + Prefixed(length, "bcdefghi"), 2, true), ElementsAre("a"))
        << length;
  }
}

TEST(TestZUDecode, KeepsFromTheDecoderWhatReachesPastTheEnd) {
  EXPECT_THAT(Decoded(Prefixed(1, "a") + Prefixed(4, "bcd"), 2, true), ElementsAre("a"));
  EXPECT_THAT(Decoded(Prefixed(1, "a") + Prefixed(0x7fffffff, "bcd"), 2, true), ElementsAre("a"));
  EXPECT_THAT(Decoded(Marked("ab") + Marked("cd").substr(0, 3), 2, false),
              ElementsAre(Marked("ab")));
  EXPECT_THAT(Decoded(Adts(9) + Adts(20).substr(0, 19), 1, false), ElementsAre(Adts(9)));
}

// A sanitizer sees what is read past the end of the stream.
TEST(TestZUDecode, EndsInsideAHeader) {
  for (size_t bytes = 1; bytes < 4; ++bytes) {
    EXPECT_THAT(Decoded(Prefixed(1, "a") + std::string(bytes, '\1'), 2, true), ElementsAre("a"));
  }
  EXPECT_THAT(Decoded(Marked("ab") + "\xFF", 2, false), ElementsAre(Marked("ab")));
  for (size_t bytes = 1; bytes < 6; ++bytes) {
    EXPECT_THAT(Decoded(Adts(9) + std::string(bytes, '\xFF'), 55, false), ElementsAre(Adts(9)));
  }
}

TEST(TestZUDecode, WritesWhatWasDecodedBeforeTheEnd) {
  FakeEngine engine;
  UseFrames(engine);
  engine.PutFile("in.enc", Marked("ab") + "junk");
  engine.script<AudioCodecScript>().process = [](int, const std::string&) {
    return std::string("\7\0\7\0", 4);
  };

  TestZUDecode("in.enc", "out.wav", 2, false);

  EXPECT_EQ(engine.wavs["out.wav"].samples, (std::vector<short>{7, 7}));
}

TEST(TestZUDecode, GoesOnWhenTheCodecDoesNotStart) {
  FakeEngine engine;
  UseFrames(engine);
  engine.PutFile("in.enc", Marked("ab"));
  engine.script<AudioCodecScript>().initAnswer = false;

  TestZUDecode("in.enc", "out.wav", 2, false);

  EXPECT_THAT(engine.CallsWith("Process"), SizeIs(1));
}

TEST(TestZUDecode, LeavesAWavWithoutSamplesWithoutACodec) {
  FakeEngine engine;
  UseFrames(engine);
  engine.PutFile("in.enc", Marked("ab"));

  TestZUDecode("in.enc", "out.wav", 0, false);

  EXPECT_THAT(engine.CallsWith("Codec#"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"decode elapse time: %d.\", 0)"));
  EXPECT_THAT(engine.CallsWith("CWavFileWriter"), Transcript(R"(
      CWavFileWriter#1(44100, 2, 16, out.wav)
      CWavFileWriter#1.Write(0)
      ~CWavFileWriter#1
  )"));
}

TEST(TestZUDecode, TakesAMissingFileForAnEmptyOne) {
  FakeEngine engine;
  UseFrames(engine);

  TestZUDecode("in.enc", "out.wav", 2, false);

  EXPECT_THAT(engine.CallsWith("in.enc"), ElementsAre("fopen(in.enc, rb) = null"));
  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("Write("), ElementsAre("CWavFileWriter#1.Write(0)"));
}

TEST(NewTestZUDecode, LogsTheStartOfTheCodecAndNoTime) {
  for (const bool started : {true, false}) {
    FakeEngine engine;
    UseFrames(engine);
    engine.PutFile("in.enc", Marked("ab"));
    engine.script<AudioCodecScript>().initAnswer = started;

    newTestZUDecode("in.enc", "out.wav", 44, 16000, false);

    const std::string calls = R"(
        fopen(in.enc, rb)
        fseek(in.enc, 0, 2)
        ftell(in.enc) = 4
        fseek(in.enc, 0, 0)
        fread(in.enc, 1, 4) = 4
        fclose(in.enc)
        FormatFromRawCodecId(44)
        CreateAudioCodec(256, 0) = CAudioCodec#1
        CAudioCodec#1.Init(id 44, 44100 Hz x 2, 10) = STARTED
        OutputDebugInfo("Tavik call aac decoder Init %d", STARTED)
        CAudioCodec#1.Process(4, room 400) = 0
        ~CAudioCodec#1
        CWavFileWriter#1(44100, 2, 16, out.wav)
        CWavFileWriter#1.Write(0)
        ~CWavFileWriter#1
    )";
    EXPECT_THAT(engine.calls, Transcript(std::regex_replace(calls, std::regex("STARTED"),
                                                            std::to_string(started))));
  }
}

TEST(NewTestZUDecode, TakesAdtsOf46And1) {
  for (const int id : {46, 1}) {
    EXPECT_THAT(NewDecoded(Adts(9) + Adts(300), id, false), ElementsAre(Adts(9), Adts(300))) << id;
    EXPECT_THAT(NewDecoded(Marked("ab"), id, false), IsEmpty()) << id;
  }
}

TEST(NewTestZUDecode, TakesMarkedFramesOfEveryOtherId) {
  for (const int id : {2, 22, 35, 38, 50, 51, 53, 55}) {
    EXPECT_THAT(NewDecoded(Marked("ab") + Marked("c"), id, false),
                ElementsAre(Marked("ab"), Marked("c")))
        << id;
    EXPECT_THAT(NewDecoded(Adts(9), id, false), IsEmpty()) << id;
  }
}

TEST(NewTestZUDecode, TakesPrefixedFramesOfEveryId) {
  for (const int id : {1, 2, 46, 55}) {
    EXPECT_THAT(NewDecoded(Prefixed(3, "abc") + Prefixed(1, "d"), id, true),
                ElementsAre("abc", "d"))
        << id;
  }
  EXPECT_THAT(NewDecoded(Prefixed(1, "a") + Prefixed(-4, "bcdefghi"), 2, true), ElementsAre("a"));
}

TEST(NewTestZUDecode, HandsTheCodecTheFormatOfTheIdAsItIs) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = DistinctFormat;
  int codecs = 0;
  engine.script<AudioCodecScript>().onInit = [&](const AudioStreamFormat& format) {
    EXPECT_TRUE(SameFormat(format, DistinctFormat(44)));
    ++codecs;
  };
  newTestZUDecode("in.enc", "out.wav", 44, 48000, false);
  TestZUDecode("in.enc", "out.wav", 44, false);
  EXPECT_EQ(codecs, 2);
}

TEST(NewTestZUDecode, LogsNothingWithoutACodec) {
  FakeEngine engine;
  UseFrames(engine);
  engine.PutFile("in.enc", Marked("ab"));

  newTestZUDecode("in.enc", "out.wav", 54, 16000, false);

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("Write("), ElementsAre("CWavFileWriter#1.Write(0)"));
}
