// In place of aac_file.cc in a build without libfdk-aac.

#include "desktop/files/file_source.h"

namespace desktop {

FilePlayerOpenStatus OpenAacFile(File /*file*/, std::unique_ptr<FileSource>* /*source*/) {
  return PLAYER_CREATE_FILE_DECODER_FAILED;
}

}  // namespace desktop
