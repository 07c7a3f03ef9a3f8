#include "engine_api/common/wav_reader.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "desktop/common/wav_header.h"
#include "engine_api/platform/log.h"

namespace {

// Limits beyond which a header is taken for damage, not for audio.
constexpr uint32_t kMaxRate = 768000;  // Hz.
constexpr uint16_t kMaxChannels = 64;
constexpr int kMaxChunks = 1000;  // Before the samples.

// The extensible format's name for integer PCM.
constexpr uint8_t kPcmSubformat[16] = {1,    0, 0, 0,    0, 0,    0x10, 0,
                                       0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

struct ChunkHeader {
  char id[4];
  uint32_t bytes;
};

// The "fmt " chunk with the extension that may follow its first 16 bytes.
struct Format {
  uint16_t tag;
  uint16_t channels;
  uint32_t rate;
  uint32_t bytesPerSecond;
  uint16_t blockAlign;
  uint16_t bits;
  uint16_t extensionBytes;
  uint16_t validBits;
  uint32_t channelMask;
  uint8_t subformat[16];
};
static_assert(sizeof(Format) == 40);

constexpr uint16_t kPcmTag = 1;
constexpr uint16_t kExtensibleTag = 0xFFFE;

bool Is(const char* id, const char* expected) { return memcmp(id, expected, 4) == 0; }

// Why the format cannot be read, null when it can. What a shorter chunk lacks is zero.
const char* FaultOf(const Format& format) {
  const bool extensible = format.tag == kExtensibleTag &&
                          memcmp(format.subformat, kPcmSubformat, sizeof(kPcmSubformat)) == 0;
  if (format.tag != kPcmTag && !extensible) return "not integer PCM";
  if (format.bits != 16) return "not 16-bit";
  if (format.channels == 0 || format.channels > kMaxChannels) return "no such channel count";
  if (format.rate == 0 || format.rate > kMaxRate) return "no such rate";
  if (format.blockAlign != 2 * format.channels) return "block alignment does not fit";
  return nullptr;
}

// The bytes of a data chunk that begins `available` bytes ahead of the end of the file. Programs
// that cannot go back to the header leave all ones there, or zeros in both of its lengths.
uint64_t DataBytes(uint32_t riffBytes, uint32_t announced, uint64_t available) {
  const bool unknown = announced == UINT32_MAX || (announced == 0 && riffBytes == 0);
  return unknown ? available : std::min<uint64_t>(announced, available);
}

// Goes to the first sample. Returns null, format and data bytes filled in, or why there is none.
const char* FindSamples(FILE* file, Format* format, uint64_t* dataBytes) {
  struct stat status;
  if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return "not a regular file";
  ChunkHeader riff;
  char wave[4];
  if (fread(&riff, sizeof(riff), 1, file) != 1 || !Is(riff.id, "RIFF")) return "not RIFF";
  if (fread(wave, sizeof(wave), 1, file) != 1 || !Is(wave, "WAVE")) return "not WAVE";

  const char* fault = "no format ahead of the samples";
  for (int i = 0; i < kMaxChunks; ++i) {
    ChunkHeader chunk;
    if (fread(&chunk, sizeof(chunk), 1, file) != 1) return "no samples";
    const off_t start = ftello(file);
    if (Is(chunk.id, "data")) {
      *dataBytes = DataBytes(riff.bytes, chunk.bytes,
                             static_cast<uint64_t>(std::max<off_t>(status.st_size - start, 0)));
      return fault;
    }
    if (Is(chunk.id, "fmt ")) {
      *format = {};
      const size_t bytes = std::min<size_t>(chunk.bytes, sizeof(*format));
      if (fread(format, bytes, 1, file) != 1) return "format cut short";
      fault = FaultOf(*format);
    }
    // Chunks have even lengths in the file, whatever they announce.
    if (fseeko(file, start + chunk.bytes + chunk.bytes % 2, SEEK_SET) != 0) return "no samples";
  }
  return "too many chunks";
}

}  // namespace

namespace zuwebrtc {

WavReader::WavReader(const std::string& filename) {
  file_handle_ = desktop::OpenWav(filename.c_str(), "rb");
  if (file_handle_ == nullptr) {
    OutputDebugInfo("%s: cannot read: %s", filename.c_str(), strerror(errno));
    return;
  }
  Format format = {};
  uint64_t dataBytes = 0;
  if (const char* fault = FindSamples(file_handle_, &format, &dataBytes)) {
    OutputDebugInfo("%s: cannot read: %s", filename.c_str(), fault);
    return;
  }
  sample_rate_ = static_cast<int>(format.rate);
  num_channels_ = format.channels;
  num_samples_ = static_cast<uint32_t>(std::min<uint64_t>(dataBytes / sizeof(short), UINT32_MAX));
  num_samples_remaining_ = num_samples_;
}

WavReader::~WavReader() {
  if (file_handle_ != nullptr) fclose(file_handle_);
}

unsigned WavReader::ReadSamples(unsigned count, short* out) {
  const unsigned wanted = std::min(count, num_samples_remaining_);
  if (wanted == 0) return 0;
  const auto got = static_cast<unsigned>(fread(out, sizeof(short), wanted, file_handle_));
  num_samples_remaining_ -= got;
  return got;
}

unsigned WavReader::ReadSamples(unsigned count, float* out) {
  unsigned total = 0;
  short block[1024];
  while (total < count) {
    const unsigned wanted = std::min(count - total, static_cast<unsigned>(std::size(block)));
    const unsigned got = ReadSamples(wanted, block);
    std::copy_n(block, got, out + total);
    total += got;
    if (got < wanted) break;
  }
  return total;
}

}  // namespace zuwebrtc
