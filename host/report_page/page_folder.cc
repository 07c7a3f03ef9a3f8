#include "report_page/page_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <span>

#include "base/usage_error.h"
#include "measure/sound.h"
#include "recording/recording_writer.h"
#include "report_page/case_data.h"
#include "report_page/json_values.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr float kFullScaleOf16Bits = 1 - 1.0F / 32768;

void MakeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) throw UsageError{"cannot make the folder " + path + ": " + error.message()};
}

// Samples as doubles, those that are no numbers as 0.
std::vector<double> Doubles(std::span<const float> block) {
  std::vector<double> samples(block.size());
  std::ranges::transform(block, samples.begin(), [](float sample) {
    return std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
  });
  return samples;
}

WrittenForm FormOf(const OpenSound& sound) {
  const bool narrow = sound.FullScale() <= kFullScaleOf16Bits;
  return {.kind = WrittenForm::Kind::kFlac,
          .samples = narrow ? WrittenForm::Samples::kPcm16 : WrittenForm::Samples::kPcm24,
          .rate = sound.Format().rate,
          .channels = sound.Format().channels};
}

// How loud a recording is at the most, so that nothing of it clips.
WrittenLevel LevelOf(const MeasuredSource& source) {
  WrittenLevel level;
  OpenSound(source.path, source.raw).ForEachBlock([&](std::span<const float> block) {
    for (const double sample : Doubles(block)) {
      level.highest = std::max(level.highest, sample);
      level.lowest = std::min(level.lowest, sample);
    }
  });
  return level;
}

// Returns why it could not be written; empty when it was.
std::string WriteWhole(const MeasuredSource& source, const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (file < 0) return strerror(errno);
  std::string fault;
  try {
    OpenSound sound(source.path, source.raw);
    const WrittenForm form = FormOf(sound);
    RecordingWriter writer(file, form, GainWithoutClipping(LevelOf(source), form, false), false);
    bool done = true;
    sound.ForEachBlock(
        [&](std::span<const float> block) { done = done && writer.Write(Doubles(block)); });
    if (!done || !writer.Close()) fault = writer.Fault();
  } catch (const UnreadableSound& error) {
    fault = error.fault;
  }
  close(file);
  if (!fault.empty()) unlink(path.c_str());
  return fault;
}

}  // namespace

PageFolder::PageFolder(const std::string& path) : m_path(path) { MakeFolder(path + "/files"); }

void PageFolder::AddFiles(const PageRun& run, PageData& data) const {
  for (size_t i = 0; i < run.cases.size(); ++i) {
    const PageCase& one = run.cases[i];
    Json& json = data.json["cases"][i];
    const CaseReport report(one.record, run.folder, run.report ? run.header : Json());
    for (const PlayedOutput& output : PlayedOutputs(run, one, report)) {
      const auto player = std::ranges::find_if(
          json["players"], [&](const Json& each) { return TextOf(each, "title") == output.title; });
      if (player == json["players"].end()) continue;
      const std::string number =
          std::to_string(i) + "-" + std::to_string(player - json["players"].begin());
      for (Json& version : (*player)["versions"]) {
        const auto file = std::ranges::find(output.files, TextOf(version, "key"), &PlayedFile::key);
        if (file == output.files.end()) continue;
        const std::string place = "files/" + number + "-" + file->key + ".flac";
        const std::string fault = WriteWhole(file->source, m_path + "/" + place);
        if (fault.empty()) {
          version["href"] = place;
        } else {
          json["notes"].push_back(file->name + " is not in the folder as a whole: " + fault);
        }
      }
    }
  }
}

}  // namespace host
