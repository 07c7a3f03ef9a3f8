#include "files/wave_copy.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "files/audio_figures.h"
#include "wave/wave_file.h"

namespace host {

namespace {

int16_t ToPcm16(float sample, float gain) {
  const float value = std::nearbyint(sample * 32768.0F * gain);
  if (!std::isfinite(value)) return 0;
  return static_cast<int16_t>(std::clamp(value, -32768.0F, 32767.0F));
}

bool WriteSamples(FILE* in, const AudioLayout& layout, float gain, FILE* out) {
  std::vector<int16_t> block;
  bool written = true;
  const bool read = ForEachSampleBlock(in, layout, [&](std::span<const float> samples) {
    block.resize(samples.size());
    std::transform(samples.begin(), samples.end(), block.begin(),
                   [gain](float sample) { return ToPcm16(sample, gain); });
    written = written && fwrite(block.data(), sizeof(int16_t), block.size(), out) == block.size();
  });
  return read && written;
}

// What went wrong; empty when nothing did.
std::string Copy(FILE* in, const AudioLayout& layout, float gain, const std::string& path) {
  const uint64_t frames = layout.bytes / static_cast<uint64_t>(layout.frameBytes);
  const uint64_t dataBytes = frames * 2 * static_cast<uint64_t>(layout.channels);
  if (dataBytes > UINT32_MAX - wave::kHeaderBytes) return "too long for a WAVE file";
  FILE* const out = fopen(path.c_str(), "wb");
  if (out == nullptr) return strerror(errno);

  const auto header = wave::Header(layout.rate, layout.channels, 16, dataBytes);
  errno = 0;
  const bool written = fwrite(header.data(), 1, header.size(), out) == header.size() &&
                       WriteSamples(in, layout, gain, out);
  const int error = errno;
  if (fclose(out) == 0 && written) return "";
  std::string reason = strerror(error != 0 ? error : errno);
  remove(path.c_str());  // Half a copy would be taken for a whole one.
  return reason;
}

}  // namespace

WaveCopy WriteWaveCopy(FILE* file, const AudioLayout& layout, double peak,
                       const std::string& path) {
  WaveCopy copy = {.path = path, .problem = {}};
  if (peak > 1) copy.attenuation = 20 * std::log10(peak) + 1;
  const double gain = peak > 1 ? std::pow(10.0, -copy.attenuation / 20) : 1;
  copy.problem = Copy(file, layout, static_cast<float>(gain), path);
  return copy;
}

}  // namespace host
