#include "probe_routines.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "engine/engine_work.h"
#include "write_values.h"

void Nothing() {}

void WriteNothing() {}

void Helper() {}

void Echo(const char* text, char* more, bool flag, int number) {
  printf("text=%s more=%s flag=%d number=%d\n", text, more, flag, number);
}

void PrintAndLog() {
  printf("printed\n");
  fprintf(stderr, "logged\n");
}

void Measure(bool whole) {
  printf("bpm=120.5\n");
  fprintf(stderr, "12:34:56.789 delay: 1, 0\n12:34:57.789 delay: 2, 8%s", whole ? "9\n" : "");
  WriteValues<char>("beats.txt", {'b', '=', '1', '\n', 'b', '=', '2', '\n', 'b', '='});
}

void PrintPartOfALine() { printf("no newline"); }

void Crash() {
  signal(SIGSEGV, SIG_DFL);  // Also where a sanitizer would catch it.
  raise(SIGSEGV);
}

void Abort() {
  printf("about to abort\n");
  abort();
}

void Throw() { throw std::runtime_error("thrown by the routine"); }

void ExitEarly() { exit(0); }

void Hang() {
  FILE* const file = fopen("pid", "w");
  fprintf(file, "%d", static_cast<int>(getpid()));
  fclose(file);
  fprintf(stderr, "hanging\n");
  while (true) pause();
}

void WriteItsProcess() {
  FILE* const file = fopen("pid", "w");
  fprintf(file, "%d", static_cast<int>(getpid()));
  fclose(file);
}

void NeedNothing() {}

void PrintCoreLimit() {
  rlimit limit;
  getrlimit(RLIMIT_CORE, &limit);
  printf("core limit %llu\n", static_cast<unsigned long long>(limit.rlim_cur));
}

void ReadList() {}

void PrintForEver() {
  while (true) puts("a line that somebody should read");
}

void LogForEver() {
  while (true) fputs("a line that somebody should read\n", stderr);
}

void PrintMuch(int lines) {
  for (int i = 0; i < lines; ++i) printf("line %d\n", i);
}

void LogMuch() {
  for (int i = 0; i < 20000; ++i) fprintf(stderr, "line %d\n", i);
}

// Leaves a process behind that has left the group, the session and the parent of this one.
void LeaveDaemon(bool hang) {
  if (fork() == 0) {
    setsid();
    if (fork() == 0) {
      FILE* const file = fopen("daemon", "w");
      fprintf(file, "%d", static_cast<int>(getpid()));
      fclose(file);
      signal(SIGTERM, SIG_IGN);
      while (true) pause();
    }
    _exit(0);
  }
  struct stat status;
  while (stat("daemon", &status) != 0 || status.st_size == 0) usleep(1000);
  if (hang) Hang();
}

void Allocate() {
  std::vector<std::vector<char>> blocks;
  for (int i = 0; i < 4096; ++i) blocks.emplace_back(1 << 20, 'x');
}

namespace {

std::atomic<bool> g_working = false;

}  // namespace

void WorkOn(int milliseconds) {
  g_working = true;
  std::thread([milliseconds] {
    usleep(static_cast<useconds_t>(milliseconds) * 1000);
    WriteValues<short>("out.pcm", {1, 2, 3});
    g_working = false;
  }).detach();
}

void PlayOn(int milliseconds) { WorkOn(milliseconds); }

void RecordForEver(int bytes) {
  FILE* const file = fopen("out.pcm", "wb");
  while (true) {
    for (int i = 0; i < bytes; ++i) fputc('s', file);
    fflush(file);
    if (bytes % 2 == 1) pause();
    usleep(10000);
  }
}

void GoWithout(const char* inFile) {
  printf("%s\n", inFile == nullptr ? "no name" : inFile);
  WriteValues<short>("out.pcm", {1, 2, 3});
}

// The probe's engine: what WorkOn has started is what it does in the background, and its devices
// have gaps.
host::EngineFindings host::FinishEngineWork(std::chrono::milliseconds limit, bool /*runsOn*/) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (g_working && std::chrono::steady_clock::now() < end) usleep(1000);
  EngineFindings findings;
  findings.gaps = DeviceGaps{.underruns = 3, .overruns = 1};
  const std::string& refused = RefusedByTheEngine();
  if (!refused.empty()) findings.Refuse(refused, "it holds no audio");
  if (!SaidByTheEngine().empty()) findings.Say(SaidByTheEngine());
  return findings;
}
