#include "desktop/common/wav_header.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "desktop/common/open_file.h"
#include "engine_api/platform/log.h"
#include "wave/wave_file.h"

static_assert(std::endian::native == std::endian::little, "Samples are stored as held");

namespace desktop {

namespace {

bool WriteHeader(FILE* file, const WavFormat& format, uint64_t dataBytes) {
  const auto header =
      wave::Header(format.sampleRate, format.channels, format.bitsPerSample, dataBytes);
  return fwrite(header.data(), header.size(), 1, file) == 1;
}

}  // namespace

FILE* CreateWav(const char* name, const WavFormat& format, WavBuffer buffer) {
  FILE* file = OpenUnlessFifo(name, "wb");
  if (file != nullptr) {
    if (buffer == WavBuffer::kNone) setvbuf(file, nullptr, _IONBF, 0);
    if (WriteHeader(file, format, 0) && fflush(file) == 0) return file;
  }
  OutputDebugInfo("%s: cannot write a WAVE file: %s", name, strerror(errno));
  if (file != nullptr) fclose(file);
  return nullptr;
}

size_t AppendToWav(FILE*& file, const char* name, const WavFormat& format, const void* data,
                   size_t bytes) {
  if (file == nullptr) return 0;
  const size_t kept = fwrite(data, 1, bytes, file);
  if (kept == bytes) return kept;
  OutputDebugInfo("%s: cannot write further: %s", name, strerror(errno));
  FinishWav(file, format);
  file = nullptr;
  return kept;
}

uint64_t FinishWav(FILE* file, const WavFormat& format) {
  if (file == nullptr) return 0;
  uint64_t dataBytes = 0;
  if (fseeko(file, 0, SEEK_END) == 0) {
    constexpr off_t kStart = wave::kHeaderBytes;
    dataBytes = static_cast<uint64_t>(std::max(ftello(file), kStart) - kStart);
    if (fseeko(file, 0, SEEK_SET) == 0) WriteHeader(file, format, dataBytes);
    // Chunks have even lengths; the pad byte counts for the file but not for the data. It comes
    // last, because on a full disk it is what does not fit.
    if (dataBytes % 2 != 0 && fseeko(file, 0, SEEK_END) == 0) fputc(0, file);
  }
  fclose(file);
  return dataBytes;
}

}  // namespace desktop
