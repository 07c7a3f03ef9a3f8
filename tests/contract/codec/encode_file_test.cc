#include <gmock/gmock.h>

#include <numeric>
#include <regex>

#include "bench/codec/routines.h"
#include "codec_formats.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Frames of 8 bytes: 2 samples of 2 channels.
void UseFrames(FakeEngine& engine) {
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 48000, 2, 2); };
}

void PutWav(FakeEngine& engine, size_t samples) {
  std::vector<short> ramp(samples);
  std::iota(ramp.begin(), ramp.end(), short{1});
  engine.wavs["in.wav"] = {8000, 1, ramp};  // Another rate and channel count than the codec's.
}

std::string Bytes(const std::vector<short>& samples) {
  return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(short)};
}

std::vector<std::string> Frames(FakeEngine& engine) {
  auto frames = std::make_shared<std::vector<std::string>>();
  engine.script<AudioCodecScript>().process = [frames](int, const std::string& in) {
    frames->push_back(in);
    return std::string();
  };
  TestZUEncode("in.wav", "out.enc", 35, false);
  return *frames;
}

}  // namespace

TEST(TestZUEncode, EncodesLogsAndThenWrites) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 9);
  engine.nowMs = 100;
  engine.script<AudioCodecScript>().process = [&](int, const std::string&) {
    engine.nowMs += 7;
    return std::string("abc");
  };

  TestZUEncode("in.wav", "out.enc", 35, false);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavReader#1.ReadSamples(9) = 9
      FormatFromRawCodecId(35)
      GetExactTickCount() = 100
      CreateAudioCodec(64, 1) = CAudioCodec#1
      CAudioCodec#1.Init(id 35, 48000 Hz x 2, 2) = 1
      CAudioCodec#1.Process(8, room 8) = 3
      CAudioCodec#1.Process(8, room 8) = 3
      CAudioCodec#1.Process(8, room 8) = 3
      ~CAudioCodec#1
      GetExactTickCount() = 121
      OutputDebugInfo("encode elapse time: %d.", 21)
      fopen(out.enc, wb)
      fwrite(out.enc, 1, 9)
      fclose(out.enc)
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.Bytes("out.enc"), "abcabcabc");
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUEncode, FillsTheLastFrameUpWithSilence) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 9);
  EXPECT_THAT(Frames(engine),
              ElementsAre(Bytes({1, 2, 3, 4}), Bytes({5, 6, 7, 8}), Bytes({9, 0, 0, 0})));
}

TEST(TestZUEncode, EncodesNoFurtherFrameForAWholeNumberOfThem) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 8);
  EXPECT_THAT(Frames(engine), ElementsAre(Bytes({1, 2, 3, 4}), Bytes({5, 6, 7, 8})));
}

TEST(TestZUEncode, EncodesLessThanAFrameAsOne) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 3);
  EXPECT_THAT(Frames(engine), ElementsAre(Bytes({1, 2, 3, 0})));
}

TEST(TestZUEncode, PutsLengthsAheadOfFramesWhenAskedTo) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 8000, 1, 200); };
  PutWav(engine, 3 * 200);
  size_t frame = 0;
  const std::string answers[] = {std::string(300, 'x'), "", std::string(12, 'y')};
  engine.script<AudioCodecScript>().process = [&](int, const std::string&) {
    return answers[frame++];
  };

  TestZUEncode("in.wav", "out.enc", 2, true);

  // Nothing at all, not even a length, for the frame that gave nothing.
  EXPECT_EQ(engine.Bytes("out.enc"), std::string("\x2C\x01\0\0", 4) + answers[0] +
                                         std::string("\x0C\0\0\0", 4) + answers[2]);
  EXPECT_THAT(engine.CallsWith("room"), Transcript(R"(
      CAudioCodec#1.Process(400, room 400) = 300
      CAudioCodec#1.Process(400, room 400) = 0
      CAudioCodec#1.Process(400, room 400) = 12
  )"));
}

TEST(TestZUEncode, GoesOnWhenTheCodecDoesNotStart) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 4);
  engine.script<AudioCodecScript>().initAnswer = false;

  TestZUEncode("in.wav", "out.enc", 35, false);

  EXPECT_THAT(engine.CallsWith("Init"),
              ElementsAre("CAudioCodec#1.Init(id 35, 48000 Hz x 2, 2) = 0"));
  EXPECT_THAT(engine.CallsWith("Process"), ElementsAre("CAudioCodec#1.Process(8, room 8) = 0"));
}

