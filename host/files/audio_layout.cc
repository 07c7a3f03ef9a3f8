#include "files/audio_layout.h"

#include "base/units.h"
#include "wave/wave_file.h"

namespace host {

namespace {

std::string PartFrame(const AudioLayout& layout) {
  const uint64_t rest = layout.bytes % static_cast<uint64_t>(layout.frameBytes);
  return rest == 0 ? "" : "it ends with a part of a frame, " + Bytes(rest);
}

std::optional<AudioLayout> FindInWave(FILE* file, uint64_t fileBytes) {
  const wave::Parsed found = wave::Find(file, fileBytes);
  if (!found.audio) return std::nullopt;
  AudioLayout layout = {.rate = found.audio->rate,
                        .channels = found.audio->channels,
                        .offset = found.audio->offset,
                        .bytes = found.audio->bytes,
                        .frameBytes = found.audio->frameBytes};
  if (found.audio->IsPcm16()) layout.samples = SampleType::kPcm16;
  if (found.audio->IsFloat32()) layout.samples = SampleType::kFloat32;
  layout.flaw = wave::LengthFault(file, *found.audio, fileBytes);
  if (layout.flaw.empty()) layout.flaw = PartFrame(layout);
  return layout;
}

}  // namespace

double AudioLayout::Seconds() const {
  if (rate == 0 || frameBytes == 0) return 0;
  const uint64_t frames = bytes / static_cast<uint64_t>(frameBytes);
  return static_cast<double>(frames) / rate;
}

std::optional<AudioLayout> FindAudio(const FileUse& use, FILE* file, uint64_t fileBytes) {
  if (use.container == Container::kOther) return std::nullopt;
  if (use.container == Container::kWave || use.container == Container::kRecording) {
    return FindInWave(file, fileBytes);
  }
  const int sampleBytes = use.samples == SampleType::kPcm16 ? 2 : 4;
  AudioLayout layout = {.samples = use.samples,
                        .rate = use.rate,
                        .channels = use.channels,
                        .bytes = fileBytes,
                        .frameBytes = sampleBytes * use.channels};
  layout.flaw = PartFrame(layout);
  return layout;
}

}  // namespace host
