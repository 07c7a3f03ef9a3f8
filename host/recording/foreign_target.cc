#include "recording/foreign_target.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "files/regular_file.h"
#include "files/sha256.h"

namespace host {

std::string ForeignTarget(const std::string& workspace, const std::string& place,
                          const std::vector<StagedFile>& earlier) {
  const std::string path = workspace + "/" + place;
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) return "";
  const auto found = std::find_if(earlier.begin(), earlier.end(),
                                  [&](const StagedFile& file) { return file.place == place; });
  if (found == earlier.end()) {
    return path + " is there already, and was not put there by stage; --force replaces it";
  }
  const int file = S_ISREG(status.st_mode) ? OpenRegularDescriptor(path) : -1;
  const FileDigest now = file < 0 ? FileDigest{} : DigestOf(file, [] { return true; });
  if (file >= 0) close(file);
  if (now.digest == found->digest) return "";
  return path + " was changed since it was staged; --force replaces it";
}

}  // namespace host