TEST(TestZUEncode, LeavesAnEmptyFileAndALineWithoutACodec) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 4);

  TestZUEncode("in.wav", "out.enc", 0, true);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavReader#1.ReadSamples(4) = 4
      FormatFromRawCodecId(0)
      GetExactTickCount() = 0
      GetExactTickCount() = 0
      OutputDebugInfo("encode elapse time: %d.", 0)
      fopen(out.enc, wb)
      fwrite(out.enc, 1, 0)
      fclose(out.enc)
      ~WavReader#1
  )"));
  EXPECT_TRUE(engine.HasFile("out.enc"));
  EXPECT_EQ(engine.Bytes("out.enc"), "");
}

TEST(TestZUEncode, EncodesNothingOfAMissingInput) {
  FakeEngine engine;
  UseFrames(engine);

  TestZUEncode("in.wav", "out.enc", 35, false);

  EXPECT_THAT(engine.CallsWith("ReadSamples"), ElementsAre("WavReader#1.ReadSamples(0) = 0"));
  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_TRUE(engine.HasFile("out.enc"));
}

TEST(TestZUEncode, EndsWhenTheFormatHasNoFrames) {
  FakeEngine engine;
  PutWav(engine, 4);

  TestZUEncode("in.wav", "out.enc", 35, false);

  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_EQ(engine.Bytes("out.enc"), "");
}

TEST(TestZUEncode, KeepsQuietWhenTheOutputCannotBeWritten) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 4);
  engine.unwritable = {"out.enc"};

  TestZUEncode("in.wav", "out.enc", 35, false);

  EXPECT_THAT(engine.CallsWith("out.enc"), ElementsAre("fopen(out.enc, wb) = null"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(NewTestZUEncode, LogsTheStartOfTheCodecAndNoTime) {
  for (const bool started : {true, false}) {
    FakeEngine engine;
    UseFrames(engine);
    PutWav(engine, 5);
    engine.script<AudioCodecScript>().initAnswer = started;
    engine.script<AudioCodecScript>().process = [](int, const std::string&) { return "ab"; };

    newTestZUEncode("in.wav", "out.enc", 44, 32000, 16000, true);

    const std::string calls = R"(
        WavReader#1(in.wav)
        WavReader#1.ReadSamples(5) = 5
        FormatFromRawCodecId(44)
        CreateAudioCodec(256, 1) = CAudioCodec#1
        CAudioCodec#1.Init(id 44, 48000 Hz x 2, 2) = STARTED
        OutputDebugInfo("Tavik Create silk encoder success %d.", STARTED)
        CAudioCodec#1.Process(8, room 8) = 2
        CAudioCodec#1.Process(8, room 8) = 2
        ~CAudioCodec#1
        fopen(out.enc, wb)
        fwrite(out.enc, 1, 12)
        fclose(out.enc)
        ~WavReader#1
    )";
    EXPECT_THAT(engine.calls, Transcript(std::regex_replace(calls, std::regex("STARTED"),
                                                            std::to_string(started))));
  }
}

TEST(NewTestZUEncode, TakesNeitherItsBitRateNorItsRate) {
  std::vector<std::string> calls[2];
  for (const int run : {0, 1}) {
    FakeEngine engine;
    UseFrames(engine);
    PutWav(engine, 5);
    newTestZUEncode("in.wav", "out.enc", 44, run == 0 ? 32000 : 1, run == 0 ? 16000 : -9, false);
    calls[run] = engine.calls;
  }
  EXPECT_THAT(calls[1], Transcript(calls[0]));
}

TEST(NewTestZUEncode, HandsTheCodecTheFormatOfTheIdAsItIs) {
  FakeEngine engine;
  PutWav(engine, 5);
  engine.script<CodecFormatScript>().format = DistinctFormat;
  int codecs = 0;
  engine.script<AudioCodecScript>().onInit = [&](const AudioStreamFormat& format) {
    EXPECT_TRUE(SameFormat(format, DistinctFormat(44)));
    ++codecs;
  };
  newTestZUEncode("in.wav", "out.enc", 44, 32000, 48000, false);
  TestZUEncode("in.wav", "out.enc", 44, false);
  EXPECT_EQ(codecs, 2);
}

TEST(NewTestZUEncode, LogsNothingWithoutACodec) {
  FakeEngine engine;
  UseFrames(engine);
  PutWav(engine, 5);

  newTestZUEncode("in.wav", "out.enc", 54, 1, 1, false);

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
  EXPECT_TRUE(engine.HasFile("out.enc"));
  EXPECT_EQ(engine.Bytes("out.enc"), "");
}
