#include "harness/read_block.h"

namespace harness {

bool ReadBlock(FILE* stream, void* block, size_t bytes) {
  return stream != nullptr && fread(block, bytes, 1, stream) == 1;
}

bool ReadBlock(StdioFile& file, void* block, size_t bytes) {
  return file.Read(block, bytes, 1) == 1;
}

}  // namespace harness
