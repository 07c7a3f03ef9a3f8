#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kWav = "F:\\44100_2_new1.wav";
constexpr const char* kAac = "F:\\44100_2_out.aac";
constexpr const char* kPcm = "F:\\44100_2_out.pcm";

std::string Adts(size_t bytes) {
  std::string frame(bytes, 'a');
  frame[3] = '\0';
  frame[4] = static_cast<char>(bytes >> 3);
  frame[5] = static_cast<char>((bytes & 7) << 5);
  return frame;
}

// Leaves no zeros below the caller's frame, so that what a routine leaves unset is seldom 0.
__attribute__((noinline)) void SpoilStack() {
  volatile unsigned char memory[65536];
  for (volatile unsigned char& byte : memory) byte = 0x11;
}

// The encoder gives `aac` for its first block, and the decoder what it gets.
void UseStream(FakeEngine& engine, const std::string& aac) {
  engine.PutFile(kWav, std::string(8192, 'w'));
  engine.script<AudioCodecScript>().process = [aac](int codec, const std::string& in) {
    return codec == 1 ? aac : in;
  };
}

}  // namespace

TEST(TestZUEAACCodec, EncodesTheWholeFileAndDecodesTheStream) {
  FakeEngine engine;
  engine.PutFile(kWav, "RIFF" + std::string(3 * 8192, 's'));
  std::vector<std::string> blocks;
  engine.script<AudioCodecScript>().process = [&](int codec, const std::string& in) {
    blocks.push_back(in);
    if (codec == 1) return blocks.size() == 1 ? std::string() : Adts(10);
    return blocks.size() == 4 ? std::string() : std::string("pcm");
  };

  TestZUEAACCodec();

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateAudioCodec(16, 1) = CAudioCodec#1
      CAudioCodec#1.Init(id 1, 44100 Hz x 2, 2048) = 1
      fopen(F:\44100_2_new1.wav, rb)
      fopen(F:\44100_2_out.aac, wb)
      fread(F:\44100_2_new1.wav, 8192, 1) = 1
      CAudioCodec#1.Process(8192, room 8192) = 0
      fread(F:\44100_2_new1.wav, 8192, 1) = 1
      CAudioCodec#1.Process(8192, room 8192) = 10
      fwrite(F:\44100_2_out.aac, 1, 10)
      fread(F:\44100_2_new1.wav, 8192, 1) = 1
      CAudioCodec#1.Process(8192, room 8192) = 10
      fwrite(F:\44100_2_out.aac, 1, 10)
      fread(F:\44100_2_new1.wav, 8192, 1) = 0  # Dropped.
      fclose(F:\44100_2_new1.wav)
      fclose(F:\44100_2_out.aac)
      fopen(F:\44100_2_out.aac, rb)
      fopen(F:\44100_2_out.pcm, wb)
      CreateAudioCodec(16, 0) = CAudioCodec#2
      CAudioCodec#2.Init(id 1, 44100 Hz x 2, 2048) = 1
      fread(F:\44100_2_out.aac, 7, 1) = 1
      fread(F:\44100_2_out.aac, 3, 1) = 1
      CAudioCodec#2.Process(10, room 8192) = 0
      fread(F:\44100_2_out.aac, 7, 1) = 1
      fread(F:\44100_2_out.aac, 3, 1) = 1
      CAudioCodec#2.Process(10, room 8192) = 3
      fwrite(F:\44100_2_out.pcm, 1, 3)
      fread(F:\44100_2_out.aac, 7, 1) = 0
      fclose(F:\44100_2_out.pcm)
      fclose(F:\44100_2_out.aac)
  )"));
  EXPECT_EQ(blocks[0].substr(0, 5), "RIFFs");  // The header is encoded with the rest.
  EXPECT_EQ(blocks[3], Adts(10));
  EXPECT_THAT(engine.live, ElementsAre(std::pair("CAudioCodec", 2)));  // Neither is deleted.
}

TEST(TestZUEAACCodec, FillsInAllOfTheFormatButTheBitRate) {
  FakeEngine engine;
  std::vector<AudioStreamFormat> formats;
  engine.script<AudioCodecScript>().onInit = [&](const AudioStreamFormat& format) {
    formats.push_back(format);
  };
  SpoilStack();

  TestZUEAACCodec();

  ASSERT_THAT(formats, SizeIs(2));
  for (const AudioStreamFormat& format : formats) {
    EXPECT_EQ(format.iCodec, kAudioCodecAAC);
    EXPECT_EQ(format.iFlag, 0);
    EXPECT_EQ(format.iBitsOfSample, 16);
    EXPECT_EQ(format.iProfile, 29);
    EXPECT_EQ(format.iQuality, 0);
    EXPECT_EQ(format.iBytesOfCodedFrame, 0);
    EXPECT_EQ(format.iNumOfFramesInPacket, 2);
  }
}

TEST(TestZUEAACCodec, EndsAtALengthThatIsShorterThanAHeader) {
  for (const size_t bytes : {0U, 1U, 6U, 7U}) {
    FakeEngine engine;
    std::string stream = Adts(9) + Adts(9);
    stream[9 + 4] = '\0';
    stream[9 + 5] = static_cast<char>(bytes << 5);
    UseStream(engine, stream + "more of it");
    TestZUEAACCodec();
    EXPECT_THAT(engine.CallsWith("#2.Process"),
                ElementsAre("CAudioCodec#2.Process(9, room 8192) = 9"))
        << bytes;
    // Nothing is read of a frame without a length, and no byte of one that is all header.
    EXPECT_EQ(engine.CallsWith("fread(F:\\44100_2_out.aac").back(),
              bytes == 7 ? "fread(F:\\44100_2_out.aac, 0, 1) = 0"
                         : "fread(F:\\44100_2_out.aac, 7, 1) = 1")
        << bytes;
  }
}

