// In place of aac_recording.cc in a build without libfdk-aac.

#include "recording/recording.h"

namespace host {

OpenedRecording OpenAacRecording(int /*file*/) {
  return {.fault = "is AAC, which this build cannot read: libfdk-aac was left out"};
}

}  // namespace host
