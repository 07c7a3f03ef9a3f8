#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

namespace host {

// Files that the host reads: regular ones only, because what a routine or its user put in their
// place, such as a FIFO or a device, could keep it waiting for ever.

// The errno for what is there but is no regular file.
inline constexpr int kNotRegular = ENXIO;

// Opens a regular file for reading, or what a link leads to; never waits. Returns null and sets
// errno for anything else.
FILE* OpenRegular(const std::string& path);

// As OpenRegular, but returns a descriptor, or -1 with errno.
int OpenRegularDescriptor(const std::string& path);

// Returns the errno of a file that could not be opened, in words.
std::string FaultText(int error);

struct TextRead {
  std::string text = {};
  std::string fault = {};  // Why the text is not whole; kStopped when it was given up.
};

// Returns the text of a regular file of `mostBytes` at most. Gives up as soon as `goOn` returns
// false.
TextRead ReadText(const std::string& path, size_t mostBytes, const std::function<bool()>& goOn);

}  // namespace host
