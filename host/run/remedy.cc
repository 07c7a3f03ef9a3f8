#include "run/remedy.h"

#include <filesystem>
#include <system_error>

#include "base/shell_word.h"
#include "catalogue/catalogue_text.h"

namespace host {

namespace {

// The options of ffmpeg for those that are given.
std::string RateAndChannels(const FileUse& use) {
  std::string options;
  if (use.rate > 0) options += " -ar " + std::to_string(use.rate);
  if (use.channels > 0) options += " -ac " + std::to_string(use.channels);
  return options;
}

// How to make headerless samples of an audio file.
std::string Conversion(const FileUse& use, const std::string& from, const std::string& to) {
  return "ffmpeg -i " + from + (use.samples == SampleType::kPcm16 ? " -f s16le" : " -f f32le") +
         RateAndChannels(use) + " " + ShellWord(to);
}

// Puts what a command left in one place into another.
std::string Move(const std::string& from, const std::string& to) {
  return " && mv " + ShellWord(from) + " " + ShellWord(to);
}

}  // namespace

std::string FileName(const FilePlace& place) {
  return place.path.empty() ? place.name : place.name + " (" + place.path + ")";
}

std::string MissingInputRemedy(const FilePlace& input) {
  if (input.path.empty()) return "";
  switch (input.use.container) {
    case Container::kOther:
      return "; put a file of yours there" +
             (input.use.content.empty() ? "" : ": " + input.use.content);
    case Container::kWave:
      return "; put a file of yours there: " + InputFormat(input.use);
    case Container::kRecording:
      return "; put an audio file of yours there (" + FileFormat(input.use) + ")";
    case Container::kHeaderless:
      break;
  }
  const std::filesystem::path folder = std::filesystem::path(input.path).parent_path();
  std::error_code error;
  const bool there = std::filesystem::is_directory(folder, error);
  return "; it takes " + FileFormat(input.use) + ": " +
         (there ? "" : "mkdir -p " + ShellWord(folder) + " && ") +
         Conversion(input.use, "YOUR_FILE", input.path);
}

std::string WaveConversion(const FilePlace& input) {
  const std::string converted = input.path + ".16.wav";
  return "ffmpeg -i " + ShellWord(input.path) + " -c:a pcm_s16le -map_metadata -1 -bitexact" +
         RateAndChannels(input.use) + " " + ShellWord(converted) + Move(converted, input.path);
}

std::string HeaderlessConversion(const FilePlace& input) {
  const std::string converted = input.path + ".raw";
  return Conversion(input.use, ShellWord(input.path), converted) + Move(converted, input.path);
}

}  // namespace host
