#include "engine_api/aec/aec_file_writer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "desktop/devices/background.h"
#include "engine_api/common/wav_reader.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/talk.h"
#include "support/temporary_directory.h"

namespace {

std::atomic<bool> diskStandsStill = false;
std::atomic<bool> writeStandsStill = false;

}  // namespace

// The linker calls these for fwrite.
extern "C" size_t __real_fwrite(const void* data, size_t size, size_t count, FILE* file);
extern "C" size_t __wrap_fwrite(const void* data, size_t size, size_t count, FILE* file);
extern "C" size_t __wrap_fwrite(const void* data, size_t size, size_t count, FILE* file) {
  while (diskStandsStill) {
    writeStandsStill = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return __real_fwrite(data, size, count, file);
}

namespace {

using std::chrono::steady_clock;

class AecFileWriter : public testing::Test {
 protected:
  static int Bytes(const Samples& samples) { return static_cast<int>(2 * samples.size()); }

  static Samples Content(const std::string& name) {
    zuwebrtc::WavReader reader(name);
    Samples samples(reader.num_samples());
    samples.resize(reader.ReadSamples(reader.num_samples(), samples.data()));
    EXPECT_EQ(reader.num_channels(), 1) << name;
    return samples;
  }

  TemporaryDirectory m_directory;
  CapturedStderr m_log;
};

TEST_F(AecFileWriter, RecordsEachStreamWholly) {
  const Samples far = Talk(16000, 4, 1);
  const Samples out = Talk(16000, 4, 2);
  {
    CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
    for (size_t at = 0; at < far.size(); at += 200) {
      writer.RecordOutData(&out[at], 400);
      writer.RecordFarendData(&far[at], 400);
    }
  }
  EXPECT_EQ(Content("far.wav"), far);
  EXPECT_EQ(Content("out.wav"), out);
  EXPECT_EQ(ReadFile("near.wav").size(), 44u);
  EXPECT_EQ(ReadFile("log.txt"), "16000 Hz, 1 channels, 0 samples dropped\necho: not looked for\n");
  EXPECT_EQ(m_log.Lines().size(), 1u);
}

TEST_F(AecFileWriter, LooksForEchoInTheOutput) {
  const Samples far = Talk(16000, 5, 3);
  for (const bool echo : {true, false}) {
    const Samples out = echo ? Echo(far, 16000, 120) : Talk(16000, 5, 4);
    CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
    writer.EchoDetectionStart(16000);
    writer.RecordFarendData(far.data(), Bytes(far));
    writer.RecordOutData(out.data(), Bytes(out));
    writer.EchoDetectionEnd();
    EXPECT_EQ(writer.EchoDetect(), echo ? 1 : 0);
    EXPECT_EQ(ReadFile("log.txt"), "16000 Hz, 1 channels, 0 samples dropped\necho: " +
                                       std::string(echo ? "yes\n" : "no\n"));
    if (echo) {
      EXPECT_NE(ReadFile("delay.txt").find("\n4 120\n"), std::string::npos);
    }
  }
}

TEST_F(AecFileWriter, JudgesARecordingOfLessThanASecond) {
  const Samples far = Talk(16000, 0.95, 12);
  const Samples out = Echo(far, 16000, 30);
  CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
  writer.EchoDetectionStart(16000);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.RecordOutData(out.data(), Bytes(out));
  writer.EchoDetectionEnd();
  EXPECT_EQ(writer.EchoDetect(), 1);
}

TEST_F(AecFileWriter, LooksForNoEchoAtARateThatIsTooHigh) {
  const Samples far = Talk(96000, 2, 13);
  CAecFileWriter writer(96000, 1, "far", "near", "out", "delay", "log", 0);
  writer.EchoDetectionStart(96000);
  EXPECT_EQ(m_log.Lines().size(), 1u);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.RecordOutData(far.data(), Bytes(far));
  writer.EchoDetectionEnd();
  EXPECT_EQ(writer.EchoDetect(), 0);
  EXPECT_EQ(ReadFile("log.txt"), "96000 Hz, 1 channels, 0 samples dropped\necho: not looked for\n");
}

TEST_F(AecFileWriter, FinishesItsFilesAtTheEndOfDetection) {
  const Samples far = Talk(16000, 1, 5);
  CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.EchoDetectionEnd();
  EXPECT_EQ(Content("far.wav"), far);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.EchoDetectionEnd();
  EXPECT_EQ(Content("far.wav"), far);
}

TEST_F(AecFileWriter, AveragesChannels) {
  const Samples stereo = {10, 20, -10, -30, 7};
  {
    CAecFileWriter writer(8000, 2, "far", "near", "out", "delay", "log", 0);
    writer.RecordNearendData(stereo.data(), Bytes(stereo));
  }
  EXPECT_EQ(Content("near.wav"), (Samples{15, -20}));
}

TEST_F(AecFileWriter, WritesWhatIsQueuedWhenAsked) {
  const Samples far = Talk(16000, 2, 6);
  CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.WriteAecFiles();
  EXPECT_GT(ReadFile("far.wav").size(), far.size() * 2 - 4096);
}

TEST_F(AecFileWriter, IsFinishedInTheBackgroundWhenTheProcessEnds) {
  const Samples far = Talk(16000, 20, 7);
  CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
  writer.EchoDetectionStart(16000);
  writer.RecordFarendData(far.data(), Bytes(far));
  EXPECT_TRUE(desktop::FinishBackgroundWork(std::chrono::seconds(20)));
  EXPECT_EQ(Content("far.wav"), far);
}

TEST_F(AecFileWriter, KeepsTheBeginningOnAFullDisk) {
  const Samples far = Talk(16000, 4, 8);
  {
    const FileSizeLimit limit(20000);
    CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
    for (size_t at = 0; at < far.size(); at += 200) writer.RecordFarendData(&far[at], 400);
  }
  const Samples kept = Content("far.wav");
  EXPECT_EQ(kept, Samples(far.begin(), far.begin() + 9978));
  int lines = 0;
  for (const std::string& line : m_log.Lines()) {
    lines += line.find("far.wav: cannot write further") != std::string::npos ? 1 : 0;
  }
  EXPECT_EQ(lines, 1);
}

TEST_F(AecFileWriter, NeverWaitsForASlowDiskAndDropsTheNewestAfter30Seconds) {
  const Samples second = Talk(16000, 1, 9);
  {
    CAecFileWriter writer(16000, 1, "far", "near", "out", "delay", "log", 0);
    writeStandsStill = false;
    diskStandsStill = true;
    writer.RecordFarendData(second.data(), Bytes(second));
    // What the writer takes later makes room in the middle of what is recorded then.
    while (!writeStandsStill) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const auto start = steady_clock::now();
    for (int i = 1; i < 60; ++i) writer.RecordFarendData(second.data(), Bytes(second));
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(1));
    diskStandsStill = false;
  }
  const Samples kept = Content("far.wav");
  EXPECT_GE(kept.size(), 30 * second.size());
  EXPECT_LT(kept.size(), 32 * second.size());
  for (size_t i = 0; i < kept.size(); ++i) ASSERT_EQ(kept[i], second[i % second.size()]) << i;
  const std::string dropped = std::to_string(60 * second.size() - kept.size());
  EXPECT_EQ(ReadFile("log.txt"),
            "16000 Hz, 1 channels, " + dropped + " samples dropped\necho: not looked for\n");
  ASSERT_EQ(m_log.Lines().size(), 1u);
  EXPECT_NE(m_log.Lines()[0].find(dropped + " samples dropped"), std::string::npos);
}

TEST_F(AecFileWriter, RecordsNothingInAFormatThatItDoesNotKnow) {
  const Samples far = Talk(16000, 0.1, 10);
  CAecFileWriter writer(0, 1, "far", "near", "out", "delay", "log", 0);
  writer.EchoDetectionStart(16000);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.WriteAecFiles();
  writer.EchoDetectionEnd();
  EXPECT_EQ(writer.EchoDetect(), 0);
  EXPECT_EQ(m_log.Lines().size(), 1u);
}

TEST_F(AecFileWriter, RecordsNothingUnderATagThatIsNull) {
  const Samples far = Talk(16000, 0.1, 11);
  CAecFileWriter writer(16000, 1, "far", nullptr, "out", "delay", "log", 0);
  writer.RecordFarendData(far.data(), Bytes(far));
  writer.EchoDetectionEnd();
  EXPECT_EQ(ReadFile("far.wav"), "");
  EXPECT_EQ(m_log.Lines().size(), 1u);
}

}  // namespace
