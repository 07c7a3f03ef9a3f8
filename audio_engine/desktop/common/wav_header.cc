#include "desktop/common/wav_header.h"

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "engine_api/platform/log.h"
#include "wave/wave_file.h"

static_assert(std::endian::native == std::endian::little, "Headers and samples are stored as held");

namespace desktop {

WavHeader EmptyWavHeader(int sampleRate, int channels, int bitsPerSample) {
  return std::bit_cast<WavHeader>(wave::Header(sampleRate, channels, bitsPerSample, 0));
}

FILE* OpenWav(const char* name, const char* mode) {
  struct stat status;
  if (stat(name, &status) == 0 && S_ISFIFO(status.st_mode)) {
    errno = ENXIO;
    return nullptr;
  }
  return fopen(name, mode);
}

FILE* CreateWav(const char* name, const WavHeader& header, WavBuffer buffer) {
  FILE* file = OpenWav(name, "wb");
  if (file != nullptr) {
    if (buffer == WavBuffer::kNone) setvbuf(file, nullptr, _IONBF, 0);
    if (fwrite(&header, sizeof(header), 1, file) == 1 && fflush(file) == 0) return file;
  }
  OutputDebugInfo("%s: cannot write a WAVE file: %s", name, strerror(errno));
  if (file != nullptr) fclose(file);
  return nullptr;
}

uint64_t FinishWav(FILE* file, WavHeader header) {
  if (file == nullptr) return 0;
  uint64_t dataBytes = 0;
  if (fseeko(file, 0, SEEK_END) == 0) {
    const auto fileBytes = static_cast<uint64_t>(std::max<off_t>(ftello(file), sizeof(header)));
    dataBytes = fileBytes - sizeof(header);
    header = std::bit_cast<WavHeader>(wave::Header(
        static_cast<int>(header.sampleRate), header.channels, header.bitsPerSample, dataBytes));
    if (fseeko(file, 0, SEEK_SET) == 0) fwrite(&header, sizeof(header), 1, file);
    // Chunks have even lengths; the pad byte counts for the file but not for the data. It comes
    // last, because on a full disk it is what does not fit.
    if (dataBytes % 2 != 0 && fseeko(file, 0, SEEK_END) == 0) fputc(0, file);
  }
  fclose(file);
  return dataBytes;
}

}  // namespace desktop
