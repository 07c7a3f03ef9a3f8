#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "files/audio_layout.h"

namespace host {

// The samples of a file block by block, interleaved, as floats with full scale at 1.
class SampleReader {
 public:
  // So many values are the most in a block of up to as many channels.
  static constexpr size_t kBlockValues = 16384;

  // The file stays open for as long as this object lives. Samples of a type that is not known, and
  // a file that cannot be read, are a fault.
  SampleReader(FILE* file, const AudioLayout& layout);

  // Returns the next whole frames, which the next call overwrites; none at the end, and none at a
  // fault.
  std::span<const float> Next();

  // Returns what kept the file from being read to its end; empty for nothing.
  const std::string& fault() const { return m_fault; }

 private:
  bool Read(size_t count);

  FILE* m_file;
  SampleType m_type = SampleType::kPcm16;
  uint64_t m_left = 0;  // Values
  std::vector<int16_t> m_integers;
  std::vector<float> m_samples;
  std::string m_fault;
};

}  // namespace host
