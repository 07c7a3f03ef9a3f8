#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "files/audio_layout.h"
#include "guards/samples.h"

namespace host {

// The samples of a file, as floats with full scale at 1, from any place on. Of a long one only
// what is looked at and some of what follows is in memory: fresh memory for all of it costs more
// than to read it several times.
class FileSamples : public SampleSource {
 public:
  // layout: of samples of a type that is known. `goOn` is asked before each read.
  FileSamples(const std::string& path, const AudioLayout& layout, std::function<bool()> goOn);
  ~FileSamples() override;
  FileSamples(const FileSamples&) = delete;
  FileSamples& operator=(const FileSamples&) = delete;

  // Of whole frames.
  size_t Size() const { return m_size; }

  // Whether a sample could not be read, because of a fault or because `goOn` returned false. 0 has
  // stood for it, and for all after it.
  bool HasFailed() const { return m_failed; }

  std::span<const float> View(size_t first, size_t count) override;

 private:
  void Fill(size_t first, size_t count);
  bool Read(size_t first, size_t count);
  bool ReadBytes(uint64_t offset, void* to, size_t bytes) const;

  int m_file;
  SampleType m_type;
  uint64_t m_offset;
  size_t m_size;
  std::function<bool()> m_goOn;
  bool m_failed;
  size_t m_first = 0;  // Of the samples that are held.
  size_t m_held = 0;
  std::vector<float> m_samples = {};
  std::vector<int16_t> m_integers = {};
};

}  // namespace host
