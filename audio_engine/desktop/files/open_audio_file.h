#pragma once

#include <memory>

#include "desktop/files/file_source.h"

namespace desktop {

// Opens an audio file, known by its content and not by its name: WAVE, FLAC, Ogg, MP3, AIFF and
// more by libsndfile, AAC (ADTS) by libfdk-aac. With a fault `source` is null, and the file is told
// to RefuseFile.
FileFault OpenAudioFile(const char* name, std::unique_ptr<FileSource>* source);

}  // namespace desktop
