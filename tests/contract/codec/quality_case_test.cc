#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "codec_formats.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A codec of 10 ms frames that gives one marked packet per frame and frames of its own for packets.
void UseCodec(FakeEngine& engine) {
  engine.script<CodecFormatScript>().format = [](int id) {
    return CodecFormat(id, id == 51 ? 48000 : 16000, 1, id == 51 ? 480 : 160);
  };
  engine.script<AudioCodecScript>().process = [&](int codec, const std::string& in) {
    engine.nowMs += 10;
    return codec % 2 == 1 ? std::string("\x02\xFC") + in.substr(0, 2) : std::string(960, '\1');
  };
}

std::vector<std::string> FileCalls(const FakeEngine& engine) {
  std::vector<std::string> found;
  for (const std::string& call : engine.calls) {
    for (const char* part : {"WavReader#", "WavWriter#", "WavFileWriter#", "fopen"}) {
      if (call.rfind(part, 0) == 0 || call.rfind(std::string("C") + part, 0) == 0) {
        if (call.find('.') != std::string::npos && call.find("Samples") == std::string::npos &&
            call.find("Write(") == std::string::npos) {
          found.push_back(call);
        }
        break;
      }
    }
  }
  return found;
}

}  // namespace

TEST(TestZUCodecNew, EncodesDecodesAndGoesTo16KhzMono) {
  FakeEngine engine;
  UseCodec(engine);
  engine.wavs["in.wav"] = {16000, 1, std::vector<short>(160)};
  engine.nowMs = 1000;

  TestZUCodecNew("in.wav", "out.wav", 2);

  EXPECT_THAT(FileCalls(engine), Transcript(R"(
      WavReader#1(in.wav)
      fopen(out.wav.enc, wb)
      fopen(out.wav.enc, rb)
      CWavFileWriter#1(16000, 1, 16, out.wav.dec.wav)
      WavReader#2(out.wav.dec.wav)
      WavWriter#1(out.wav, 16000, 1)
  )"));
  EXPECT_THAT(engine.CallsWith("CreateAudioCodec("), Transcript(R"(
      CreateAudioCodec(4, 1) = CAudioCodec#1
      CreateAudioCodec(4, 0) = CAudioCodec#2
  )"));
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), Transcript(R"(
      OutputDebugInfo("encode elapse time: %d.", 10)
      OutputDebugInfo("decode elapse time: %d.", 10)
      OutputDebugInfo("total elapse time:%d %d.", 10, 20)
  )"));
  EXPECT_EQ(engine.calls.front(), "GetExactTickCount() = 1000");
  EXPECT_EQ(engine.Bytes("out.wav.enc").substr(0, 2), "\x02\xFC");  // Without prefixes.
  EXPECT_EQ(engine.wavs["out.wav"].samples.size(), 480U);           // Both files stay beside it.
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUCodecNew, DecodesWhat50EncodedAs51) {
  for (const auto& [id, decoderId] : {std::pair(50, 51), {51, 51}, {2, 2}, {52, 52}}) {
    FakeEngine engine;
    UseCodec(engine);
    engine.wavs["in.wav"] = {16000, 1, std::vector<short>(160)};

    TestZUCodecNew("in.wav", "out.wav", id);

    EXPECT_THAT(engine.CallsWith("FormatFromRawCodecId"),
                Transcript("FormatFromRawCodecId(" + std::to_string(id) + ")\n" +
                           "FormatFromRawCodecId(" + std::to_string(decoderId) + ")"));
  }
}

TEST(CalAACMos, MakesTheFilesOfOneCase) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 44100, 2, 441); };
  engine.script<AudioCodecScript>().process = [&](int codec, const std::string&) {
    engine.nowMs += 5;
    return codec == 1 ? std::string(
                            "\x01\xFC"
                            "a")
                      : std::string(8, '\1');
  };
  engine.wavs["in.wav"] = {8000, 1, std::vector<short>(160)};
  char in[] = "in.wav";
  char out[] = "ignored.wav";

  calAACMos(in, out, 35, 64000, 16000);

  // The reference is made from the resampled input, and nothing is called ".deg.wav".
  EXPECT_THAT(FileCalls(engine), Transcript(R"(
      WavReader#1(in.wav)
      WavWriter#1(44100_2_64000.res.wav, 44100, 2)
      WavReader#2(44100_2_64000.res.wav)
      WavWriter#2(44100_2_64000.ref.wav, 44100, 1)
      WavReader#3(44100_2_64000.res.wav)
      fopen(44100_2_64000.enc.wav, wb)
      fopen(44100_2_64000.enc.wav, rb)
      CWavFileWriter#1(44100, 2, 16, 44100_2_64000.dec.wav)
  )"));
  EXPECT_THAT(engine.CallsWith("deg.wav"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("ignored"), IsEmpty());
  EXPECT_EQ(engine.calls[0], "GetExactTickCount() = 0");
  EXPECT_EQ(engine.calls[1], "FormatFromRawCodecId(35)");
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), Transcript(R"(
      OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
      OutputDebugInfo("Tavik call aac decoder Init %d", 1)
      OutputDebugInfo("total elapse time:%d %d.", 10, 20)
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(CalAACMos, NamesItsFilesAfterTheBitRateAndNothingElse) {
  std::string streams[2];
  for (const int run : {0, 1}) {
    FakeEngine engine;
    UseCodec(engine);
    engine.wavs["in.wav"] = {16000, 1, std::vector<short>(160, 7)};
    char in[] = "in.wav";
    char out[] = "x";
    calAACMos(in, out, 2, run == 0 ? 9 : -1, run);
    streams[run] = engine.Bytes(run == 0 ? "16000_1_9.enc.wav" : "16000_1_-1.enc.wav");
  }
  EXPECT_FALSE(streams[0].empty());
  EXPECT_EQ(streams[0], streams[1]);
}

TEST(CalAACMos, MakesAReferenceAlsoForAMonoCodec) {
  FakeEngine engine;
  UseCodec(engine);
  engine.wavs["in.wav"] = {16000, 1, std::vector<short>(320, 7)};
  char in[] = "in.wav";
  char out[] = "x";

  calAACMos(in, out, 2, 9, 0);

  EXPECT_EQ(engine.wavs["16000_1_9.ref.wav"].channels, 1);
  EXPECT_EQ(engine.wavs["16000_1_9.ref.wav"].samples, std::vector<short>(320, 7));
  EXPECT_EQ(engine.Bytes("16000_1_9.enc.wav"),
            "\x02\xFC\a" + std::string(1, '\0') + "\x02\xFC\a" + std::string(1, '\0'))
      << "frame after frame, without lengths ahead of them";
}

TEST(CalAACMos, Decodes50And51As51ThroughTheOtherDriver) {
  for (const int id : {50, 51}) {
    FakeEngine engine;
    UseCodec(engine);
    char in[] = "in.wav";
    char out[] = "x";
    calAACMos(in, out, id, 18000, 16000);
    EXPECT_EQ(engine.CallsWith("FormatFromRawCodecId").back(), "FormatFromRawCodecId(51)");
    EXPECT_THAT(engine.CallsWith("decode elapse"),
                ElementsAre("OutputDebugInfo(\"decode elapse time: %d.\", 0)"));
    EXPECT_THAT(engine.CallsWith("Tavik call aac"), IsEmpty());
  }
  for (const int id : {49, 52, 46}) {
    FakeEngine engine;
    UseCodec(engine);
    char in[] = "in.wav";
    char out[] = "x";
    calAACMos(in, out, id, 18000, 16000);
    EXPECT_EQ(engine.CallsWith("FormatFromRawCodecId").back(),
              "FormatFromRawCodecId(" + std::to_string(id) + ")");
    EXPECT_THAT(engine.CallsWith("decode elapse"), IsEmpty());
  }
}
