#include "harness/copy_wav_header.h"

namespace harness {

void CopyWavHeader(StdioFile& in, StdioFile& out) {
  unsigned char header[44];
  const size_t bytes = in.Read(header, 1, sizeof header);
  out.Write(header, 1, bytes);
}

}  // namespace harness
