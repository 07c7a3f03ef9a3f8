#include "engine_api/common/wav_reader.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "desktop/common/open_file.h"
#include "engine_api/platform/log.h"
#include "wave/wave_file.h"

namespace {

// Goes to the first sample of 16-bit PCM. Returns its layout, or why there is none.
wave::Parsed FindSamples(FILE* file) {
  struct stat status;
  if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {{}, "not a regular file"};
  }
  wave::Parsed found = wave::Find(file, static_cast<uint64_t>(status.st_size));
  if (!found.audio) return found;
  if (found.audio->coding != wave::Coding::kPcm) return {{}, "not integer PCM"};
  if (found.audio->bits != 16) return {{}, "not 16-bit"};
  if (!found.audio->IsPcm16()) return {{}, "block alignment does not fit"};
  if (fseeko(file, static_cast<off_t>(found.audio->offset), SEEK_SET) != 0) {
    return {{}, "no samples"};
  }
  return found;
}

}  // namespace

namespace zuwebrtc {

WavReader::WavReader(const std::string& filename) {
  file_handle_ = desktop::OpenUnlessFifo(filename.c_str(), "rb");
  if (file_handle_ == nullptr) {
    OutputDebugInfo("%s: cannot read: %s", filename.c_str(), strerror(errno));
    return;
  }
  const wave::Parsed found = FindSamples(file_handle_);
  if (!found.audio) {
    OutputDebugInfo("%s: cannot read: %s", filename.c_str(), found.fault);
    return;
  }
  sample_rate_ = found.audio->rate;
  num_channels_ = found.audio->channels;
  num_samples_ =
      static_cast<uint32_t>(std::min<uint64_t>(found.audio->bytes / sizeof(short), UINT32_MAX));
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
  constexpr unsigned kMaxBlock = 1024;
  short block[kMaxBlock];
  while (total < count) {
    const unsigned wanted = std::min(count - total, kMaxBlock);
    const unsigned got = ReadSamples(wanted, block);
    std::copy_n(block, got, out + total);
    total += got;
    if (got < wanted) break;
  }
  return total;
}

}  // namespace zuwebrtc
