#include "files/wave_copy.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
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

// Returns what went wrong; empty when nothing did.
std::string WriteSamples(FILE* in, const AudioLayout& layout, float gain,
                         const std::function<bool()>& goOn, FILE* out) {
  std::vector<int16_t> block;
  int error = 0;
  const std::string fault = ForEachSampleBlock(in, layout, [&](std::span<const float> samples) {
    block.resize(samples.size());
    std::transform(samples.begin(), samples.end(), block.begin(),
                   [gain](float sample) { return ToPcm16(sample, gain); });
    if (fwrite(block.data(), sizeof(int16_t), block.size(), out) < block.size()) error = errno;
    return error == 0 && goOn();
  });
  return error != 0 ? strerror(error) : fault;
}

// Returns what went wrong; empty when nothing did.
std::string Copy(FILE* in, const AudioLayout& layout, float gain, const std::function<bool()>& goOn,
                 FILE* out) {
  const uint64_t frames = layout.bytes / static_cast<uint64_t>(layout.frameBytes);
  const uint64_t dataBytes = frames * 2 * static_cast<uint64_t>(layout.channels);
  if (dataBytes > UINT32_MAX - wave::kHeaderBytes) return "too long for a WAVE file";
  const auto header = wave::Header(layout.rate, layout.channels, 16, dataBytes);
  // It fits into the buffer of the file: a full disk shows in what follows.
  fwrite(header.data(), 1, header.size(), out);
  return WriteSamples(in, layout, gain, goOn, out);
}

}  // namespace

WaveCopy WriteWaveCopy(FILE* file, const AudioLayout& layout, double peak, const WorkFile& to,
                       const std::function<bool()>& goOn) {
  WaveCopy copy = {.path = to.Path(), .problem = {}};
  if (peak > 1) copy.attenuation = 20 * std::log10(peak) + 1;
  const double gain = peak > 1 ? std::pow(10.0, -copy.attenuation / 20) : 1;
  FILE* const out = to.Create();
  if (out == nullptr) {
    copy.problem = WriteFault(errno);
    return copy;
  }
  copy.problem = Copy(file, layout, static_cast<float>(gain), goOn, out);
  if (fclose(out) != 0 && copy.problem.empty()) copy.problem = strerror(errno);
  // Half a copy would be taken for a whole one.
  if (!copy.problem.empty()) remove(copy.path.c_str());
  return copy;
}

}  // namespace host
