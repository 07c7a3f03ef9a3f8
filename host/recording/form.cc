#include "recording/form.h"

#include <sys/stat.h>

#include <algorithm>

#include "wave/wave_file.h"

namespace host {

namespace {

// Whether the rate `one` fits a recording of `rate` Hz better than `other` does.
bool FitsBetter(int one, int other, int rate) {
  if ((one >= rate) != (other >= rate)) return one >= rate;
  return one >= rate ? one < other : one > other;
}

// The rate nearest to its own that is within the limits.
int WithinLimits(const Form& form, int own) {
  const int most = form.mostRate > 0 ? form.mostRate : own;
  return std::max(std::min(own, most), form.leastRate);
}

int ChannelsOf(const Form& form, int own) {
  int fewest = 0;
  for (const WaveFormat& each : form.formats) {
    if (each.channels == 0 || each.channels == own) return own;
    if (fewest == 0 || each.channels < fewest) fewest = each.channels;
  }
  return fewest == 0 ? own : fewest;
}

int RateOf(const Form& form, int channels, int own) {
  int best = 0;
  for (const WaveFormat& each : form.formats) {
    if (each.channels != 0 && each.channels != channels) continue;
    const int rate = each.rate == 0 ? WithinLimits(form, own) : each.rate;
    if (best == 0 || FitsBetter(rate, best, own)) best = rate;
  }
  return best == 0 ? WithinLimits(form, own) : best;
}

bool HasWaveForm(FILE* file, const Form& form, WaveFormat format) {
  struct stat status = {};
  if (fstat(fileno(file), &status) != 0) return false;
  const auto bytes = static_cast<uint64_t>(status.st_size);
  const wave::Parsed found = wave::Find(file, bytes);
  if (!found.audio || found.audio->rate != format.rate ||
      found.audio->channels != format.channels) {
    return false;
  }
  const wave::Audio& audio = *found.audio;
  const bool samples = form.samples == SampleType::kPcm16 ? audio.IsPcm16() : audio.IsFloat32();
  const bool whole = audio.bytes % static_cast<uint64_t>(audio.frameBytes) == 0 &&
                     wave::LengthFault(file, audio, bytes).empty();
  if (!samples || !whole) return false;
  return !form.plainHeader ||
         (audio.offset == wave::kHeaderBytes && audio.offset + audio.bytes == bytes);
}

}  // namespace

WaveFormat ChooseFormat(const Form& form, const RecordingFormat& recording) {
  const int channels = ChannelsOf(form, recording.channels);
  return {.rate = RateOf(form, channels, recording.rate), .channels = channels};
}

bool HasForm(FILE* file, const RecordingFormat& recording, const Form& form, WaveFormat format) {
  if (recording.rate != format.rate || recording.channels != format.channels) return false;
  switch (form.kind) {
    case Form::Kind::kBytes:
      return true;
    case Form::Kind::kWave:
      return HasWaveForm(file, form, format);
    case Form::Kind::kHeaderless:
      return recording.container == "headerless" &&
             recording.samples == (form.samples == SampleType::kPcm16 ? "16-bit" : "32-bit float");
    case Form::Kind::kRecording:
      break;
  }
  constexpr const char* kKinds[] = {"WAVE", "FLAC", "Ogg", "MPEG", "AAC"};
  return std::find(std::begin(kKinds), std::end(kKinds), recording.container) != std::end(kKinds);
}

}  // namespace host
