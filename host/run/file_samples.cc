#include "run/file_samples.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "files/regular_file.h"

namespace host {

namespace {

constexpr size_t kWhole = 1 << 18;   // Samples up to which a file is held whole.
constexpr size_t kOnward = 1 << 16;  // Those that are read at once by who goes on and on,
constexpr size_t kAround = 1 << 10;  // and before and after a place elsewhere.

}  // namespace

FileSamples::FileSamples(const std::string& path, const AudioLayout& layout,
                         std::function<bool()> goOn)
    : m_file(OpenRegularDescriptor(path)),
      m_type(*layout.samples),
      m_offset(layout.offset),
      m_size(layout.bytes / static_cast<uint64_t>(layout.frameBytes) *
             static_cast<size_t>(layout.channels)),
      m_goOn(std::move(goOn)),
      m_failed(m_file < 0) {}

FileSamples::~FileSamples() {
  if (m_file >= 0) close(m_file);
}

std::span<const float> FileSamples::View(size_t first, size_t count) {
  const size_t end = m_first + m_held;
  if (m_held == 0 && m_size <= kWhole) {
    Fill(0, m_size);
  } else if (first < m_first || first + count > end) {
    const bool onward = first >= m_first && first <= end + kAround;
    const size_t from = onward ? first : first - std::min(first, kAround);
    const size_t least = first - from + count;
    Fill(from, std::min(m_size - from, onward ? std::max(least, kOnward) : least + kAround));
  }
  return std::span(m_samples).subspan(first - m_first, count);
}

void FileSamples::Fill(size_t first, size_t count) {
  if (m_samples.size() < count) m_samples.resize(count);
  m_failed = m_failed || !m_goOn() || !Read(first, count);
  if (m_failed) std::ranges::fill(m_samples, 0.0F);
  m_first = first;
  m_held = count;
}

bool FileSamples::Read(size_t first, size_t count) {
  if (m_type == SampleType::kFloat32) {
    return ReadBytes(m_offset + first * sizeof(float), m_samples.data(), count * sizeof(float));
  }
  if (m_integers.size() < count) m_integers.resize(count);
  const size_t bytes = count * sizeof(int16_t);
  if (!ReadBytes(m_offset + first * sizeof(int16_t), m_integers.data(), bytes)) return false;
  for (size_t i = 0; i < count; ++i) {
    m_samples[i] = static_cast<float>(m_integers[i]) * (1.0F / 32768);
  }
  return true;
}

bool FileSamples::ReadBytes(uint64_t offset, void* to, size_t bytes) const {
  auto* next = static_cast<char*>(to);
  while (bytes > 0) {
    const ssize_t count = pread(m_file, next, bytes, static_cast<off_t>(offset));
    if (count <= 0) return false;
    next += count;
    offset += static_cast<uint64_t>(count);
    bytes -= static_cast<size_t>(count);
  }
  return true;
}

}  // namespace host
