#include "demo/placed_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

#include "base/usage_error.h"
#include "files/beneath.h"
#include "files/known_digest.h"
#include "files/new_file.h"
#include "files/regular_file.h"

namespace host {

namespace {

[[noreturn]] void Refuse(const std::string& path, int error) {
  throw UsageError{"cannot write " + path + ": " + WriteFault(error)};
}

enum class There { kNothing, kPart, kSame, kOther };

// An empty file, and one that is too short but holds the bytes so far, is what is left of a file
// whose writing was cut short.
There Look(const std::string& path, std::span<const std::byte> bytes) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return There::kNothing;
  if (S_ISDIR(status.st_mode)) Refuse(path, EISDIR);
  const auto length = static_cast<size_t>(status.st_size);
  if (!S_ISREG(status.st_mode) || length > bytes.size()) return There::kOther;
  FILE* const file = OpenRegular(path);
  if (file == nullptr) return There::kOther;
  std::vector<std::byte> there(length);
  const bool same = fread(there.data(), 1, length, file) == length &&
                    std::equal(there.begin(), there.end(), bytes.begin());
  fclose(file);
  if (!same) return There::kOther;
  return length == bytes.size() ? There::kSame : There::kPart;
}

// errno; 0 when the bytes have their place. They replace nothing else than a part of them.
int Write(int workspace, const std::string& place, std::span<const std::byte> bytes, bool replace,
          const FileDigest* digest) {
  if (CreateParentsBeneath(workspace, place) != 0) return errno;
  const std::filesystem::path path(place);
  const std::string parent = path.has_parent_path() ? path.parent_path().string() : ".";
  const int folder = OpenBeneath(workspace, parent, O_PATH | O_DIRECTORY | O_CLOEXEC, 0);
  if (folder < 0) return errno;
  int error = 0;
  {
    NewFile file(folder, path.filename(), 0666);
    const bool written = file.descriptor() >= 0 &&
                         WriteAll(file.descriptor(), bytes.data(), bytes.size()) &&
                         file.Publish(replace);
    if (!written) error = errno;
    if (written && digest != nullptr) NoteDigest(file.descriptor(), *digest);
  }
  close(folder);
  return error;
}

}  // namespace

Placed PlaceFile(const std::string& workspace, const std::string& place,
                 std::span<const std::byte> bytes, const FileDigest* digest) {
  const std::string path = workspace + "/" + place;
  const There there = Look(path, bytes);
  if (there == There::kOther) return Placed::kKept;
  if (there == There::kSame) return Placed::kThere;
  std::error_code error;
  std::filesystem::create_directories(workspace, error);
  if (error) Refuse(path, error.value());
  const int folder = OpenFolder(workspace);
  if (folder < 0) Refuse(path, errno);
  const bool replace = there == There::kPart;
  const int fault = Write(folder, place, bytes, replace, digest);
  close(folder);
  if (fault != 0) Refuse(path, fault);
  return replace ? Placed::kInPlaceOfAPart : Placed::kWritten;
}

}  // namespace host
