#include "desktop/common/open_file.h"

#include <sys/stat.h>

#include <cerrno>

namespace desktop {

FILE* OpenUnlessFifo(const char* name, const char* mode) {
  struct stat status;
  if (stat(name, &status) == 0 && S_ISFIFO(status.st_mode)) {
    errno = ENXIO;
    return nullptr;
  }
  return fopen(name, mode);
}

}  // namespace desktop
