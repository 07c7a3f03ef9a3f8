#include "desktop/files/recorded_file.h"

#include <gmock/gmock.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "desktop/files/open_audio_file.h"
#include "desktop/live/wait.h"
#include "desktop/mixing/parts/audio_saver.h"
#include "support/captured_stderr.h"
#include "support/temporary_directory.h"

namespace {

using desktop::DeviceFormat;
using desktop::FileSink;
using desktop::Microphone;
using desktop::RecordedFile;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr DeviceFormat kFormat = {8000, 1};

// A disk that writes nothing until it is let go.
struct Disk {
  std::latch goes{1};
  std::atomic<size_t> frames = 0;  // That were written.
  std::atomic<bool> closed = false;
};

class DiskWriter : public desktop::FileWriter {
 public:
  explicit DiskWriter(Disk& disk) : m_disk(disk) {}
  ~DiskWriter() override { m_disk.closed = true; }
  DeviceFormat Format() const override { return kFormat; }
  void Add(const short*, size_t frames) override { m_waiting += frames; }
  bool Flush() override {
    m_disk.goes.wait();
    m_disk.frames += std::exchange(m_waiting, 0);
    return true;
  }
  bool Finish() override { return Flush(); }

 private:
  Disk& m_disk;
  size_t m_waiting = 0;
};

std::unique_ptr<FileSink> SinkOn(Disk& disk) {
  return std::make_unique<FileSink>("a.wav", kFormat, std::make_unique<DiskWriter>(disk));
}

TEST(RecordedFile, WritesAllAfterAPauseOfTheDiskOfLessThanTenSeconds) {
  const CapturedStderr log;
  Disk disk;
  const std::vector<short> block(80);
  RecordedFile file(SinkOn(disk), kFormat);
  for (int i = 0; i < 999; ++i) file.Put(block.data());
  disk.goes.count_down();
  file.Finish();
  EXPECT_EQ(disk.frames, 999U * 80);
  EXPECT_TRUE(disk.closed);
  EXPECT_THAT(log.Lines(), ElementsAre());
}

TEST(RecordedFile, TellsWhatADiskWasTooSlowFor) {
  const CapturedStderr log;
  const uint64_t before = desktop::AllDeviceFailures().inputs;
  Disk disk;
  const std::vector<short> block(80);
  RecordedFile file(SinkOn(disk), kFormat);
  for (int i = 0; i < 1500; ++i) file.Put(block.data());
  disk.goes.count_down();
  file.Finish();
  const uint64_t lost = desktop::AllDeviceFailures().inputs - before;
  EXPECT_GT(lost, 400U);
  EXPECT_EQ(disk.frames, (1500 - lost) * 80);
  EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(" a.wav: the disk was too slow, " +
                                                 std::to_string(lost) + " blocks of 10 ms")));
}

// The first 200 ms are on the way to the disk when it stops.
TEST(RecordedFile, GivesUpADiskThatWritesNothing) {
  const CapturedStderr log;
  const uint64_t before = desktop::AllDeviceFailures().inputs;
  Disk disk;
  const std::vector<short> block(80);
  {
    RecordedFile file(SinkOn(disk), kFormat, milliseconds(200));
    for (int i = 0; i < 30; ++i) file.Put(block.data());
  }
  EXPECT_EQ(desktop::AllDeviceFailures().inputs, before + 11);
  EXPECT_THAT(log.Lines(),
              ElementsAre(HasSubstr(" a.wav: given up because the disk writes nothing, "
                                    "11 blocks of 10 ms are lost")));
  EXPECT_FALSE(disk.closed);
  disk.goes.count_down();
  EXPECT_TRUE(WaitUntil([&] { return disk.closed.load(); }));
}

// Does not return from its first call until it is let go.
class Held : public desktop::CaptureListener {
 public:
  void OnCaptured(const desktop::CapturedBlock&) override {
    called = true;
    goes.wait();
  }
  std::atomic<bool> called = false;
  std::latch goes{1};
};

uint64_t BlocksIn(const char* name) {
  std::unique_ptr<desktop::FileSource> source;
  desktop::OpenAudioFile(name, &source);
  return source != nullptr ? source->Frames() / 80 : 0;
}

class SavedMicrophone : public testing::Test {
 protected:
  SavedMicrophone() {
    microphone.Add(&held);
    saver = std::make_unique<desktop::CaptureSaver>(desktop::CaptureSaver::What::kMicrophonePath,
                                                    microphone,
                                                    FileSink::Create("a.wav", kFormat, false));
  }
  ~SavedMicrophone() override { desktop::UseNullDevices(1); }

  const TemporaryDirectory directory;
  Held held;
  const std::atomic<bool> cleans = false;
  Microphone microphone{kFormat, cleans};
  std::unique_ptr<desktop::CaptureSaver> saver;
};

// The saver waits for more than a second for what another listener holds up.
TEST_F(SavedMicrophone, IsSavedWholeWhenTheSaverIsStopped) {
  desktop::UseNullDevices(1);
  ASSERT_TRUE(microphone.Start());
  ASSERT_TRUE(WaitUntil([&] { return microphone.Device().Blocks() >= 10; }));
  const uint64_t captured = microphone.Device().Blocks();
  std::thread letsGo([&] {
    std::this_thread::sleep_for(milliseconds(1300));
    held.goes.count_down();
  });
  saver = nullptr;
  letsGo.join();
  EXPECT_GE(BlocksIn("a.wav"), captured);
  microphone.Stop();
  microphone.Remove(&held);
}

TEST_F(SavedMicrophone, TellsTheBlocksThatItsListenersWereTooSlowFor) {
  const CapturedStderr log;
  const uint64_t before = desktop::AllDeviceFailures().inputs;
  desktop::UseNullDevices(50);
  ASSERT_TRUE(microphone.Start());
  ASSERT_TRUE(WaitUntil([&] { return microphone.Device().Blocks() >= 400; }));
  held.goes.count_down();
  microphone.Stop();
  const uint64_t captured = microphone.Device().Blocks();
  saver = nullptr;
  microphone.Remove(&held);
  const uint64_t lost = captured - BlocksIn("a.wav");
  EXPECT_GE(lost, 199U);
  EXPECT_GE(microphone.Device().Failures(), lost);
  EXPECT_EQ(desktop::AllDeviceFailures().inputs, before + microphone.Device().Failures());
  EXPECT_THAT(log.Text(), HasSubstr(std::to_string(microphone.Device().Failures()) + " overruns"));
}

// Nobody has to wait for a listener but who removes it.
TEST_F(SavedMicrophone, TakesAndLeavesListenersWhileAnotherOneIsCalled) {
  desktop::UseNullDevices(1);
  ASSERT_TRUE(microphone.Start());
  ASSERT_TRUE(WaitUntil([&] { return held.called.load(); }));
  std::atomic<bool> removed = false;
  std::atomic<bool> heldIsRemoved = false;
  std::thread others([&] {
    Held other;
    microphone.Add(&other);
    microphone.Remove(&other);
    removed = true;
  });
  EXPECT_TRUE(WaitUntil([&] { return removed.load(); }));
  std::thread own([&] {
    microphone.Remove(&held);
    heldIsRemoved = true;
  });
  std::this_thread::sleep_for(milliseconds(20));
  EXPECT_FALSE(heldIsRemoved);
  held.goes.count_down();
  others.join();
  own.join();
  saver = nullptr;
}

}  // namespace
