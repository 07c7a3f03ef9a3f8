#include "harness/log_sinks.h"

#include <cstdio>

// Deliberate: opened by the first line only. Where that fails every line of the process is lost,
// also when the file could be opened later.
// Deliberate: the newline is added whatever the line ends in; one that ends in a newline is
// followed by an empty line.
void PrintSdkLog(const char* pLogStr) {
  static FILE* const fid = fopen("sdk_log.txt", "wb");
  if (fid == nullptr) return;
  fprintf(fid, "%s\n", pLogStr);
  fflush(fid);  // The file is complete up to this line even if the process is killed.
}

// Deliberate: no guard around the opening, which is tried again on every line until it succeeds:
// two first lines at once may open the file twice. No flush either: a process that is killed loses
// the lines that its stream still buffers.
void DebugLogFunction(const char* pLogStr) {
  static FILE* fid = nullptr;
  if (fid == nullptr) fid = fopen("audio_engine.log", "wb");
  if (fid == nullptr) return;
  fprintf(fid, "%s\n", pLogStr);
}
