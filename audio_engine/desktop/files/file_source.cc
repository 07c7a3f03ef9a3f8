#include "desktop/files/file_source.h"

#include <cerrno>
#include <cstring>
#include <exception>

#include "desktop/common/wav_header.h"
#include "desktop/files/adts_reader.h"
#include "desktop/files/refused_files.h"

namespace desktop {

namespace {

const char* Reason(FilePlayerOpenStatus status) {
  switch (status) {
    case PLAYER_CREATE_FILE_DECODER_FAILED:
      return "there is no decoder for it";
    case PLAYER_OPEN_FILE_DECODER_FAILED:
      return "it is damaged";
    default:
      return "it holds no audio";
  }
}

FilePlayerOpenStatus OpenByContent(File file, std::unique_ptr<FileSource>* source) {
  try {
    if (IsAdts(file.get())) return OpenAacFile(std::move(file), source);
    return OpenSoundFile(std::move(file), source);
  } catch (const std::exception&) {  // Memory is short.
    return PLAYER_CREATE_FILE_DECODER_FAILED;
  }
}

}  // namespace

FilePlayerOpenStatus FileSource::Open(const char* name, std::unique_ptr<FileSource>* source) {
  source->reset();
  if (name == nullptr) name = "";
  File file(OpenWav(name, "rb"));
  // A folder can be opened but not read.
  const bool isReadable = file != nullptr && (fgetc(file.get()) != EOF || ferror(file.get()) == 0);
  if (!isReadable) {
    RefuseFile(name, "cannot open the audio file", strerror(errno));
    return PLAYER_OPEN_FILE_PATH_ERROR;
  }
  const FilePlayerOpenStatus status = OpenByContent(std::move(file), source);
  if (status != PLAYER_OPEN_SUCCESS) {
    RefuseFile(name, "cannot read the audio file", Reason(status));
  }
  return status;
}

}  // namespace desktop
