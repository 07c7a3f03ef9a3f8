#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "files/file_use.h"
#include "recording/conversion.h"
#include "recording/recording.h"

namespace host {

// What a file must be to be taken.
struct Form {
  enum class Kind {
    kBytes,       // Anything: no audio.
    kWave,        // A WAVE file.
    kHeaderless,  // Samples and nothing else.
    kRecording    // WAVE, FLAC, Ogg, MP3 or AAC of any format.
  };
  Kind kind = Kind::kWave;
  SampleType samples = SampleType::kPcm16;
  // Those that are right, each rate or channel count 0 for any; none: every format is.
  std::vector<WaveFormat> formats = {};
  int leastRate = 0;  // Hz; 0: any.
  int mostRate = 0;
  bool plainHeader = false;  // A WAVE whose first 44 bytes are its header, with nothing after it.
};

// The rate and the channel count in which a recording is taken. The channels are its own where they
// are right, else the fewest that are; of the rates that are right its own, else the next higher
// one, else the highest.
WaveFormat ChooseFormat(const Form& form, const RecordingFormat& recording);

// Whether an open file has the form, byte for byte, in this format.
bool HasForm(FILE* file, const RecordingFormat& recording, const Form& form, WaveFormat format);

}  // namespace host
