#include "files/audio_layout.h"

#include "base/units.h"
#include "wave/wave_file.h"

namespace host {

namespace {

std::string PartFrame(const AudioLayout& layout) {
  const uint64_t rest = layout.bytes % static_cast<uint64_t>(layout.frameBytes);
  return rest == 0 ? "" : "it ends with a part of a frame, " + Bytes(rest);
}

std::string SampleWords(const wave::Audio& audio) {
  if (audio.coding == wave::Coding::kALaw) return "A-law";
  if (audio.coding == wave::Coding::kMuLaw) return "mu-law";
  if (audio.coding == wave::Coding::kOther) return "of a coding that is not known";
  std::string words = std::to_string(audio.bits) + "-bit";
  if (audio.coding == wave::Coding::kFloat) words += " float";
  const bool packed = audio.frameBytes * 8 == audio.bits * audio.channels;
  return packed ? words
                : words + " in " + Bytes(static_cast<uint64_t>(audio.frameBytes)) + " a frame";
}

// Returns whether the output is written in blocks and holds whole ones only.
bool WholeBlocks(const FileUse& use, const AudioLayout& layout) {
  if (use.blockMs == 0 || layout.samples != SampleType::kPcm16) return false;
  const uint64_t block = BlockBytes(use, layout.rate, layout.channels);
  return block > 0 && layout.bytes % block == 0;
}

std::optional<AudioLayout> FindInWave(const FileUse& use, FILE* file, uint64_t fileBytes) {
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
  if (layout.flaw.empty() && !WholeBlocks(use, layout)) layout.flaw = PartFrame(layout);
  layout.announced = found.audio->announcedBytes;
  layout.sampleWords = SampleWords(*found.audio);
  return layout;
}

}  // namespace

double AudioLayout::Seconds() const {
  if (rate == 0 || frameBytes == 0) return 0;
  const uint64_t frames = bytes / static_cast<uint64_t>(frameBytes);
  return static_cast<double>(frames) / rate;
}

uint64_t BlockBytes(const FileUse& use, int rate, int channels) {
  if (use.blockBytes > 0) return static_cast<uint64_t>(use.blockBytes);
  return static_cast<uint64_t>(rate) * static_cast<uint64_t>(channels) *
         static_cast<uint64_t>(use.blockMs) / 1000 * sizeof(int16_t);
}

std::optional<AudioLayout> FindAudio(const FileUse& use, FILE* file, uint64_t fileBytes) {
  if (use.container == Container::kOther) return std::nullopt;
  if (use.container == Container::kWave || use.container == Container::kRecording) {
    return FindInWave(use, file, fileBytes);
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
