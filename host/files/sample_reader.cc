#include "files/sample_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace host {

SampleReader::SampleReader(FILE* file, const AudioLayout& layout) : m_file(file) {
  if (!layout.samples) {
    m_fault = "samples of a type that is not known";
    return;
  }
  if (fseeko(file, static_cast<off_t>(layout.offset), SEEK_SET) != 0) {
    m_fault = strerror(errno);
    return;
  }
  m_type = *layout.samples;
  const auto channels = static_cast<size_t>(layout.channels);
  const size_t most = (kBlockValues + channels - 1) / channels * channels;
  m_integers.resize(m_type == SampleType::kPcm16 ? most : 0);
  m_samples.resize(most);
  m_left = layout.bytes / static_cast<uint64_t>(layout.frameBytes) * channels;
}

std::span<const float> SampleReader::Next() {
  const auto count = static_cast<size_t>(std::min<uint64_t>(m_left, m_samples.size()));
  if (count == 0) return {};
  if (!Read(count)) {
    m_fault = ferror(m_file) != 0 ? strerror(errno) : "it has become shorter";
    m_left = 0;
    return {};
  }
  m_left -= count;
  return std::span(m_samples).first(count);
}

bool SampleReader::Read(size_t count) {
  errno = 0;
  if (m_type == SampleType::kFloat32) {
    return fread(m_samples.data(), sizeof(float), count, m_file) == count;
  }
  if (fread(m_integers.data(), sizeof(int16_t), count, m_file) < count) return false;
  for (size_t i = 0; i < count; ++i) {
    m_samples[i] = static_cast<float>(m_integers[i]) * (1.0F / 32768);
  }
  return true;
}

}  // namespace host
