#include "fake_engine/aec/echo_detection.h"

#include <gmock/gmock.h>

#include "bench/aec/routines.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/aec_file_writer.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

constexpr const char* kFar = "C:\\aecfiles\\farend.wav";
constexpr const char* kNear = "C:\\aecfiles\\nearend.wav";
constexpr const char* kOut = "F:\\sample\\test.pcm";
constexpr const char* kSecond = "F:\\sample\\test2.pcm";

}  // namespace

TEST(TestEchoDetection, LogsTheVerdictOverAllBlocks) {
  FakeEngine engine;
  engine.PutSamples(kFar, Ramp(256 + 256, 1));
  engine.PutSamples(kNear, Ramp(256 + 256, 5001));
  engine.script<EchoDetectionScript>().result = 1;

  TestEchoDetection();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(C:\aecfiles\farend.wav, rb)
      fopen(C:\aecfiles\nearend.wav, rb)
      echo_detection_create(null, 16000, 500) = EchoDetection#1
      fread(C:\aecfiles\farend.wav, 2, 256) = 256
      fread(C:\aecfiles\nearend.wav, 2, 256) = 256
      echo_detection_process(#1, 1.., 5001.., 256)
      printf("number of frame: %d\n", 1)
      fread(C:\aecfiles\farend.wav, 2, 256) = 256
      fread(C:\aecfiles\nearend.wav, 2, 256) = 256
      echo_detection_process(#1, 257.., 5257.., 256)
      printf("number of frame: %d\n", 2)
      fread(C:\aecfiles\farend.wav, 2, 256) = 0
      get_echo_detection_result(#1) = 1
      OutputDebugInfo("residual echo detection: %d", 1)
      echo_detection_free(#1)
      fclose(C:\aecfiles\farend.wav)
      fclose(C:\aecfiles\nearend.wav)
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestEchoDetection, TakesTheHeadersForSamples) {
  FakeEngine engine;
  engine.PutFile(kFar, HeaderAndSamples('\1', Ramp(256)));
  engine.PutFile(kNear, HeaderAndSamples('\2', Ramp(256)));
  std::vector<short> far;
  std::vector<short> near;
  engine.script<EchoDetectionScript>().process = [&](const short* x, const short* d, int count) {
    far.insert(far.end(), x, x + count);
    near.insert(near.end(), d, d + count);
  };

  TestEchoDetection();

  ASSERT_THAT(far, SizeIs(512));
  EXPECT_EQ(std::vector<short>(far.begin(), far.begin() + 22), std::vector<short>(22, 257));
  EXPECT_EQ(std::vector<short>(near.begin(), near.begin() + 22), std::vector<short>(22, 514));
  EXPECT_EQ(far[22], 1);
}

// The last block's tail is that of the block before.
TEST(TestEchoDetection, ProcessesAShortBlockWithTheTailOfTheOneBefore) {
  FakeEngine engine;
  engine.PutSamples(kFar, Ramp(256 + 3, 1));
  engine.PutSamples(kNear, Ramp(256 + 1, 5001));
  std::vector<short> far;
  std::vector<short> near;
  engine.script<EchoDetectionScript>().process = [&](const short* x, const short* d, int count) {
    EXPECT_EQ(count, 256);
    far.assign(x, x + count);
    near.assign(d, d + count);
  };

  TestEchoDetection();

  std::vector<short> lastFar = Ramp(256, 1);
  std::iota(lastFar.begin(), lastFar.begin() + 3, static_cast<short>(257));
  std::vector<short> lastNear = Ramp(256, 5001);
  lastNear[0] = 5257;
  EXPECT_EQ(far, lastFar);
  EXPECT_EQ(near, lastNear);
  EXPECT_THAT(engine.CallsWith("printf"), Transcript(R"(
      printf("number of frame: %d\n", 1)
      printf("number of frame: %d\n", 2)
  )"));
}

TEST(TestEchoDetection, EndsWithTheShorterFile) {
  for (const auto& [far, near] : {std::pair{256, 3 * 256}, std::pair{3 * 256, 256}}) {
    FakeEngine engine;
    engine.PutSamples(kFar, Ramp(far));
    engine.PutSamples(kNear, Ramp(near));

    TestEchoDetection();

    EXPECT_THAT(engine.CallsWith("printf"), Transcript(R"(printf("number of frame: %d\n", 1))"));
    // Nothing is read of the near end once the far end has ended.
    EXPECT_THAT(engine.CallsWith(kNear), SizeIs(far < near ? 3 : 4));
  }
}

TEST(TestEchoDetection, LeavesItsFilesOpenWithoutADetector) {
  FakeEngine engine;
  engine.PutSamples(kFar, Ramp(256));
  engine.PutSamples(kNear, Ramp(256));
  engine.script<EchoDetectionScript>().create = false;

  TestEchoDetection();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(C:\aecfiles\farend.wav, rb)
      fopen(C:\aecfiles\nearend.wav, rb)
      echo_detection_create(null, 16000, 500) = null
  )"));
}

TEST(TestEchoDetection, SaysOnlyItsVerdictWhenAFileIsMissing) {
  FakeEngine engine;

  TestEchoDetection();

  EXPECT_THAT(engine.CallsWith("echo_detection_process"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("printf"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"residual echo detection: %d\", 0)"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestRecord, FeedsBlocksOf400BytesEvery15MsAndLeavesTheRecorderAlive) {
  FakeEngine engine;
  engine.PutSamples(kOut, Ramp(200 + 200 + 199, 1));
  engine.PutSamples(kSecond, Ramp(400, 5001));
  std::vector<short> out;
  std::vector<short> far;
  engine.script<AecFileWriterScript>().out = [&](const void* data, int bytes) {
    out.insert(out.end(), static_cast<const short*>(data),
               static_cast<const short*>(data) + bytes / 2);
  };
  engine.script<AecFileWriterScript>().farend = [&](const void* data, int bytes) {
    far.insert(far.end(), static_cast<const short*>(data),
               static_cast<const short*>(data) + bytes / 2);
  };

  TestRecord();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(F:\sample\test.pcm, rb)
      fopen(F:\sample\test2.pcm, rb)
      CAecFileWriter#1(16000, 1, far, near, out, delay, log, 0)
      CAecFileWriter#1.EchoDetectionStart(16000)
  )" + Times(2, R"(
      fread(F:\sample\test.pcm, 400, 1) = 1
      CAecFileWriter#1.RecordOutData(400)
      fread(F:\sample\test2.pcm, 1, 400) = 400
      CAecFileWriter#1.RecordFarendData(400)
      SleepMs(15)
  )") + R"(
      fread(F:\sample\test.pcm, 400, 1) = 0
      fclose(F:\sample\test.pcm)
      fclose(F:\sample\test2.pcm)
  )"));
  EXPECT_EQ(out, Ramp(400, 1));
  EXPECT_EQ(far, Ramp(400, 5001));
  EXPECT_THAT(engine.live, ElementsAre(Pair("CAecFileWriter", 1)));
}

// What the second file does not supply is the first file's block, part of it or all of it.
TEST(TestRecord, RecordsTheFirstFileAsTheFarEndOnceTheSecondHasEnded) {
  FakeEngine engine;
  engine.PutSamples(kOut, Ramp(600, 1));
  engine.PutSamples(kSecond, Ramp(250, 5001));
  std::vector<short> far;
  engine.script<AecFileWriterScript>().farend = [&](const void* data, int bytes) {
    far.insert(far.end(), static_cast<const short*>(data),
               static_cast<const short*>(data) + bytes / 2);
  };

  TestRecord();

  std::vector<short> expected = Ramp(600, 1);
  std::iota(expected.begin(), expected.begin() + 250, static_cast<short>(5001));
  EXPECT_EQ(far, expected);
}

TEST(TestRecord, GoesOnWithoutASecondFile) {
  FakeEngine engine;
  engine.PutSamples(kOut, Ramp(400));

  TestRecord();

  EXPECT_THAT(engine.CallsWith("RecordFarendData"), SizeIs(2));
  EXPECT_EQ(engine.nowMs, 30u);
}

TEST(TestRecord, SaysThatThereIsNoInput) {
  FakeEngine engine;
  engine.PutSamples(kSecond, Ramp(400));

  TestRecord();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(F:\sample\test.pcm, rb) = null
      fopen(F:\sample\test2.pcm, rb)
      puts("Can't Open Input File!")
      fclose(F:\sample\test2.pcm)
  )"));
}
