#include "desktop/files/file_writer.h"

#include <unistd.h>

#include <cerrno>

#include "desktop/common/open_file.h"

namespace desktop {

File OpenForWriting(const char* name, bool append) {
  File file(append ? OpenUnlessFifo(name, "r+b") : nullptr);
  if (file == nullptr && (!append || errno == ENOENT)) file.reset(OpenUnlessFifo(name, "w+b"));
  if (file != nullptr) setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

bool AppendWhole(FILE* file, const void* bytes, size_t count) {
  if (fseeko(file, 0, SEEK_END) != 0) return false;
  const off_t before = ftello(file);
  if (fwrite(bytes, 1, count, file) == count) return true;
  const int error = errno;
  if (ftruncate(fileno(file), before) != 0) return false;
  errno = error;
  return false;
}

}  // namespace desktop
