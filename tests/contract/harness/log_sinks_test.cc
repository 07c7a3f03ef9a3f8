#include "harness/log_sinks.h"

#include <gmock/gmock.h>
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/temporary_directory.h"

// The sinks keep their streams for the life of the process: every test runs them in a child
// process, on real files.

extern "C" {
FILE* __real_fopen(const char* name, const char* mode);
FILE* __wrap_fopen(const char* name, const char* mode);
int __wrap_fprintf(FILE* stream, const char* format, ...) __attribute__((format(printf, 2, 3)));
int __wrap_fputs(const char* text, FILE* stream);
int __wrap_fputc(int character, FILE* stream);
size_t __wrap_fwrite(const void* data, size_t size, size_t count, FILE* stream);
int __real_fclose(FILE* stream);
int __wrap_fclose(FILE* stream);
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);
}

namespace {

std::atomic<int> g_opens = 0;
std::atomic<int> g_wrongModes = 0;
std::atomic<int> g_formatted = 0;    // Calls of fprintf
std::atomic<int> g_otherWrites = 0;  // and of whatever else writes to a stream.
std::atomic<int> g_closes = 0;
std::atomic<int> g_locks = 0;

std::string Content(const char* name) {
  std::ifstream file(name, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

bool KilledBy(int status, int signal) { return WIFSIGNALED(status) && WTERMSIG(status) == signal; }

}  // namespace

// Slow, so that a second opening beside the first one is certain where nothing prevents it.
FILE* __wrap_fopen(const char* name, const char* mode) {
  ++g_opens;
  if (std::string(mode) != "wb") ++g_wrongModes;
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  return __real_fopen(name, mode);
}

int __wrap_fprintf(FILE* stream, const char* format, ...) {
  ++g_formatted;
  va_list arguments;
  va_start(arguments, format);
  const int written = vfprintf(stream, format, arguments);
  va_end(arguments);
  return written;
}

int __wrap_fputs(const char*, FILE*) { return ++g_otherWrites; }
int __wrap_fputc(int, FILE*) { return ++g_otherWrites; }
size_t __wrap_fwrite(const void*, size_t, size_t, FILE*) {
  return static_cast<size_t>(++g_otherWrites);
}

int __wrap_fclose(FILE* stream) {
  ++g_closes;
  return __real_fclose(stream);
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  ++g_locks;
  return __real_pthread_mutex_lock(mutex);
}

// Whoever logs on the thread of a device must not wait for another one, and a stream that is closed
// after a line would be opened anew for the next one.
TEST(LogSinks, NeitherLockNorClose) {
  const TemporaryDirectory directory;

  const int status = RunInChild([] {
    const int locksBefore = g_locks;
    const int closesBefore = g_closes;
    for (int line = 0; line < 3; ++line) {
      PrintSdkLog("sdk");
      DebugLogFunction("debug");
    }
    _exit(g_locks - locksBefore + 10 * (g_closes - closesBefore));
  });

  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(Content("sdk_log.txt"), "sdk\nsdk\nsdk\n");
}

TEST(PrintSdkLog, KeepsEveryLineOfAProcessThatIsKilled) {
  const TemporaryDirectory directory;

  const int status = RunInChild([] {
    PrintSdkLog("first");
    PrintSdkLog("");
    PrintSdkLog("ends in a newline\n");
    PrintSdkLog("100 %s %d");
    raise(SIGKILL);
  });

  EXPECT_TRUE(KilledBy(status, SIGKILL));
  EXPECT_EQ(Content("sdk_log.txt"), "first\n\nends in a newline\n\n100 %s %d\n");
}

TEST(PrintSdkLog, WritesWholeLinesFromManyThreadsThroughOneOpening) {
  const TemporaryDirectory directory;
  constexpr int kThreads = 16;
  constexpr int kLines = 200;

  const int status = RunInChild([] {
    std::atomic<int> waiting = kThreads;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([thread, &waiting] {
        for (--waiting; waiting > 0;) std::this_thread::yield();  // All at once.
        for (int line = 0; line < kLines; ++line) {
          PrintSdkLog(
              ("thread " + std::to_string(thread) + " line " + std::to_string(line)).c_str());
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    if (g_opens != 1 || g_wrongModes != 0) _exit(1);
    // A line in one piece: in two, lines of two threads could mix.
    if (g_formatted != kThreads * kLines || g_otherWrites != 0) _exit(2);
    raise(SIGKILL);
  });

  EXPECT_TRUE(KilledBy(status, SIGKILL))
      << "1: opened more than once or in another mode, 2: not one write a line; status " << status;
  std::multiset<std::string> expected;
  for (int thread = 0; thread < kThreads; ++thread) {
    for (int line = 0; line < kLines; ++line) {
      expected.insert("thread " + std::to_string(thread) + " line " + std::to_string(line));
    }
  }
  std::istringstream content(Content("sdk_log.txt"));
  std::multiset<std::string> lines;
  for (std::string line; std::getline(content, line);) lines.insert(line);
  EXPECT_EQ(lines, expected);
}

TEST(PrintSdkLog, EmptiesTheFileOfAnEarlierRun) {
  const TemporaryDirectory directory;
  std::ofstream("sdk_log.txt") << "from an earlier run, and longer than the new line\n";

  RunInChild([] { PrintSdkLog("new"); });

  EXPECT_EQ(Content("sdk_log.txt"), "new\n");
}

// What a destructor of a static object logs still arrives.
TEST(PrintSdkLog, IsOpenAndUnharmedWhenStaticObjectsEnd) {
  const TemporaryDirectory directory;

  const int status = RunInChild([] {
    atexit([] { PrintSdkLog("at the very end"); });
    PrintSdkLog("first");
    exit(0);
  });

  EXPECT_EQ(status, 0);
  EXPECT_EQ(Content("sdk_log.txt"), "first\nat the very end\n");
}

TEST(LogSinks, SayNothingWhenTheirFilesCannotBeOpened) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory("sdk_log.txt");
  std::filesystem::create_directory("audio_engine.log");

  RunInChild([] {
    if (freopen("printed", "wb", stdout) == nullptr ||
        freopen("printed", "ab", stderr) == nullptr) {
      _exit(1);
    }
    PrintSdkLog("lost");
    DebugLogFunction("lost");
    fflush(nullptr);
  });

  EXPECT_TRUE(std::filesystem::exists("printed"));
  EXPECT_EQ(Content("printed"), "");
}

TEST(PrintSdkLog, TriesToOpenOnceOnly) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory("sdk_log.txt");  // No file can be opened under this name.

  const int status = RunInChild([] {
    PrintSdkLog("lost");
    std::filesystem::remove("sdk_log.txt");
    PrintSdkLog("lost too");
    _exit(g_opens);
  });

  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_FALSE(std::filesystem::exists("sdk_log.txt"));
}

TEST(DebugLogFunction, DoesNotFlush) {
  const TemporaryDirectory directory;

  const int status = RunInChild([] {
    DebugLogFunction("buffered");
    raise(SIGKILL);
  });

  EXPECT_TRUE(KilledBy(status, SIGKILL));
  EXPECT_TRUE(std::filesystem::exists("audio_engine.log"));
  EXPECT_EQ(Content("audio_engine.log"), "");
}

TEST(DebugLogFunction, EmptiesTheFileOfAnEarlierRun) {
  const TemporaryDirectory directory;
  std::ofstream("audio_engine.log") << "from an earlier run, and longer than the new line\n";

  const int status = RunInChild([] {
    DebugLogFunction("new");
    fflush(nullptr);
    _exit(g_wrongModes);
  });

  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(Content("audio_engine.log"), "new\n");
}

TEST(DebugLogFunction, AddsANewlineToEveryLine) {
  const TemporaryDirectory directory;

  RunInChild([] {
    DebugLogFunction("one");
    DebugLogFunction("");
    DebugLogFunction("two\n");
    DebugLogFunction("%d");
    std::fflush(nullptr);
  });

  EXPECT_EQ(Content("audio_engine.log"), "one\n\ntwo\n\n%d\n");
}

TEST(DebugLogFunction, TriesToOpenAgainUntilItSucceeds) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory("audio_engine.log");

  const int status = RunInChild([] {
    DebugLogFunction("lost");
    DebugLogFunction("lost too");
    std::filesystem::remove("audio_engine.log");
    DebugLogFunction("kept");
    DebugLogFunction("kept too");
    std::fflush(nullptr);
    _exit(g_opens);
  });

  EXPECT_EQ(WEXITSTATUS(status), 3);
  EXPECT_EQ(Content("audio_engine.log"), "kept\nkept too\n");
}

TEST(LogSinks, ShareNothing) {
  const TemporaryDirectory directory;

  RunInChild([] {
    PrintSdkLog("sdk");
    DebugLogFunction("debug");
    std::fflush(nullptr);
  });

  EXPECT_EQ(Content("sdk_log.txt"), "sdk\n");
  EXPECT_EQ(Content("audio_engine.log"), "debug\n");
}