TEST(TestZUEAACCodec, EndsInsideAFrame) {
  FakeEngine engine;
  std::string stream = Adts(9);
  stream.append(Adts(300), 0, 299);
  UseStream(engine, stream);
  TestZUEAACCodec();
  EXPECT_THAT(engine.CallsWith("#2.Process"), SizeIs(1));
}

TEST(TestZUEAACCodec, MisreadsALengthOf2048AndMore) {
  FakeEngine engine;
  std::string frame = Adts(2047);
  frame[3] = '\xFF';  // 6144 more, as 13 bits.
  UseStream(engine, frame);
  TestZUEAACCodec();
  EXPECT_THAT(engine.CallsWith("#2.Process"),
              ElementsAre("CAudioCodec#2.Process(2047, room 8192) = 2047"));
}

TEST(TestZUEAACCodec, LeavesEmptyFilesWhenTheInputIsMissing) {
  FakeEngine engine;
  TestZUEAACCodec();
  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  for (const char* name : {kAac, kPcm}) {
    EXPECT_TRUE(engine.HasFile(name));
    EXPECT_EQ(engine.Bytes(name), "");
  }
}

TEST(TestZUEAACCodec, LeavesEmptyFilesWithoutACodec) {
  FakeEngine engine;
  engine.PutFile(kWav, std::string(8192, 's'));
  engine.script<AudioCodecScript>().isAvailable = [](auto, auto) { return false; };
  TestZUEAACCodec();
  EXPECT_TRUE(engine.HasFile(kPcm));
}

TEST(TestZUEldCodec, EncodesBlocksOfTheEncodersSizeAndDecodesNothing) {
  FakeEngine engine;
  engine.PutFile("yedegangqinqu_Fs32000_Ch1.pcm", std::string(1000 + 1000 + 999, 's'));
  engine.script<AudioCodecScript>().encoderSize = 1000;
  int block = 0;
  engine.script<AudioCodecScript>().process = [&](int, const std::string&) {
    return ++block == 1 ? std::string() : std::string("eld");
  };

  TestZUEldCodec();

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateAudioCodec(256, 1) = CAudioCodec#1
      CAudioCodec#1.Init(id 38, 16000 Hz x 1, 1024) = 1
      CAudioCodec#1.GetEncoderSize() = 1000
      printf("encoderSize = %d\n", 1000)
      fopen(yedegangqinqu_Fs32000_Ch1.pcm, rb)
      fopen(eld_out.aac, wb)
      fread(yedegangqinqu_Fs32000_Ch1.pcm, 1000, 1) = 1
      CAudioCodec#1.Process(1000, room 1000) = 0
      fread(yedegangqinqu_Fs32000_Ch1.pcm, 1000, 1) = 1
      CAudioCodec#1.Process(1000, room 1000) = 3
      fwrite(eld_out.aac, 1, 3)
      fread(yedegangqinqu_Fs32000_Ch1.pcm, 1000, 1) = 0
      ~CAudioCodec#1
      fclose(yedegangqinqu_Fs32000_Ch1.pcm)
      fclose(eld_out.aac)
      puts("Encode Done.")
      puts("Decode Done.")
  )"));
  EXPECT_EQ(engine.Bytes("eld_out.aac"), "eld");
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUEldCodec, FillsInAllOfTheFormatButTheBitRate) {
  FakeEngine engine;
  std::vector<AudioStreamFormat> formats;
  engine.script<AudioCodecScript>().onInit = [&](const AudioStreamFormat& format) {
    formats.push_back(format);
  };
  SpoilStack();

  TestZUEldCodec();

  ASSERT_THAT(formats, SizeIs(1));
  EXPECT_EQ(formats[0].iCodec, kAudioCodecEldAAC);
  EXPECT_EQ(formats[0].iFlag, 0);
  EXPECT_EQ(formats[0].iBitsOfSample, 16);
  EXPECT_EQ(formats[0].iProfile, 7);
  EXPECT_EQ(formats[0].iQuality, 0);
  EXPECT_EQ(formats[0].iBytesOfCodedFrame, 0);
  EXPECT_EQ(formats[0].iNumOfFramesInPacket, 1);
}

TEST(TestZUEldCodec, EndsAtOnceWithACodecThatKeepsTheInterfacesOwnSize) {
  FakeEngine engine;
  engine.PutFile("yedegangqinqu_Fs32000_Ch1.pcm", std::string(5000, 's'));

  TestZUEldCodec();

  EXPECT_THAT(engine.CallsWith("printf"), ElementsAre("printf(\"encoderSize = %d\\n\", 0)"));
  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_TRUE(engine.HasFile("eld_out.aac"));
  EXPECT_EQ(engine.Bytes("eld_out.aac"), "");
  EXPECT_THAT(engine.CallsWith("puts"), Transcript(R"(
      puts("Encode Done.")
      puts("Decode Done.")
  )"));
}

TEST(TestZUEldCodec, SaysBothLinesWithoutInputAndWithoutACodec) {
  FakeEngine engine;
  engine.script<AudioCodecScript>().isAvailable = [](auto, auto) { return false; };
  TestZUEldCodec();
  EXPECT_THAT(engine.CallsWith("puts"), SizeIs(2));
}
