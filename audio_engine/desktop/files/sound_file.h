#pragma once

#include <memory>

#include "desktop/common/file.h"
#include "desktop/files/file_source.h"

namespace desktop {

// Takes over an open file of a kind that libsndfile reads. `source` is set unless there is a fault;
// no line goes to the log.
FileFault OpenSoundFile(File file, std::unique_ptr<FileSource>* source);

}  // namespace desktop
