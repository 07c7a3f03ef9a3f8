#include "files/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "base/units.h"
#include "files/audio_figures.h"

namespace host {

namespace {

constexpr size_t kBlockBytes = 65536;

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

}  // namespace

int OpenRegularDescriptor(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  struct stat status;
  if (file < 0 || (fstat(file, &status) == 0 && S_ISREG(status.st_mode))) return file;
  close(file);
  errno = S_ISDIR(status.st_mode) ? EISDIR : kNotRegular;
  return -1;
}

FILE* OpenRegular(const std::string& path) {
  const int descriptor = OpenRegularDescriptor(path);
  return descriptor < 0 ? nullptr : fdopen(descriptor, "rb");
}

std::string FaultText(int error) {
  return error == kNotRegular ? "Not a regular file" : strerror(error);
}

TextRead ReadText(const std::string& path, size_t mostBytes, const std::function<bool()>& goOn) {
  const std::unique_ptr<FILE, CloseFile> file(OpenRegular(path));
  if (file == nullptr) return {.fault = FaultText(errno)};
  TextRead read;
  while (goOn()) {
    const size_t before = read.text.size();
    read.text.resize(before + kBlockBytes);
    errno = 0;
    const size_t count = fread(read.text.data() + before, 1, kBlockBytes, file.get());
    read.text.resize(before + count);
    if (read.text.size() > mostBytes) return {.fault = "longer than " + Bytes(mostBytes)};
    if (count == kBlockBytes) continue;
    if (ferror(file.get()) != 0) read.fault = strerror(errno);
    return read;
  }
  return {.fault = kStopped};
}

}  // namespace host
