#include "fake_engine/codec/audio_processor.h"

#include <gmock/gmock.h>

#include <numeric>

#include "bench/codec/routines.h"
#include "codec_formats.h"
#include "fake_engine/codec/net_codec_stream_format.h"
#include "fake_engine/codec/two_byte_header.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/platform/paths.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// The records that the routines use, each field with a value of its own.
void FillFormats(FakeEngine& engine) {
  engine.script<NetCodecStreamFormatScript>().fill = [](ZUAudio::NetCodecStreamFormat& formats) {
    formats.iNetSilk16KFormat.iAudioFormat = {
        kAudioCodecSilk, 1, 16000, 1, 16, 2, 320, 3, 5, 4, 1, 2};
    formats.iNetPcmFormat.iAudioFormat = {kAudioCodecPCM, 5, 96000, 6,  16, 7,
                                          2048,           8, 9,     10, 11, -1};
    formats.iNetAACPlusFormat.iAudioFormat = {kAudioCodecAAC, 12, 44100, 2,  16, 24000,
                                              2048,           29, 13,    14, 2,  1};
  };
}

std::vector<int> Fields(const AudioStreamFormat& format) {
  return {format.iCodec,
          format.iFlag,
          format.iSampleRate,
          format.iNumOfChannels,
          format.iBitsOfSample,
          format.iBitRate,
          format.iSamplesOfFrame,
          format.iProfile,
          format.iQuality,
          format.iBytesOfCodedFrame,
          format.iNumOfFramesInPacket,
          format.iRawCodecId};
}

// A frame that starts with its length in bytes.
std::string Frame(uint16_t bytes, char fill) {
  std::string frame(reinterpret_cast<const char*>(&bytes), sizeof bytes);
  frame.append(static_cast<size_t>(bytes - 2), fill);
  return frame;
}

// What has been written so far to a stream that stays open.
std::string Flushed(const FakeEngine& engine, const char* name) {
  fflush(nullptr);
  return engine.Bytes(name);
}

}  // namespace

TEST(TestSilkPackerOut, HandsFramesOverWithTheirHeaderAndLeavesAllOpen) {
  FakeEngine engine;
  engine.PutFile("packer.out", Frame(5, 'a') + Frame(3, 'b'));
  std::vector<std::string> frames;
  engine.script<AudioProcessorScript>().process = [&](const std::string& in) {
    frames.push_back(in);
    return frames.size() == 1 ? std::string("pcm1") : std::string();
  };

  TestSilkPackerOut();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(packer.out, rb)
      fopen(packer.pcm, wb)
      NetCodecStreamFormat#1()
      AudioProcessor::Create(null) = AudioProcessor#1
      fread(packer.out, 2, 1) = 1
      fseek(packer.out, -2, 1)
      ParseTwoByteHeader(0x0005) = 5
      fread(packer.out, 5, 1) = 1
      AudioProcessor#1.ProcessData(5, room 65535, 0, 0) = 4
      fwrite(packer.pcm, 1, 4)
      fread(packer.out, 2, 1) = 1
      fseek(packer.out, -2, 1)
      ParseTwoByteHeader(0x0003) = 3
      fread(packer.out, 3, 1) = 1
      AudioProcessor#1.ProcessData(3, room 65535, 0, 0) = 0
      fwrite(packer.pcm, 1, 0)  # Whatever came out.
      fread(packer.out, 2, 1) = 0
  )"));
  EXPECT_THAT(frames, ElementsAre(Frame(5, 'a'), Frame(3, 'b')));
  EXPECT_THAT(engine.live, ElementsAre(std::pair("AudioProcessor", 1)));
  EXPECT_EQ(Flushed(engine, "packer.pcm"), "pcm1");
}

TEST(TestSilkPackerOut, ChangesRateAndChannelsOfThePcmRecordAlone) {
  FakeEngine engine;
  FillFormats(engine);

  TestSilkPackerOut();

  const auto& formats = engine.script<AudioProcessorScript>().formats;
  ASSERT_THAT(formats, SizeIs(1));
  EXPECT_THAT(Fields(formats[0].first),
              ElementsAre(kAudioCodecSilk, 1, 16000, 1, 16, 2, 320, 3, 5, 4, 1, 2));
  EXPECT_THAT(Fields(formats[0].second),
              ElementsAre(kAudioCodecPCM, 5, 16000, 1, 16, 7, 2048, 8, 9, 10, 11, -1));
}

TEST(TestSilkPackerOut, EndsAtAFrameOfNothing) {
  FakeEngine engine;
  engine.PutFile("packer.out", Frame(3, 'a') + std::string("\0\0", 2) + Frame(3, 'b'));
  TestSilkPackerOut();
  EXPECT_THAT(engine.CallsWith("ProcessData"), SizeIs(1));
}

TEST(TestSilkPackerOut, EndsInsideAFrame) {
  FakeEngine engine;
  engine.PutFile("packer.out", Frame(3, 'a') + Frame(9, 'b').substr(0, 8));
  TestSilkPackerOut();
  EXPECT_THAT(engine.CallsWith("ProcessData"), SizeIs(1));
  EXPECT_EQ(engine.calls.back(), "fread(packer.out, 9, 1) = 0");
}

