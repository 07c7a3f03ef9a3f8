#include "probe_routines.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <vector>

namespace {

template <typename T>
void WriteFile(const char* name, const std::vector<T>& values) {
  FILE* const file = fopen(name, "wb");
  if (!values.empty()) fwrite(values.data(), sizeof(T), values.size(), file);
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

void WriteEmpty() { WriteFile<short>("out.pcm", {}); }

void WritePcm() { WriteFile<short>("out.pcm", {0, 16384, -8192, 0}); }

void WriteTooMuch() {
  signal(SIGXFSZ, SIG_IGN);
  const rlimit limit = {.rlim_cur = 1000, .rlim_max = 1000};
  setrlimit(RLIMIT_FSIZE, &limit);
  WriteFile("out.pcm", std::vector<short>(1000, 1));
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
