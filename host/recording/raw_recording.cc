// Samples without a header.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <span>
#include <vector>

#include "base/units.h"
#include "recording/recording.h"

namespace host {

namespace {

constexpr double kFullScale = 2147483648.0;  // Of 32 bits.

size_t SampleBytes(RawForm::Samples samples) {
  return samples == RawForm::Samples::kS16 ? 2 : samples == RawForm::Samples::kS24 ? 3 : 4;
}

std::string SampleWords(RawForm::Samples samples) {
  if (samples == RawForm::Samples::kF32) return "32-bit float";
  return std::to_string(8 * SampleBytes(samples)) + "-bit";
}

// The highest bytes of 32 bits, so that full scale is the same for all widths.
uint32_t HighBytes(const unsigned char* bytes, size_t count) {
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) value = value >> 8U | uint32_t{bytes[i]} << 24U;
  return value;
}

// Of samples as this machine has them, too: the lowest byte first.
template <typename Sample>
void Widen(const unsigned char* bytes, double scale, std::span<double> values) {
  static_assert(std::endian::native == std::endian::little);
  for (size_t i = 0; i < values.size(); ++i) {
    Sample sample;
    memcpy(&sample, bytes + i * sizeof sample, sizeof sample);
    values[i] = static_cast<double>(sample) * scale;
  }
}

class RawRecording : public Recording {
 public:
  RawRecording(int file, const RawForm& form, uint64_t frames)
      : m_file(file),
        m_samples(form.samples),
        m_begin(form.offset),
        m_format({.container = "headerless",
                  .samples = SampleWords(form.samples),
                  .rate = form.rate,
                  .channels = form.channels,
                  .frames = frames}) {}

  const RecordingFormat& Format() const override { return m_format; }

  size_t Read(double* samples, size_t frames) override {
    const size_t width = SampleBytes(m_samples);
    const size_t frameBytes = width * static_cast<size_t>(m_format.channels);
    const uint64_t left = (*m_format.frames * frameBytes - m_at) / frameBytes;
    m_block.resize(std::min<size_t>(frames, left) * frameBytes);
    const ssize_t count =
        pread(m_file, m_block.data(), m_block.size(), static_cast<off_t>(m_begin + m_at));
    if (count < static_cast<ssize_t>(m_block.size())) {
      m_fault = count < 0 ? std::string("cannot be read: ") + strerror(errno)
                          : "was cut off while it was read";
    }
    const size_t read = count < 0 ? 0 : static_cast<size_t>(count) / frameBytes;
    const std::span values(samples, read * static_cast<size_t>(m_format.channels));
    switch (m_samples) {
      case RawForm::Samples::kS16:
        Widen<int16_t>(m_block.data(), 1.0 / 32768, values);
        break;
      case RawForm::Samples::kF32:
        Widen<float>(m_block.data(), 1, values);
        break;
      default:
        for (size_t i = 0; i < values.size(); ++i) {
          const uint32_t bits = HighBytes(m_block.data() + i * width, width);
          values[i] = static_cast<double>(std::bit_cast<int32_t>(bits)) / kFullScale;
        }
    }
    m_at += read * frameBytes;
    return read;
  }

  std::string Fault() const override { return m_fault; }

 private:
  int m_file;
  RawForm::Samples m_samples;
  uint64_t m_begin;
  RecordingFormat m_format;
  uint64_t m_at = 0;  // Bytes of samples read.
  std::vector<unsigned char> m_block;
  std::string m_fault;
};

}  // namespace

OpenedRecording OpenRawRecording(int file, const RawForm& form) {
  struct stat status = {};
  if (fstat(file, &status) != 0) return {.fault = strerror(errno)};
  const auto whole = static_cast<uint64_t>(status.st_size);
  const uint64_t bytes = form.bytes.value_or(whole - std::min(whole, form.offset));
  const uint64_t frameBytes = SampleBytes(form.samples) * static_cast<uint64_t>(form.channels);
  if (bytes % frameBytes != 0) {
    return {.fault = "ends with a part of a frame: " + Bytes(bytes) + " are no multiple of the " +
                     std::to_string(frameBytes) + " of " + SampleWords(form.samples) + " " +
                     Channels(form.channels)};
  }
  return {.recording = std::make_unique<RawRecording>(file, form, bytes / frameBytes)};
}

}  // namespace host