TEST(TestSilkPackerOut, EndsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;
  TestSilkPackerOut();
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(packer.out, rb) = null
      fopen(packer.pcm, wb)
      NetCodecStreamFormat#1()
      AudioProcessor::Create(null) = AudioProcessor#1
  )"));
}

TEST(TestSilkPackerOut, KeepsTheLow16BitsOfALength) {
  FakeEngine engine;
  engine.PutFile("packer.out", Frame(4, 'a'));
  engine.script<TwoByteHeaderScript>().parse = [](unsigned short) { return 65536 + 4; };
  TestSilkPackerOut();
  EXPECT_THAT(engine.CallsWith("ProcessData"),
              ElementsAre("AudioProcessor#1.ProcessData(4, room 65535, 0, 0) = 0"));
}

TEST(TestSilkPackerOut, TakesTheLongestFrameThatAHeaderCanSay) {
  FakeEngine engine;
  engine.PutFile("packer.out", Frame(65535, 'a') + Frame(3, 'b'));
  std::string given;
  engine.script<AudioProcessorScript>().process = [&](const std::string& in) {
    given += in;
    return std::string(65535, 'p');
  };
  TestSilkPackerOut();
  EXPECT_EQ(given, Frame(65535, 'a') + Frame(3, 'b'));
  EXPECT_EQ(Flushed(engine, "packer.pcm").size(), 2U * 65535);
}

TEST(TestZUAudioProcessor, Encodes4096SamplesAtATime) {
  FakeEngine engine;
  FillFormats(engine);
  engine.script<PathsScript>().documents = "docs-";  // No separator is added.
  std::vector<short> ramp(4096 + 4096 + 4095);
  std::iota(ramp.begin(), ramp.end(), short{0});
  engine.wavs["docs-player.wav"] = {8000, 1, ramp};
  std::string given;
  engine.script<AudioProcessorScript>().process = [&](const std::string& in) {
    given += in;
    return given.size() == 8192 ? std::string() : std::string("adts");
  };

  TestZUAudioProcessor();

  EXPECT_THAT(engine.calls, Transcript(R"(
      GetIosDocPath()
      GetIosDocPath()
      WavReader#1(docs-player.wav)
      fopen(docs-player.aac, wb)
      NetCodecStreamFormat#1()
      AudioProcessor::Create(null) = AudioProcessor#1
      WavReader#1.ReadSamples(4096) = 4096
      AudioProcessor#1.ProcessData(8192, room 65536, 0, 0) = 0
      fwrite(docs-player.aac, 1, 0)
      WavReader#1.ReadSamples(4096) = 4096
      AudioProcessor#1.ProcessData(8192, room 65536, 0, 0) = 4
      fwrite(docs-player.aac, 1, 4)
      WavReader#1.ReadSamples(4096) = 4095
      fclose(docs-player.aac)
      AudioProcessor::Release(AudioProcessor#1)
      puts("Encode End......")
      ~WavReader#1
  )"));
  EXPECT_EQ(
      given.compare(0, std::string::npos, reinterpret_cast<const char*>(ramp.data()), 2 * 8192), 0);
  EXPECT_EQ(engine.Bytes("docs-player.aac"), "adts");
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUAudioProcessor, ChangesRateAndChannelsOfThePcmRecordAlone) {
  FakeEngine engine;
  FillFormats(engine);

  TestZUAudioProcessor();

  const auto& formats = engine.script<AudioProcessorScript>().formats;
  ASSERT_THAT(formats, SizeIs(1));
  EXPECT_THAT(Fields(formats[0].first),
              ElementsAre(kAudioCodecPCM, 5, 44100, 2, 16, 7, 2048, 8, 9, 10, 11, -1));
  EXPECT_THAT(Fields(formats[0].second),
              ElementsAre(kAudioCodecAAC, 12, 44100, 2, 16, 24000, 2048, 29, 13, 14, 2, 1));
}

TEST(TestZUAudioProcessor, KeepsTheBlockLengthIn16BitsAndWithinItsArray) {
  for (const auto& [samples, blocks] :
       {std::pair(65536 + 5000, 2), {8192, 1}, {8193, 0}, {32768, 0}, {65536, 0}}) {
    FakeEngine engine;
    engine.script<NetCodecStreamFormatScript>().fill =
        [length = samples](ZUAudio::NetCodecStreamFormat& formats) {
          formats.iNetAACPlusFormat.iAudioFormat.iSamplesOfFrame = length;
          formats.iNetAACPlusFormat.iAudioFormat.iNumOfFramesInPacket = 1;
        };
    engine.wavs["player.wav"] = {44100, 2, std::vector<short>(10001)};
    TestZUAudioProcessor();
    EXPECT_THAT(engine.CallsWith("ProcessData"), SizeIs(blocks)) << samples;
  }
}

TEST(TestZUAudioProcessor, LeavesAnEmptyFileWhenTheInputIsMissing) {
  FakeEngine engine;
  FillFormats(engine);

  TestZUAudioProcessor();

  EXPECT_THAT(engine.CallsWith("ProcessData"), IsEmpty());
  EXPECT_TRUE(engine.HasFile("player.aac"));
  EXPECT_EQ(engine.Bytes("player.aac"), "");
  EXPECT_THAT(engine.CallsWith("puts"), ElementsAre("puts(\"Encode End......\")"));
}
