#include "desktop/files/wave_writer.h"

// WAVE files whose header announces at every time what they hold.

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "desktop/common/counts.h"
#include "wave/wave_file.h"

namespace desktop {

namespace {

class WaveWriter : public FileWriter {
 public:
  WaveWriter(File file, DeviceFormat format, uint64_t bytes)
      : m_file(std::move(file)), m_format(format), m_bytes(bytes) {
    m_waiting.reserve(2 * m_format.rate * m_format.channels);
  }

  DeviceFormat Format() const override { return m_format; }

  void Add(const short* samples, size_t frames) override {
    m_waiting.insert(m_waiting.end(), samples, samples + frames * m_format.channels);
  }

  // The samples are written first, so that a header never announces more than there is.
  bool Flush() override {
    const size_t bytes = m_waiting.size() * sizeof(short);
    if (!AppendWhole(m_file.get(), m_waiting.data(), bytes)) return false;
    m_waiting.clear();
    m_bytes += bytes;
    return WriteHeader();
  }

  bool Finish() override { return Flush(); }

  bool WriteHeader() {
    const auto header = wave::Header(Count(m_format.rate), Count(m_format.channels), 16, m_bytes);
    return fseeko(m_file.get(), 0, SEEK_SET) == 0 &&
           fwrite(header.data(), header.size(), 1, m_file.get()) == 1;
  }

 private:
  const File m_file;
  const DeviceFormat m_format;
  // How many bytes of samples are in the file.
  uint64_t m_bytes;
  std::vector<short> m_waiting;
};

// Cuts off what follows the last whole frame. The samples start where a canonical header ends, else
// a header that grew would run into them.
std::unique_ptr<WaveWriter> GoOn(File file, uint64_t fileBytes) {
  const wave::Parsed parsed = wave::Find(file.get(), fileBytes);
  if (!parsed.audio || !parsed.audio->IsPcm16() || parsed.audio->offset != wave::kHeaderBytes) {
    return nullptr;
  }
  const DeviceFormat format = {static_cast<uint32_t>(parsed.audio->rate),
                               static_cast<uint32_t>(parsed.audio->channels)};
  const uint64_t frameBytes = Size(parsed.audio->frameBytes);
  const uint64_t bytes = parsed.audio->bytes / frameBytes * frameBytes;
  const off_t end = Offset(wave::kHeaderBytes + bytes);
  if (!format.IsValid() || ftruncate(fileno(file.get()), end) != 0) return nullptr;
  return std::make_unique<WaveWriter>(std::move(file), format, bytes);
}

}  // namespace

std::unique_ptr<FileWriter> OpenWaveWriter(const char* name, DeviceFormat format, bool append) {
  File file = OpenForWriting(name, append);
  if (file == nullptr || fseeko(file.get(), 0, SEEK_END) != 0) return nullptr;
  const off_t fileBytes = ftello(file.get());
  if (fileBytes > 0) return GoOn(std::move(file), Size(fileBytes));
  auto writer = std::make_unique<WaveWriter>(std::move(file), format, 0);
  return writer->WriteHeader() ? std::move(writer) : nullptr;
}

}  // namespace desktop
