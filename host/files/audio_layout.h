#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "files/file_use.h"

namespace host {

// How the bytes of an audio file are laid out: one run of interleaved samples.
struct AudioLayout {
  // Nothing when the samples cannot be decoded here.
  std::optional<SampleType> samples = {};
  int rate = 0;  // Hz
  int channels = 0;

  // Where the samples start, and how many bytes of them the file really holds.
  uint64_t offset = 0;
  uint64_t bytes = 0;

  // The bytes of one sample of each channel.
  int frameBytes = 0;

  // What shows that the file is not whole; empty when it is.
  std::string flaw = {};

  // For a WAVE, the bytes of samples that its header announces, or `bytes` where it leaves that
  // open, and what it says of the samples: "24-bit", "A-law".
  uint64_t announced = 0;
  std::string sampleWords = {};

  // Returns 0 when the rate is not known.
  double Seconds() const;
};

// Returns the bytes of one block of 16-bit samples in the rate (Hz) and channel count of a WAVE; 0
// when the file may have any length.
uint64_t BlockBytes(const FileUse& use, int rate, int channels);

// Returns the layout of a file that is used as declared; nothing when it is no audio, or not the
// WAVE that it should be.
std::optional<AudioLayout> FindAudio(const FileUse& use, FILE* file, uint64_t fileBytes);

}  // namespace host
