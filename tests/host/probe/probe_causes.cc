// Routines whose runs end badly for a reason that is not in their files, or in one of them alone.

#include <unistd.h>

#include <csignal>
#include <cstdio>
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

void WriteUnless(const char* word, int bytes) {
  FILE* const out = fopen("out", "wb");
  if (std::string_view(word) != "nothing") {
    for (int i = 0; i < bytes; ++i) fputc('x', out);
  }
  fclose(out);
}
