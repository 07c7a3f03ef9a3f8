#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"

namespace host {

// Something that was done with a recording.
struct StagingStep {
  std::string name = {};  // For programs: "copy", "cut", "channels", "rate", "samples", ...
  std::string text = {};  // For readers: "resampled from 96000 to 44100 Hz"
  std::optional<double> value = {};
  std::string unit = {};  // Of the value.
};

// A file that was put into a workspace, and what it was made of.
struct StagedFile {
  std::string place = {};   // Relative to the workspace.
  std::string digest = {};  // SHA-256 of what was put there.
  uint64_t bytes = 0;
  std::string source = {};        // Absolute path.
  std::string sourceDigest = {};  // SHA-256
  std::string was = {};           // "FLAC, 24-bit, 48000 Hz, stereo, 12.50 s"
  std::vector<StagingStep> steps = {};

  // "staged  near.wav  from song.flac (FLAC, ..., 12.50 s): resampled from ... Hz, 0.3 dB softer".
  std::string Line() const;
};

// What the record and the report of a run say of such a file.
Json StagedJson(const StagedFile& file);

// The record of what was put into a workspace: the file staged.json in it.
inline constexpr const char* kStagedRecord = "staged.json";

// What the record says; nothing where there is none, or one that cannot be read.
std::vector<StagedFile> ReadStagedRecord(const std::string& workspace);

// Adds these to the record, each in the place of an earlier one of the same place. False, and errno
// set, when it cannot be written.
bool AddToStagedRecord(const std::string& workspace, const std::vector<StagedFile>& files);

}  // namespace host
