// The routines of the probe catalogue that read, write and spoil files.

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "probe_routines.h"
#include "write_values.h"

namespace {

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
  WriteValues("broken.pcm", samples);
}

void WriteEmpty() { WriteValues<short>("out.pcm", {}); }

void WritePcm() { WriteValues<short>("out.pcm", {0, 16384, -8192, 0}); }

void WriteTooMuch() {
  LimitFiles(1000);
  WriteValues("out.pcm", std::vector<short>(1000, 1));
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
  WriteValues<float>("/sdcard/out.f32", {0.5F, kNan, kInfinite, 0.25F, 0.5F, -kInfinite});
}

void WriteLoud() { WriteValues<float>("/sdcard/out.f32", {2.0F, 0.0F, -1.0F, 0.0F}); }

void WriteNoWave() { WriteValues<char>("out.wav", std::vector<char>(100, 'x')); }

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

void WriteFor(const char* word) {
  WriteValues<char>((std::string("for-") + word).c_str(), {'a', 'b'});
}

void OpenByAnyName() {
  WriteValues<char>("/sdcard/deep/er/a", {'a'});
  WriteValues<char>("c:\\music\\b", {'b'});
  WriteValues<char>("f:/Stream/c", {'c'});
  WriteValues<char>("folder/d", {'d'});
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

void WriteBytes(int count) {
  WriteValues("out.pcm", std::vector<char>(static_cast<size_t>(count)));
}

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
