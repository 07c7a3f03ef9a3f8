#pragma once

#include <memory>

#include "desktop/common/file.h"
#include "desktop/files/file_source.h"

namespace desktop {

// Takes an open AAC file (ADTS) over, by libfdk-aac. `source` is set unless there is a fault; no
// line goes to the log.
FileFault OpenAacFile(File file, std::unique_ptr<FileSource>* source);

}  // namespace desktop
