#include "desktop/files/open_audio_file.h"

#include <cerrno>
#include <cstring>
#include <exception>

#include "desktop/common/open_file.h"
#include "desktop/files/aac_file.h"
#include "desktop/files/adts_reader.h"
#include "desktop/files/refused_files.h"
#include "desktop/files/sound_file.h"

namespace desktop {

namespace {

const char* Reason(FileFault fault) {
  switch (fault) {
    case FileFault::kNoDecoder:
      return "there is no decoder for it";
    case FileFault::kDamaged:
      return "it is damaged";
    default:
      return "it holds no audio";
  }
}

FileFault OpenByContent(File file, std::unique_ptr<FileSource>* source) {
  try {
    if (IsAdts(file.get())) return OpenAacFile(std::move(file), source);
    return OpenSoundFile(std::move(file), source);
  } catch (const std::exception&) {
    // Memory is short.
    return FileFault::kNoDecoder;
  }
}

}  // namespace

FileFault OpenAudioFile(const char* name, std::unique_ptr<FileSource>* source) {
  source->reset();
  if (name == nullptr) name = "";
  File file(OpenUnlessFifo(name, "rb"));
  // A folder can be opened, but not read.
  const bool isReadable = file != nullptr && (fgetc(file.get()) != EOF || ferror(file.get()) == 0);
  if (!isReadable) {
    RefuseFile(name, "cannot open the audio file", strerror(errno));
    return FileFault::kCannotOpen;
  }
  const FileFault fault = OpenByContent(std::move(file), source);
  if (fault != FileFault::kNone) RefuseFile(name, "cannot read the audio file", Reason(fault));
  return fault;
}

}  // namespace desktop
