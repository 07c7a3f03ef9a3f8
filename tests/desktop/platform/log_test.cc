#include "engine_api/platform/log.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "desktop/platform/log.h"
#include "support/captured_stderr.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

const std::string kTime = "[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9] ";

// The line after its time of day.
std::string Message(const std::string& line) { return line.substr(13); }

TEST(OutputDebugInfo, PutsTheTimeBeforeTheFormattedText) {
  const CapturedStderr captured;
  OutputDebugInfo("TestHrtf..start");
  OutputDebugInfo("%s has %d taps", "left", 512);
  EXPECT_THAT(captured.Lines(), ElementsAre(MatchesRegex(kTime + "TestHrtf\\.\\.start"),
                                            MatchesRegex(kTime + "left has 512 taps")));
  EXPECT_EQ(captured.Text().back(), '\n');
}

// Milliseconds since midnight, local time.
int64_t TimeOfDay() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local = {};
  localtime_r(&now.tv_sec, &local);
  const int64_t seconds = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
  return seconds * 1000 + now.tv_nsec / 1000000;
}

TEST(OutputDebugInfo, PutsTheLocalTimeOfDay) {
  // Early in a second, so that leading zeros count.
  while (TimeOfDay() % 1000 > 50) usleep(1000);
  const CapturedStderr captured;
  const int64_t before = TimeOfDay();
  OutputDebugInfo("now");
  const int64_t after = TimeOfDay();

  int hour = 0, minute = 0, second = 0, millisecond = 0;
  const std::string line = captured.Text();
  EXPECT_THAT(line, MatchesRegex(kTime + "now\n"));
  ASSERT_EQ(sscanf(line.c_str(), "%d:%d:%d.%d ", &hour, &minute, &second, &millisecond), 4);
  const int64_t logged = ((hour * 60 + minute) * 60 + second) * 1000 + millisecond;
  const int64_t day = 24 * 60 * 60 * 1000;
  EXPECT_LE((logged - before + day) % day, (after - before + day) % day);
}

TEST(OutputDebugInfo, KeepsANewlineOfTheTextSingle) {
  const CapturedStderr captured;
  OutputDebugInfo("elapse time: %d.\n", 5);
  OutputDebugInfo("next");
  EXPECT_THAT(captured.Lines(),
              ElementsAre(MatchesRegex(kTime + "elapse time: 5\\."), MatchesRegex(kTime + "next")));
}

TEST(OutputDebugInfo, WritesALineOfTheTimeAloneForAnEmptyText) {
  const CapturedStderr captured;
  OutputDebugInfo("%s", "");
  EXPECT_THAT(captured.Lines(), ElementsAre(MatchesRegex(kTime)));
}

TEST(OutputDebugInfo, DoesNotCutLongLines) {
  const std::string text(100000, 'x');
  const CapturedStderr captured;
  OutputDebugInfo("%s", text.c_str());
  ASSERT_EQ(captured.Lines().size(), 1U);
  EXPECT_EQ(Message(captured.Lines()[0]), text);
}

TEST(LogRefusal, IsALineThatIsRemembered) {
  const std::string longText(1000, 'x');
  const CapturedStderr captured;
  desktop::LogRefusal("no mode %d", 5);
  desktop::LogRefusal("no mode %d", 5);
  desktop::LogRefusal("%s", longText.c_str());
  OutputDebugInfo("in mode %d", 4);
  EXPECT_EQ(captured.Lines().size(), 4U);
  EXPECT_EQ(Message(captured.Lines()[2]), longText);
  EXPECT_THAT(desktop::Refusals(), ElementsAre("no mode 5", longText));
  for (int i = 0; i < 20; ++i) desktop::LogRefusal("no room for %d", i);
  EXPECT_EQ(desktop::Refusals().size(), 16U);
}

// A socket of this kind keeps what each write hands to it apart.
TEST(OutputDebugInfo, HandsOverEachLineInOneWrite) {
  int sockets[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets), 0);
  const int before = dup(STDERR_FILENO);
  dup2(sockets[0], STDERR_FILENO);
  OutputDebugInfo("one %d", 1);
  OutputDebugInfo("two\n");
  dup2(before, STDERR_FILENO);
  close(before);

  char packet[100];
  ssize_t length = recv(sockets[1], packet, sizeof(packet), MSG_DONTWAIT);
  ASSERT_GT(length, 13);
  EXPECT_EQ(Message(std::string(packet, static_cast<size_t>(length))), "one 1\n");
  length = recv(sockets[1], packet, sizeof(packet), MSG_DONTWAIT);
  ASSERT_GT(length, 13);
  EXPECT_EQ(Message(std::string(packet, static_cast<size_t>(length))), "two\n");
  close(sockets[0]);
  close(sockets[1]);
}

TEST(OutputDebugInfo, KeepsTheLinesOfManyThreadsWhole) {
  const int kThreads = 16;
  const int kLines = 200;
  const CapturedStderr captured;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread] {
      const std::string text(static_cast<size_t>(50 + thread * 10),
                             static_cast<char>('a' + thread));
      for (int line = 0; line < kLines; ++line) OutputDebugInfo("%s", text.c_str());
    });
  }
  for (std::thread& thread : threads) thread.join();

  std::map<std::string, int> counts;
  for (const std::string& line : captured.Lines()) {
    ASSERT_GT(line.size(), 13U);
    ++counts[Message(line)];
  }
  EXPECT_EQ(counts.size(), static_cast<size_t>(kThreads));
  for (const auto& [text, count] : counts) EXPECT_EQ(count, kLines) << text;
}

}  // namespace
