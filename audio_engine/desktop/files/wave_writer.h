#pragma once

#include <memory>

#include "desktop/files/file_writer.h"

namespace desktop {

// A writer of WAVE; append: after the last whole frame of a file that is there, in that file's
// format. Null, with errno set, when the file cannot be written.
std::unique_ptr<FileWriter> OpenWaveWriter(const char* name, DeviceFormat format, bool append);

}  // namespace desktop
