#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "files/file_use.h"

namespace host {

// How the bytes of an audio file are laid out: one run of interleaved samples.
struct AudioLayout {
  std::optional<SampleType> samples = {};  // Nothing when they are not to be decoded here.
  int rate = 0;                            // Hz
  int channels = 0;
  uint64_t offset = 0;    // Where the samples start, in bytes.
  uint64_t bytes = 0;     // Of samples; as many as the file really holds.
  int frameBytes = 0;     // One sample of each channel.
  std::string flaw = {};  // What shows that the file is not whole; empty when it is.
  // Of a WAVE: the bytes of samples that its header announces, `bytes` where it leaves that open;
  // and what it says of them: "24-bit", "A-law".
  uint64_t announced = 0;
  std::string sampleWords = {};
  double Seconds() const;  // 0 when the rate is not known.
};

// The bytes of one block of 16-bit samples in the rate (Hz) and channel count of a WAVE; 0 when the
// file may have any length.
uint64_t BlockBytes(const FileUse& use, int rate, int channels);

// The layout of a file that is used as declared; nothing when it is no audio, or not the WAVE that
// it should be.
std::optional<AudioLayout> FindAudio(const FileUse& use, FILE* file, uint64_t fileBytes);

}  // namespace host
