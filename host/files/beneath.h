#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

namespace host {

// Writing files in a folder, and nowhere else, whatever symbolic links there are in it: a link is
// followed as long as it stays in the folder. All return a descriptor, or -1 and errno, which is
// EXDEV for what would lead out.

// Opens the folder itself, which may be a link.
int OpenFolder(const std::string& path);

// As openat; `place` is relative to the folder.
int OpenBeneath(int folder, const std::string& place, int flags, mode_t mode);

// As OpenBeneath, to write to the file. EMLINK for one that has another name as well, by a hard
// link: who writes it writes what may be somewhere else. Nothing is changed then.
int OpenToWriteBeneath(int folder, const std::string& place, int flags, mode_t mode);

// Creates the folders above `place` that are missing. Returns 0, or -1 and errno.
int CreateParentsBeneath(int folder, const std::string& place);

// A file that the host itself writes in a folder.
struct WorkFile {
  std::string folder;
  std::string place;  // Relative to it.

  std::string Path() const { return folder + "/" + place; }

  // Creates it, or empties it; null and errno when that is not to be done, or when something else
  // than a regular file is there. Never waits.
  FILE* Create() const;

  // Removes it, if it is there and is a regular file. Returns 0, or errno.
  int Remove() const;
};

// Returns the errno of a file that could not be opened for writing, in words.
std::string WriteFault(int error);

}  // namespace host
