#pragma once

#include <sys/types.h>

#include <string>

namespace host {

// A file that appears in a folder whole or not at all. Until then it has no name, so that it
// vanishes with the process even on SIGKILL; on file systems that do not support that, a name of
// its own.
class NewFile {
 public:
  // `folder` stays open for as long as this object lives. The rights are `mode` without the umask.
  NewFile(int folder, std::string name, mode_t mode);
  ~NewFile();  // Nothing is left of a file that was not published.
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Returns the descriptor to write to; -1 when there is none, and the constructor has set errno.
  int descriptor() const { return m_descriptor; }

  // Gives the file its name, in place of what has that name or, without `replace`, only if nothing
  // has. Returns false and sets errno on failure.
  bool Publish(bool replace);

 private:
  bool PublishNameless(bool replace);
  bool PublishNamed(bool replace);

  int m_folder;
  std::string m_name;
  std::string m_ownName;    // Empty for none.
  bool m_nameless = false;  // As it was created.
  int m_descriptor = -1;
};

// Makes a file empty and goes to its start; leaves one alone that is empty, because what was made
// shorter is written to the disk as it is closed on some file systems. Returns false and sets errno
// on failure.
bool StartAnew(int descriptor);

// Writes the bytes whole. Returns false and sets errno on failure.
bool WriteAll(int descriptor, const void* bytes, size_t count);

}  // namespace host
