#include "run/wave_input.h"

#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <string>

#include "base/counted.h"
#include "base/units.h"
#include "catalogue/catalogue_text.h"
#include "files/audio_layout.h"
#include "files/foreign_audio.h"
#include "files/regular_file.h"
#include "run/remedy.h"
#include "wave/wave_file.h"

namespace host {

namespace {

std::string Convert(const FilePlace& input) { return "; to convert it: " + WaveConversion(input); }

std::string Says(const FilePlace& input, const std::string& what) {
  return "input " + FileName(input) + " " + what;
}

std::string FormatOf(const AudioLayout& audio) {
  return Hertz(audio.rate) + ", " + Channels(audio.channels);
}

bool Fits(const AudioLayout& audio, WaveFormat format) {
  return (format.rate == 0 || format.rate == audio.rate) &&
         (format.channels == 0 || format.channels == audio.channels);
}

// Whether the format is one that is right by the declaration alone.
bool IsRight(const AudioLayout& audio, const FileUse& use) {
  if (audio.rate < use.leastRate) return false;
  if (Fits(audio, {use.rate, use.channels})) return true;
  return use.alsoRight.channels > 0 && Fits(audio, use.alsoRight);
}

// The bytes that the routine takes for samples.
uint64_t SampleBytes(const FileUse& use, const AudioLayout& audio, uint64_t fileBytes) {
  if (use.header == WaveHeader::kSamples) return fileBytes;
  if (use.header == WaveHeader::kRead) return audio.bytes;
  return fileBytes - std::min<uint64_t>(fileBytes, wave::kHeaderBytes);
}

// Whether no more is missing than a routine leaves out that copies the header of its input and
// drops the last part of a block: its outputs are whole.
bool PartBlockLeftOut(const AudioLayout& audio) {
  const uint64_t missing = audio.announced - audio.bytes;
  for (const uint64_t block :
       {BlockBytes({.blockMs = 10}, audio.rate, audio.channels), uint64_t{320}}) {
    if (block > 0 && audio.bytes > 0 && audio.bytes % block == 0 && missing < block) return true;
  }
  return false;
}

// What is in the way of a header of 44 bytes: "a LIST chunk".
std::string HeaderWords(FILE* file) {
  unsigned char head[wave::kHeaderBytes] = {};
  if (fseeko(file, 0, SEEK_SET) != 0 || fread(head, 1, sizeof head, file) < sizeof head) return "";
  const auto name = [&head](size_t at) {
    std::string text;
    for (size_t i = at; i < at + 4; ++i) {
      if (head[i] != ' ') text += head[i] > ' ' && head[i] < 127 ? static_cast<char>(head[i]) : '?';
    }
    return text;
  };
  if (name(12) != "fmt") return "a " + name(12) + " chunk";
  if (head[16] != 16) return "a format chunk of " + Bytes(head[16]) + " where a plain one has 16";
  return "a " + name(36) + " chunk";
}

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

// A WAVE input that is there.
struct OpenWave {
  std::unique_ptr<FILE, CloseFile> file;
  std::optional<AudioLayout> audio;
};

OpenWave Open(const FileReport& input) {
  OpenWave wave;
  const Container container = input.place.use.container;
  if (container != Container::kWave && container != Container::kRecording) return wave;
  wave.file.reset(OpenRegular(input.place.path));
  struct stat status = {};
  if (wave.file == nullptr || fstat(fileno(wave.file.get()), &status) != 0) return wave;
  wave.audio = FindAudio(input.place.use, wave.file.get(), static_cast<uint64_t>(status.st_size));
  return wave;
}

void AddShortage(const AudioLayout& audio, FileReport& input) {
  if (audio.announced <= audio.bytes || PartBlockLeftOut(audio)) return;
  input.problems.push_back(
      {Cause::kInputNotWhole,
       Says(input.place, "is not whole: its header announces " + Counted(audio.announced, "byte") +
                             " of samples, " + ThereAre(audio.bytes))});
}

void AddHeaderWarning(FILE* file, const AudioLayout& audio, FileReport& input) {
  const WaveHeader header = input.place.use.header;
  if (audio.offset == wave::kHeaderBytes || header == WaveHeader::kRead ||
      header == WaveHeader::kSamples) {
    return;
  }
  const std::string fault = Says(input.place, "has a header of " + Bytes(audio.offset) + " with " +
                                                  HeaderWords(file) + ", where the first 44 are ");
  const std::string remedy = ", so that the rest counts as samples" + Convert(input.place);
  if (header == WaveHeader::kCopied) {
    input.concerns.push_back({Concern::Kind::kHeader, fault + "copied as the header" + remedy});
  } else {
    input.problems.push_back({Cause::kInputAsItIs, fault + "skipped as the header" + remedy});
  }
}

// Whether a run on another format is refused, and the engine takes no other one.
bool OnlyRight(const FileUse& use, const Engine& engine) {
  return use.onlyRight && !engine.IsInLibrary(std::string(use.formatBy));
}

// `right`: the format that would be, in words.
void AddOtherFormat(const AudioLayout& audio, const FilePlace& wanted, const std::string& right,
                    const Engine& engine, FileReport& input) {
  const std::string is = Says(input.place, "is " + FormatOf(audio));
  const std::string only = is + ", where only " + right + " is taken" + Convert(wanted);
  if (OnlyRight(input.place.use, engine)) {
    input.problems.push_back({Cause::kInputFormat, only});
    return;
  }
  switch (input.place.use.otherFormat) {
    case OtherFormat::kAsItIs:
      input.problems.push_back(
          {Cause::kInputAsItIs,
           is + ", where " + right + " is counted on; it is taken as it is" + Convert(wanted)});
      break;
    case OtherFormat::kAborts:
      input.concerns.push_back({Concern::Kind::kAborts, only});
      break;
    case OtherFormat::kNoOutput:
      input.concerns.push_back({Concern::Kind::kNoOutput, only});
      break;
  }
}

// What is to be known of a file that is right, but not for all parts of the routine.
void AddAlsoTakenFor(const AudioLayout& audio, FileReport& input) {
  const WaveFormat format = input.place.use.alsoTakenFor;
  if (Fits(audio, format)) return;
  FileUse use;
  use.rate = format.rate;
  use.channels = format.channels;
  input.problems.push_back({Cause::kInputAsItIs, Says(input.place, "is " + FormatOf(audio) +
                                                                       ", which a part of the "
                                                                       "routine takes for " +
                                                                       RightFormat(use))});
}

void AddFormatProblem(const AudioLayout& audio, std::span<FileReport> inputs, const Engine& engine,
                      FileReport& input) {
  FilePlace wanted = input.place;
  if (!IsRight(audio, wanted.use)) {
    if (audio.rate < wanted.use.leastRate) wanted.use.rate = wanted.use.leastRate;
    AddOtherFormat(audio, wanted, RightFormat(input.place.use), engine, input);
  } else {
    AddAlsoTakenFor(audio, input);
  }
  if (wanted.use.formatOf.empty()) return;
  const auto other = std::find_if(inputs.begin(), inputs.end(), [&](const FileReport& each) {
    return each.place.name == wanted.use.formatOf;
  });
  const auto otherAudio = other == inputs.end() ? std::nullopt : Open(*other).audio;
  if (!otherAudio || Fits(audio, {otherAudio->rate, otherAudio->channels})) return;
  wanted.use.rate = otherAudio->rate;
  wanted.use.channels = otherAudio->channels;
  AddOtherFormat(audio, wanted, FormatOf(*otherAudio) + ", as in " + other->place.name, engine,
                 input);
}

}  // namespace

std::optional<Problem> WaveProblem(const FilePlace& input, FILE* file, uint64_t bytes) {
  const FileUse& use = input.use;
  if (bytes == 0) return std::nullopt;
  const std::optional<AudioLayout> audio = FindAudio(use, file, bytes);
  if (!audio && use.headerlessToo) {
    const std::string kind(ForeignAudio(file));
    if (kind.empty()) return std::nullopt;
    return Problem{Cause::kInputFormat,
                   Says(input, "is " + kind + ", not samples" + Convert(input))};
  }
  if (!audio) {
    return Problem{Cause::kInputFormat,
                   Says(input, "is no WAVE file that can be read" + Convert(input))};
  }
  if (audio->samples != SampleType::kPcm16) {
    return Problem{Cause::kInputFormat,
                   Says(input, "holds samples that are " + audio->sampleWords +
                                   ", where only 16-bit ones are taken" + Convert(input))};
  }
  const uint64_t block = BlockBytes(use, audio->rate, audio->channels);
  const uint64_t samples =
      BlockBytes({.blockMs = use.blockMs}, audio->rate, audio->channels) / sizeof(int16_t);
  if (use.blockMs > 0 && (samples == 0 || samples > static_cast<uint64_t>(use.mostBlockSamples))) {
    return Problem{
        Cause::kInputFormat,
        Says(input, "is " + FormatOf(*audio) + ": " + Counted(samples, "sample") +
                        " in a block of " + std::to_string(use.blockMs) + " ms, where 1 to " +
                        std::to_string(use.mostBlockSamples) + " are read" + Convert(input))};
  }
  const uint64_t there = SampleBytes(use, *audio, bytes);
  if (use.optional || there >= std::max<uint64_t>(block, 1)) return std::nullopt;
  if (block == 0) return Problem{Cause::kInputTooShort, Says(input, "holds no samples")};
  return Problem{Cause::kInputTooShort, Says(input, "holds no whole block of " + Bytes(block) +
                                                        " of samples: " + Bytes(there))};
}

void AddFormatProblems(std::span<FileReport> inputs, const Engine& engine) {
  for (FileReport& input : inputs) {
    if (!input.problems.empty()) continue;
    const OpenWave wave = Open(input);
    if (!wave.audio) continue;
    AddShortage(*wave.audio, input);
    if (input.place.use.container != Container::kWave) continue;
    AddHeaderWarning(wave.file.get(), *wave.audio, input);
    AddFormatProblem(*wave.audio, inputs, engine, input);
  }
}

}  // namespace host
