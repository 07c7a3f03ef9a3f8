// A routine that crashes in functions of its own.

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "probe_routines.h"

namespace {

// Into memory that nobody may touch.
[[gnu::noinline]] void WriteWhereNothingIs() {
  auto* const memory = static_cast<volatile int*>(
      mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  *memory = 1;
}

// NOLINTNEXTLINE(misc-no-recursion): it is to have no end.
[[gnu::noinline]] int CallItselfForEver(volatile const int* depth) {
  volatile int here[64] = {*depth + 1};
  if (here[0] < 0) return 0;  // Never: the stack ends before.
  const int below = CallItselfForEver(here);
  return below + here[0];
}

// Ends with a call from which nothing returns.
[[noreturn, gnu::noinline]] void GiveUp() { abort(); }

}  // namespace

void CrashIn(const char* how) {
  fprintf(stderr, "a line without an end");
  if (strcmp(how, "memory") == 0) WriteWhereNothingIs();
  if (strcmp(how, "thread") == 0) std::thread(WriteWhereNothingIs).join();
  volatile const int depth = 0;
  if (strcmp(how, "stack") == 0) printf("%d\n", CallItselfForEver(&depth));
  if (strcmp(how, "abort") == 0) GiveUp();
}
