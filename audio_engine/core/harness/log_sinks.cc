#include "harness/log_sinks.h"

#include <cstdio>

void PrintSdkLog(const char* pLogStr) {
  static FILE* const fid = fopen("sdk_log.txt", "wb");
  if (fid == nullptr) return;
  fprintf(fid, "%s\n", pLogStr);
  fflush(fid);  // The file is complete up to this line even if the process is killed.
}

// Deliberate: no guard around the opening, which is tried again on every line until it succeeds,
// and no flush. With either, a host would no longer see a log directory that appears late, or would
// pay for a write on every line.
void DebugLogFunction(const char* pLogStr) {
  static FILE* fid = nullptr;
  if (fid == nullptr) fid = fopen("audio_engine.log", "wb");
  if (fid == nullptr) return;
  fprintf(fid, "%s\n", pLogStr);
}
