#include "fake_engine/aec/echo_detection.h"

#include <gmock/gmock.h>

#include "bench/aec/routines.h"
#include "contract/aec/pcm_files.h"
#include "fake_engine/aec/aec_file_writer.h"
#include "fake_engine/fake_engine.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

constexpr const char* kFar = "C:\\aecfiles\\farend.wav";
constexpr const char* kNear = "C:\\aecfiles\\nearend.wav";
constexpr const char* kOut = "F:\\sample\\test.pcm";
constexpr const char* kSecond = "F:\\sample\\test2.pcm";

std::string Frame(int number) {
  return "printf(\"number of frame: %d\\n\", " + std::to_string(number) + ")";
}

}  // namespace

TEST(TestEchoDetection, LogsTheVerdictOverAllBlocks) {
  FakeEngine engine;
  engine.PutSamples(kFar, Ramp(256 + 256, 1));
  engine.PutSamples(kNear, Ramp(256 + 256, 5001));
  engine.script<EchoDetectionScript>().result = 1;

  TestEchoDetection();

  const std::string far = kFar;
  const std::string near = kNear;
  EXPECT_THAT(
      engine.calls,
      ElementsAre("fopen(" + far + ", rb)", "fopen(" + near + ", rb)",
                  "echo_detection_create(null, 16000, 500) = EchoDetection#1",
                  "fread(" + far + ", 2, 256) = 256", "fread(" + near + ", 2, 256) = 256",
                  "echo_detection_process(#1, 1.., 5001.., 256)", Frame(1),
                  "fread(" + far + ", 2, 256) = 256", "fread(" + near + ", 2, 256) = 256",
                  "echo_detection_process(#1, 257.., 5257.., 256)", Frame(2),
                  "fread(" + far + ", 2, 256) = 0", "get_echo_detection_result(#1) = 1",
                  "OutputDebugInfo(\"residual echo detection: %d\", 1)", "echo_detection_free(#1)",
                  "fclose(" + far + ")", "fclose(" + near + ")"));
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
  EXPECT_THAT(engine.CallsWith("printf"), ElementsAre(Frame(1), Frame(2)));
}

TEST(TestEchoDetection, EndsWithTheShorterFile) {
  for (const auto& [far, near] : {std::pair{256, 3 * 256}, std::pair{3 * 256, 256}}) {
    FakeEngine engine;
    engine.PutSamples(kFar, Ramp(far));
    engine.PutSamples(kNear, Ramp(near));

    TestEchoDetection();

    EXPECT_THAT(engine.CallsWith("printf"), ElementsAre(Frame(1)));
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

  EXPECT_THAT(engine.calls, ElementsAre("fopen(" + std::string(kFar) + ", rb)",
                                        "fopen(" + std::string(kNear) + ", rb)",
                                        "echo_detection_create(null, 16000, 500) = null"));
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

  const std::string first = kOut;
  const std::string second = kSecond;
  const std::vector<std::string> block = {"fread(" + first + ", 400, 1) = 1",
                                          "CAecFileWriter#1.RecordOutData(400)",
                                          "fread(" + second + ", 1, 400) = 400",
                                          "CAecFileWriter#1.RecordFarendData(400)", "SleepMs(15)"};
  std::vector<std::string> expected = {"fopen(" + first + ", rb)", "fopen(" + second + ", rb)",
                                       "CAecFileWriter#1(16000, 1, far, near, out, delay, log, 0)",
                                       "CAecFileWriter#1.EchoDetectionStart(16000)"};
  Append(expected, block);
  Append(expected, block);
  Append(expected,
         {"fread(" + first + ", 400, 1) = 0", "fclose(" + first + ")", "fclose(" + second + ")"});
  EXPECT_THAT(engine.calls, ElementsAreArray(expected));
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

  const std::string first = kOut;
  const std::string second = kSecond;
  EXPECT_THAT(engine.calls,
              ElementsAre("fopen(" + first + ", rb) = null", "fopen(" + second + ", rb)",
                          "puts(\"Can't Open Input File!\")", "fclose(" + second + ")"));
}
