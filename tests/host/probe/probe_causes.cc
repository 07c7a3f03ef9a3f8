// Routines whose runs end badly for a reason that is not in their files, or in one of them alone.

#include <unistd.h>

#include <csignal>
#include <cstdio>

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
