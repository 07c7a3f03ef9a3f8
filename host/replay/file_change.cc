#include "replay/file_change.h"

#include <unistd.h>

#include <cerrno>

#include "files/audio_figures.h"
#include "files/regular_file.h"
#include "files/sha256.h"

namespace host {

std::string Changed(const std::string& path, const std::string& digest,
                    const std::function<bool()>& goOn) {
  const int file = OpenRegularDescriptor(path);
  if (file < 0) return errno == ENOENT ? "is gone" : "cannot be read: " + FaultText(errno);
  const FileDigest now = DigestOf(file, goOn);
  close(file);
  if (now.fault == kStopped) return "was not read to its end, because that was interrupted";
  if (!now.fault.empty()) return "cannot be read: " + now.fault;
  return now.digest == digest ? "" : "has changed since the run";
}

}  // namespace host
