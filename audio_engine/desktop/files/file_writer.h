#pragma once

#include <cstddef>

#include "desktop/common/file.h"
#include "desktop/devices/device_format.h"

namespace desktop {

// Writes blocks of samples to an open file of one kind; whoever reads the file, also after this
// process was killed, finds whole frames.
class FileWriter {
 public:
  virtual ~FileWriter() = default;

  virtual DeviceFormat Format() const = 0;

  // Takes frames of that format. They may stay here until Flush. No line goes to the log when they
  // cannot be coded.
  virtual void Add(const short* samples, size_t frames) = 0;

  // Writes what is whole. Returns false when it does not fit; the file is whole all the same.
  virtual bool Flush() = 0;

  // Codes what is left, and flushes.
  virtual bool Finish() = 0;
};

// Opens a file for one of the writers, without a buffer of its own: an append to a file that is
// there leaves what it holds, everything else starts empty. Returns null, with errno set, on
// failure.
File OpenForWriting(const char* name, bool append);

// Writes all of `bytes` at the end of the file, or returns false and writes nothing.
bool AppendWhole(FILE* file, const void* bytes, size_t count);

}  // namespace desktop
