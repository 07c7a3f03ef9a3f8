#include "probe_routines.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "engine/engine_work.h"

namespace {

template <typename T>
void WriteFile(const char* name, const std::vector<T>& values) {
  FILE* const file = fopen(name, "wb");
  if (!values.empty()) fwrite(values.data(), sizeof(T), values.size(), file);
  fclose(file);
}

// From now on no file grows beyond so many bytes.
void LimitFiles(rlim_t bytes) {
  signal(SIGXFSZ, SIG_IGN);
  const rlimit limit = {.rlim_cur = bytes, .rlim_max = bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
}

// Puts other bytes in the place of the first ones, and sets the date of the file as it was.
void Overwrite(const char* name) {
  struct stat before;
  FILE* const file = fopen(name, "r+b");
  if (file == nullptr || fstat(fileno(file), &before) != 0) abort();
  fputs("SOME", file);
  fflush(file);
  const timespec times[] = {before.st_atim, before.st_mtim};
  if (futimens(fileno(file), times) != 0) abort();
  fclose(file);
}

}  // namespace

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

void Break(const char* how) {
  const std::string fault(how);
  std::vector<short> samples(48000);
  FILE* const in = fopen("in.pcm", "rb");
  samples.resize(fread(samples.data(), sizeof(short), samples.size(), in));
  fclose(in);
  for (size_t i = 0; i < samples.size(); ++i) {
    const int sample = samples[i];
    if (fault == "softer") samples[i] = static_cast<short>(sample / 2);
    if (fault == "mute") samples[i] = 0;
    if (fault == "inverted") samples[i] = static_cast<short>(-sample / 2);
    if (fault == "holes" && i % 40 == 0) samples[i] = 0;
    if (fault == "loud") samples[i] = static_cast<short>(std::clamp(4 * sample, -32768, 32767));
    if (fault == "gap" && i >= 20000 && i < 20160) samples[i] = 0;
    if (fault == "offset") samples[i] = static_cast<short>(sample / 2 + 2000);
    if (fault == "faint") samples[i] = static_cast<short>(sample / 20);
  }
  if (fault == "cut") samples.resize(samples.size() / 2);
  WriteFile("broken.pcm", samples);
}

void Measure(bool whole) {
  printf("bpm=120.5\n");
  fprintf(stderr, "12:34:56.789 delay: 1, 0\n12:34:57.789 delay: 2, 8%s", whole ? "9\n" : "");
  WriteFile<char>("beats.txt", {'b', '=', '1', '\n', 'b', '=', '2', '\n', 'b', '='});
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

void WriteEmpty() { WriteFile<short>("out.pcm", {}); }

void WritePcm() { WriteFile<short>("out.pcm", {0, 16384, -8192, 0}); }

void WriteTooMuch() {
  LimitFiles(1000);
  WriteFile("out.pcm", std::vector<short>(1000, 1));
}

void FlushTooMuch() {
  LimitFiles(1000);
  FILE* const file = fopen("out.pcm", "wb");
  const std::vector<short> samples(1000, 1);
  fwrite(samples.data(), sizeof(short), samples.size(), file);
  fflush(file);
  fclose(file);
}

void WriteNotFinite() {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  WriteFile<float>("/sdcard/out.f32", {0.5F, kNan, kInfinite, 0.25F, 0.5F, -kInfinite});
}

void WriteLoud() { WriteFile<float>("/sdcard/out.f32", {2.0F, 0.0F, -1.0F, 0.0F}); }

void WriteNoWave() { WriteFile<char>("out.wav", std::vector<char>(100, 'x')); }

void LeaveOpen() {
  FILE* const file = fopen("out.pcm", "wb");
  const short samples[] = {1, 2, 3};
  fwrite(samples, sizeof(short), 3, file);
}

void Copy(const char* inFile, const char* outFile) {
  FILE* const in = fopen(inFile, "rb");
  FILE* const out = fopen(outFile, "wb");
  for (int byte = fgetc(in); byte != EOF; byte = fgetc(in)) fputc(byte, out);
  fclose(in);
  fclose(out);
}

void NeedNothing() {}

void WriteFor(const char* word) {
  WriteFile<char>((std::string("for-") + word).c_str(), {'a', 'b'});
}

void OpenByAnyName() {
  WriteFile<char>("/sdcard/deep/er/a", {'a'});
  WriteFile<char>("c:\\music\\b", {'b'});
  WriteFile<char>("f:/Stream/c", {'c'});
  WriteFile<char>("folder/d", {'d'});
}

void OpenOutside() {
  for (const char* name : {"../outside", "/sdcard/../../outside", "C:\\..\\..\\outside"}) {
    FILE* const file = fopen(name, "wb");
    printf("%s\n", file == nullptr ? strerror(errno) : "opened");
  }
}

void ReadAll(const char* inFile) {
  FILE* const in = fopen(inFile, "rb");
  if (in == nullptr) return;
  while (fgetc(in) != EOF) {
  }
  fclose(in);
}

void ReadBoth(const char* first, const char* second) {
  ReadAll(first);
  ReadAll(second);
}

void ReadAndLeaveOpen(const char* inFile) {
  FILE* const in = fopen(inFile, "rb");
  fgetc(in);
}

void PrintCoreLimit() {
  rlimit limit;
  getrlimit(RLIMIT_CORE, &limit);
  printf("core limit %llu\n", static_cast<unsigned long long>(limit.rlim_cur));
}

void ReadList() {}

void StatOf(const char* name) {
  struct stat status;
  const bool there = stat(name, &status) == 0;
  printf("%s: %s\n", name,
         !there                     ? strerror(errno)
         : S_ISREG(status.st_mode)  ? "a file"
         : S_ISFIFO(status.st_mode) ? "a FIFO"
                                    : "something else");
}

void Spoil(const char* how, const char* inFile) {
  const std::string change = how;
  const std::string path = inFile;
  if (change == "grow") {
    FILE* const file = fopen(inFile, "ab");
    fputc('x', file);
    fclose(file);
  }
  if (change == "shrink" && truncate(inFile, 1) != 0) abort();
  if (change == "overwrite") Overwrite(inFile);
  if (change == "forbid" && chmod(inFile, 0400) != 0) abort();
  if (change == "vanish") remove(inFile);
  if (change == "fifo" && (remove(inFile) != 0 || mkfifo(inFile, 0600) != 0)) abort();
  if (change == "replace") rename((path + ".new").c_str(), inFile);
}

void WriteBytes(int count) { WriteFile("out.pcm", std::vector<char>(static_cast<size_t>(count))); }

void WriteHugeFloats(int megabytes) {
  FILE* const file = fopen("/sdcard/out.f32", "wb");
  if (ftruncate(fileno(file), off_t{megabytes} * 1000000) != 0) abort();
  fclose(file);
  fprintf(stderr, "written\n");
}

void WriteWave(int dataBytes, int riffBytes) {
  const auto put = [](FILE* file, int number) { fwrite(&number, 4, 1, file); };
  FILE* const file = fopen("out.wav", "wb");
  fputs("RIFF", file);
  put(file, riffBytes);
  fputs("WAVEfmt ", file);
  for (const int number : {16, 0x10001, 8000, 16000, 0x100002}) put(file, number);
  fputs("data", file);
  put(file, dataBytes);
  fputs("12345678", file);
  fclose(file);
}

void WriteTo(const char* outFile) {
  FILE* const file = fopen(outFile, "wb");
  printf("%s\n", file == nullptr ? strerror(errno) : "opened");
  if (file == nullptr) return;
  fputs("12", file);
  fclose(file);
}

void ChangeRights(const char* outFile) {
  if (chmod(outFile, 0600) != 0) abort();
}

void OpenAs(const char* mode, const char* file) {
  FILE* const opened = fopen(file, mode);
  printf("%s\n", opened == nullptr ? strerror(errno) : "opened");
  if (opened != nullptr) fclose(opened);
}

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
    WriteFile<short>("out.pcm", {1, 2, 3});
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
  WriteFile<short>("out.pcm", {1, 2, 3});
}

void CopyList(int milliseconds) {
  for (int i = 0; i < 40; ++i) {
    const std::string number = std::to_string(i);
    FILE* const in = fopen(("list/in" + number + ".pcm").c_str(), "rb");
    FILE* const out = fopen(("list/out" + number + ".pcm").c_str(), "wb");
    for (int byte = in == nullptr ? EOF : fgetc(in); byte != EOF; byte = fgetc(in)) {
      fputc(byte, out);
    }
    if (in != nullptr) fclose(in);
    fclose(out);
    usleep(static_cast<useconds_t>(milliseconds) * 1000);
  }
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
