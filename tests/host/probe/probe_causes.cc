// Routines whose runs end badly for a reason that is not in their files, or in one of them alone.

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "probe_routines.h"

void StandStill() {
  FILE* const file = fopen("out.pcm", "wb");
  fputs("some", file);
  fclose(file);
  raise(SIGSTOP);
}

void HangOn(const char* inFile) {
  FILE* const in = fopen(inFile, "rb");
  while (fgetc(in) != EOF) {
  }
  fclose(in);
  fprintf(stderr, "hanging\n");
  while (true) pause();
}

void CopyIfThere(const char* outFile) {
  FILE* const in = fopen("fixed.in", "rb");
  FILE* const out = std::string_view(outFile) == "unwritten" ? nullptr : fopen(outFile, "wb");
  for (int byte = in == nullptr ? EOF : fgetc(in); byte != EOF; byte = fgetc(in)) {
    if (out != nullptr) fputc(byte, out);
  }
  if (in != nullptr) fclose(in);
  if (out != nullptr) fclose(out);
}

void ReportOnList(const char* outFile) {
  FILE* const out = fopen(outFile, "wb");
  fputs("file\tfigure\n", out);
  fclose(out);
}

namespace {

std::string g_refused;

}  // namespace

void PlayWhatIsNone(const char* inFile) { g_refused = inFile; }

const std::string& RefusedByTheEngine() { return g_refused; }

void ReadSome(const char* inFile, int bytes) {
  FILE* const in = fopen(inFile, "rb");
  std::string read(static_cast<size_t>(bytes), '\0');
  if (fread(read.data(), 1, read.size(), in) != read.size()) abort();
  fclose(in);
}

void ReadSomeOnPurpose(const char* inFile, int bytes) { ReadSome(inFile, bytes); }

void DecodeSome(const char* inFile) {
  FILE* const in = fopen(inFile, "rb");
  while (fgetc(in) != EOF) {
  }
  fclose(in);
}

namespace {

std::string g_said;

}  // namespace

void HaveSaid(const char* line) { g_said = line; }

const std::string& SaidByTheEngine() { return g_said; }

void Choose(int /*number*/, bool /*flag*/, const char* /*word*/, int /*other*/) {}

void UseSeven(int /*number*/) {}

void Mark() {
  FILE* const out = fopen("marks.pcm", "wb");
  for (const short mark : {short{0}, short{30000}, short{12767}, short{0}}) {
    const short frame[] = {20000, mark};
    fwrite(frame, sizeof frame, 1, out);
  }
  fclose(out);
}

void AppendTo(const char* outFile) {
  FILE* const out = fopen(outFile, "ab");
  fputs("more", out);
  fclose(out);
}

void WriteUnless(const char* word, int bytes) {
  FILE* const out = fopen("out", "wb");
  if (std::string_view(word) != "nothing") {
    for (int i = 0; i < bytes; ++i) fputc('x', out);
  }
  fclose(out);
}
