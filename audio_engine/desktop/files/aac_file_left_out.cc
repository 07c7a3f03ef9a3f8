#include "desktop/files/aac_file.h"

// In place of aac_file.cc in a build without libfdk-aac.

namespace desktop {

FileFault OpenAacFile(File /*file*/, std::unique_ptr<FileSource>* /*source*/) {
  return FileFault::kNoDecoder;
}

}  // namespace desktop
