#include "desktop/common/wav_header.h"

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "engine_api/platform/log.h"

static_assert(std::endian::native == std::endian::little, "Headers and samples are stored as held");

namespace desktop {

WavHeader EmptyWavHeader(int sampleRate, int channels, int bitsPerSample) {
  const uint32_t blockAlign =
      static_cast<uint32_t>(channels) * static_cast<uint32_t>(bitsPerSample) / 8;
  return {.riff = {'R', 'I', 'F', 'F'},
          .riffBytes = sizeof(WavHeader) - 8,
          .wave = {'W', 'A', 'V', 'E'},
          .fmt = {'f', 'm', 't', ' '},
          .fmtBytes = 16,
          .formatTag = 1,
          .channels = static_cast<uint16_t>(channels),
          .sampleRate = static_cast<uint32_t>(sampleRate),
          .bytesPerSecond = static_cast<uint32_t>(sampleRate) * blockAlign,
          .blockAlign = static_cast<uint16_t>(blockAlign),
          .bitsPerSample = static_cast<uint16_t>(bitsPerSample),
          .data = {'d', 'a', 't', 'a'},
          .dataBytes = 0};
}

FILE* OpenWav(const char* name, const char* mode) {
  struct stat status;
  if (stat(name, &status) == 0 && S_ISFIFO(status.st_mode)) {
    errno = ENXIO;
    return nullptr;
  }
  return fopen(name, mode);
}

FILE* CreateWav(const char* name, const WavHeader& header) {
  FILE* file = OpenWav(name, "wb");
  if (file != nullptr) {
    setvbuf(file, nullptr, _IONBF, 0);
    if (fwrite(&header, sizeof(header), 1, file) == 1) return file;
  }
  OutputDebugInfo("%s: cannot write a WAVE file: %s", name, strerror(errno));
  if (file != nullptr) fclose(file);
  return nullptr;
}

void FinishWav(FILE* file, WavHeader header) {
  if (file == nullptr) return;
  if (fseeko(file, 0, SEEK_END) == 0) {
    const auto fileBytes = static_cast<uint64_t>(std::max<off_t>(ftello(file), sizeof(header)));
    const uint64_t dataBytes = fileBytes - sizeof(header);
    // Chunks have even lengths; the pad byte counts for the file but not for the data.
    if (dataBytes % 2 != 0) fputc(0, file);
    const uint64_t riffBytes = fileBytes - 8 + dataBytes % 2;
    header.riffBytes = static_cast<uint32_t>(std::min<uint64_t>(riffBytes, UINT32_MAX));
    header.dataBytes = static_cast<uint32_t>(std::min<uint64_t>(dataBytes, UINT32_MAX));
    if (fseeko(file, 0, SEEK_SET) == 0) fwrite(&header, sizeof(header), 1, file);
  }
  fclose(file);
}

}  // namespace desktop
