#include "recording/recording.h"

#include <unistd.h>

#include <string_view>

#include "base/units.h"
#include "files/foreign_audio.h"
#include "recording/whole_container.h"

namespace host {

namespace {

bool BeginsLikeMpeg(int file) {
  unsigned char start[2] = {};
  return pread(file, start, sizeof start, 0) == sizeof start && start[0] == 0xFF &&
         (start[1] & 0xE0) == 0xE0;
}

}  // namespace

std::string RecordingFormat::Words() const {
  std::string words = container + ", " + samples + ", " + Hertz(rate) + ", " + Channels(channels);
  if (frames && rate > 0) words += ", " + Seconds(static_cast<double>(*frames) / rate);
  return words;
}

OpenedRecording OpenRecording(FILE* file, const std::optional<RawForm>& raw) {
  const std::string_view kind = ForeignAudio(file);
  const int descriptor = fileno(file);
  if (raw && raw->bytes) return OpenRawRecording(descriptor, *raw);
  // Quiet samples may look like a text, but hardly like a program.
  if (raw && (kind.empty() || kind == kText)) return OpenRawRecording(descriptor, *raw);
  if (kind == "an AAC file") return OpenAacRecording(descriptor);
  if (std::string fault = ShortContainer(file); !fault.empty()) return {.fault = fault};

  // Noise begins like a frame of MPEG audio now and then.
  if (kind.empty() && BeginsLikeMpeg(descriptor)) return {.fault = "is of no kind that is known"};

  OpenedRecording opened = OpenSoundRecording(descriptor);
  if (opened.recording == nullptr) {
    // A tag begins both.
    if (kind == "an MP3 file") {
      if (OpenedRecording aac = OpenAacRecording(descriptor); aac.recording != nullptr) return aac;
    }
    if (!kind.empty()) opened.fault = "is " + std::string(kind) + " that cannot be read here";
    return opened;
  }
  return opened;
}

}  // namespace host
