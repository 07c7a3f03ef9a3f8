#include "engine_api/common/wav_writer.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstring>

#include "desktop/common/wav_header.h"
#include "desktop/platform/log.h"

namespace {

// Finishes a file that is not whole because of an error.
void FinishShort(FILE* file, const desktop::WavFormat& format, uint32_t given, int error) {
  const uint64_t kept = desktop::FinishWav(file, format) / sizeof(short);
  desktop::LogRefusal("A WAVE file ends after %" PRIu64 " of %u samples: %s", kept, given,
                      strerror(error));
}

// Returns the nearest 16-bit sample; 0 for what is not a number.
short ToSample(float value) {
  if (std::isnan(value)) return 0;
  return static_cast<short>(lrintf(std::clamp(value, -32768.0F, 32767.0F)));
}

}  // namespace

namespace zuwebrtc {

WavWriter::WavWriter(const std::string& filename, int sample_rate, int num_channels)
    : sample_rate_(sample_rate), num_channels_(num_channels) {
  file_handle_ = desktop::CreateWav(filename.c_str(), {sample_rate_, num_channels_, 16},
                                    desktop::WavBuffer::kStdio);
}

WavWriter::~WavWriter() {
  if (file_handle_ == nullptr) return;
  const desktop::WavFormat format = {sample_rate_, num_channels_, 16};
  if (fflush(file_handle_) == 0) {
    desktop::FinishWav(file_handle_, format);
  } else {
    FinishShort(file_handle_, format, num_samples_, errno);
  }
}

void WavWriter::WriteSamples(const short* samples, unsigned count) {
  if (file_handle_ == nullptr || count == 0) return;

  num_samples_ += std::min(count, UINT32_MAX - num_samples_);
  if (fwrite(samples, sizeof(short), count, file_handle_) == count) return;
  FinishShort(file_handle_, {sample_rate_, num_channels_, 16}, num_samples_, errno);
  file_handle_ = nullptr;
}

void WavWriter::WriteSamples(const float* samples, unsigned count) {
  constexpr unsigned kMaxBlock = 1024;
  short converted[kMaxBlock];
  while (count > 0) {
    const unsigned length = std::min(count, kMaxBlock);
    std::transform(samples, samples + length, converted, ToSample);
    WriteSamples(converted, length);
    samples += length;
    count -= length;
  }
}

}  // namespace zuwebrtc
