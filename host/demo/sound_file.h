#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "catalogue/files.h"
#include "demo/material.h"
#include "files/sha256.h"

namespace host {

// A sound of the demo as a file of 16-bit samples.
class SoundFile {
 public:
  SoundFile(Sound sound, const harness::WaveFormat& format);

  // Of a WAVE, or of its samples alone.
  std::span<const std::byte> Bytes(bool headerless) const;

  // Of these bytes; made when it is first asked for.
  const FileDigest& Digest(bool headerless);

 private:
  std::vector<std::byte> m_bytes;
  std::optional<FileDigest> m_digests[2];
};

// One of each is made in a process and those that come of it: what a suite has made before it
// starts a case, the case has.
SoundFile& SoundFileOf(Sound sound, const harness::WaveFormat& format);
const Sentences& AllSentences();

}  // namespace host
