#include "report_page/flac_text.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "base/units.h"
#include "recording/recording_writer.h"

namespace host {

namespace {

// The most that the format has.
constexpr size_t kMostChannels = 8;
constexpr int kMostRate = 655350;

// A file that has no name and is in memory only.
class MemoryFile {
 public:
  MemoryFile() : m_file(memfd_create("flac", MFD_CLOEXEC)) {}
  ~MemoryFile() {
    if (m_file >= 0) close(m_file);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int descriptor() const { return m_file; }

  std::string Bytes() const {
    const off_t size = lseek(m_file, 0, SEEK_END);
    std::string bytes(static_cast<size_t>(size < 0 ? 0 : size), '\0');
    const ssize_t count = pread(m_file, bytes.data(), bytes.size(), 0);
    bytes.resize(static_cast<size_t>(count < 0 ? 0 : count));
    return bytes;
  }

 private:
  int m_file;
};

std::vector<double> Interleaved(const std::vector<std::vector<float>>& channels) {
  std::vector<double> samples;
  samples.reserve(channels.size() * channels.front().size());
  for (size_t i = 0; i < channels.front().size(); ++i) {
    for (const std::vector<float>& channel : channels) samples.push_back(channel[i]);
  }
  return samples;
}

WrittenLevel LevelOf(const std::vector<double>& samples) {
  WrittenLevel level;
  for (const double sample : samples) {
    level.highest = std::max(level.highest, sample);
    level.lowest = std::min(level.lowest, sample);
  }
  return level;
}

}  // namespace

FlacFile EncodeFlac(const std::vector<std::vector<float>>& channels, int rate, int bits) {
  if (channels.empty() || channels.front().empty()) return {.fault = "no samples"};
  if (channels.size() > kMostChannels) return {.fault = "more than 8 channels"};
  if (rate > kMostRate) return {.fault = "a rate of " + Hertz(rate)};
  const WrittenForm form = {
      .kind = WrittenForm::Kind::kFlac,
      .samples = bits == 16 ? WrittenForm::Samples::kPcm16 : WrittenForm::Samples::kPcm24,
      .rate = rate,
      .channels = static_cast<int>(channels.size())};
  const std::vector<double> samples = Interleaved(channels);
  const double gain = GainWithoutClipping(LevelOf(samples), form, false);
  const MemoryFile file;
  if (file.descriptor() < 0) return {.fault = strerror(errno)};
  RecordingWriter writer(file.descriptor(), form, gain, false);
  const bool done = writer.Write(samples) && writer.Close();
  if (!done) return {.fault = writer.Fault()};
  return {.bytes = file.Bytes(), .gain = 20 * std::log10(gain)};
}

std::string Base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = 0;
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    for (size_t k = 0; k < 3; ++k) {
      group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (size_t k = 0; k < 4; ++k) {
      text += k <= count ? kDigits[group >> (18 - 6 * k) & 63U] : '=';
    }
  }
  return text;
}

}  // namespace host
