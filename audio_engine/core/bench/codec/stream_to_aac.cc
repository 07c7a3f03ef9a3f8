// A stream of the frame packer into a file of AAC that any player takes. Listen to the file.

#include "engine_api/codec/stream_to_aac.h"

#include <cstdlib>

#include "bench/codec/routines.h"
#include "engine_api/platform/log.h"
#include "harness/stdio_file.h"

// Deliberate: six rows, one per codec of the packer, of which fileIndex picks one. Without the
// others, a stream of another codec would need more than another number here.
void TestAACStreamToAAC() {
  static constexpr const char* inFile[] = {"packer.aac",    "packer.silk",    "packer.lc.aac",
                                           "packer.ld.aac", "packer.48k.aac", "packer.opus"};
  static constexpr const char* outFile[] = {"aac.aac", "silk.aac", "lc.aac",
                                            "eld.aac", "48k.aac",  "opus.aac"};
  const int fileIndex = 4;

  harness::StdioFile in(inFile[fileIndex], "rb");
  if (in.get() == nullptr) {
    OutputDebugInfo("can not open aac+ file ");
    return;
  }
  const int size = in.Size();
  char* buffer = static_cast<char*>(malloc(static_cast<size_t>(size)));
  const size_t ret = in.Read(buffer, static_cast<size_t>(size), 1);
  in.Close();
  if (ret != 1) {
    OutputDebugInfo("read aac+ file error");
    return;  // Deliberate: without freeing buffer, as after a failed conversion.
  }

  unsigned char* outBuffer = nullptr;  // Deliberate: never freed.
  const int len = TransZUStreamToAAC(buffer, size, &outBuffer);
  if (len > 0) {
    free(buffer);
    harness::StdioFile out(outFile[fileIndex], "wb");
    if (out.Write(outBuffer, static_cast<size_t>(len), 1) == 1) {
      OutputDebugInfo("TransZUStreamToAAC successfully write :%d", len);
    }
    return;
  }
  OutputDebugInfo("TransZUStreamToAAC error");
}

void TestZUStreamToAAC() { TestAACStreamToAAC(); }
