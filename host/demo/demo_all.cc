#include "demo/demo_all.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "base/printable.h"
#include "base/units.h"
#include "catalogue/catalogue_text.h"
#include "demo/demo_cases.h"
#include "demo/placed_file.h"
#include "files/workspace.h"
#include "harness/noizeus_cases.h"
#include "wave/wave_file.h"

namespace host {

namespace {

using Bytes8 = std::vector<std::byte>;

// Which recording of the corpus a name is; nothing for any other name.
struct Sentence {
  int number;
  int place = -1;  // -1: clean.
  int level = 0;
};

std::optional<Sentence> SentenceOf(const std::string& name) {
  constexpr std::string_view kFolder = "NOIZEUS/in/";
  if (!name.starts_with(kFolder)) return std::nullopt;
  const std::string base = std::filesystem::path(name).stem();
  int number = 0;
  int snr = 0;
  char noise[32] = "";
  const int fields = sscanf(base.c_str(), "sp%d_%31[a-z]_sn%d", &number, noise, &snr);
  if (fields == 1) return Sentence{number - 1};
  if (fields != 3) return std::nullopt;
  const auto& noises = harness::kNoizeusNoises;
  const auto& levels = harness::kNoizeusLevels;
  const auto place = std::find(std::begin(noises), std::end(noises), std::string_view(noise));
  const auto level = std::find(std::begin(levels), std::end(levels), snr);
  if (place == std::end(noises) || level == std::end(levels)) return std::nullopt;
  return Sentence{number - 1, static_cast<int>(place - std::begin(noises)),
                  static_cast<int>(level - std::begin(levels))};
}

// The rate and channels in which a file is rendered: what the routine counts on, else the sound's.
harness::WaveFormat FormatOf(const FileUse& use, Sound sound) {
  const bool music = sound == Sound::kBand || sound == Sound::kMelody;
  const bool speech = !music && sound != Sound::kSong;
  // What has no format of its own stands beside music.
  const bool accompanied = !use.formatOf.empty() && sound == Sound::kSong;
  const int rate = speech ? 16000 : 44100;
  const int channels = music || accompanied ? 2 : 1;
  return {use.rate != 0 ? use.rate : rate, use.channels != 0 ? use.channels : channels};
}

class Writer {
 public:
  explicit Writer(std::string workspace) : m_workspace(std::move(workspace)) {}

  // A file that several routines read has what any of them asks for.
  void Want(const FilePlace& input) {
    if (input.place.empty()) return;
    FileUse& use = m_wanted.try_emplace(input.place, input).first->second.use;
    if (use.rate == 0) use.rate = input.use.rate;
    if (use.channels == 0) use.channels = input.use.channels;
  }

  void PlaceWanted() {
    for (const auto& [place, input] : m_wanted) Place(input);
  }

  void Truth() {
    const std::string truth = DemoTruth();
    const FilePlace place = {
        .use = {}, .name = "demo/truth.json", .path = {}, .place = "demo/truth.json"};
    Put(place, std::as_bytes(std::span(truth)));
  }

  // By a run of this program, which writes the file itself.
  void Make(const StreamMaker& maker) {
    const std::string path = m_workspace + "/" + std::string(maker.stream);
    std::error_code error;
    if (std::filesystem::exists(path, error)) {
      m_lines[std::string(maker.stream)] = {0, 1, "coded by " + std::string(maker.routine)};
    } else if (RunMaker(maker) && std::filesystem::exists(path, error)) {
      m_lines[std::string(maker.stream)] = {1, 0, "coded by " + std::string(maker.routine)};
    } else {
      m_lines[std::string(maker.stream)] = {0, 0, "not made: the engine at hand does not code it"};
    }
  }

  std::string Lines() const {
    std::string text;
    for (const auto& [name, line] : m_lines) {
      text += "recording  " + Printable(m_workspace + "/" + name);
      if (line.written != 0) text += "  written";
      if (line.written > 1) text += ", " + std::to_string(line.written) + " files";
      if (line.kept == 1) text += "  kept as it is";
      if (line.kept > 1) text += "  " + std::to_string(line.kept) + " files kept as they are";
      text += (line.what.empty() ? "" : ": " + line.what) + "\n";
    }
    return text;
  }

 private:
  void Place(const FilePlace& input) {
    const std::string_view text = TextOf(input.name);
    if (!text.empty()) {
      Put(input, std::as_bytes(std::span(text)));
    } else if (const auto sentence = SentenceOf(input.name)) {
      Put(input, InContainer(input.use, {8000, 1}, SentenceSamples(*sentence)));
    } else if (const auto sound = SoundOf(input.name)) {
      const harness::WaveFormat format = FormatOf(input.use, *sound);
      Put(input, InContainer(input.use, format, Rendered(*sound, format)));
    }
  }

  struct Line {
    int written = 0;
    int kept = 0;
    std::string what = {};
  };

  void Put(const FilePlace& file, std::span<const std::byte> bytes) {
    const Placed placed = PlaceFile(m_workspace, file.place, bytes);
    Line& line = m_lines[file.use.pattern.empty() ? file.place : file.use.pattern];
    const bool kept = placed == Placed::kKept || placed == Placed::kThere;
    ++(kept ? line.kept : line.written);
    if (file.use.container != Container::kOther) line.what = FileFormat(file.use);
  }

  static Bytes8 InContainer(const FileUse& use, const harness::WaveFormat& format,
                            const std::vector<int16_t>& samples) {
    const auto pcm = std::as_bytes(std::span(samples));
    Bytes8 bytes;
    if (use.container != Container::kHeaderless) {
      const auto header = wave::Header(format.rate, format.channels, 16, pcm.size());
      const auto span = std::as_bytes(std::span(header));
      bytes.assign(span.begin(), span.end());
    }
    bytes.insert(bytes.end(), pcm.begin(), pcm.end());
    return bytes;
  }

  const std::vector<int16_t>& Rendered(Sound sound, const harness::WaveFormat& format) {
    auto& samples = m_rendered[{sound, format.rate, format.channels}];
    if (samples.empty()) samples = Render(sound, format.rate, format.channels);
    return samples;
  }

  std::vector<int16_t> SentenceSamples(const Sentence& sentence) {
    if (!m_sentences) m_sentences.emplace();
    if (sentence.place < 0) return m_sentences->Clean(sentence.number);
    return m_sentences->Noisy(sentence.number, sentence.place, sentence.level);
  }

  bool RunMaker(const StreamMaker& maker) const {
    std::vector<std::string> words = {"audio_bench", "run",       std::string(maker.routine),
                                      "--work",      m_workspace, "--"};
    words.insert(words.end(), maker.arguments.begin(), maker.arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&quiet, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int fault = posix_spawn(&child, "/proc/self/exe", &quiet, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&quiet);
    int status = -1;
    return fault == 0 && waitpid(child, &status, 0) == child && status == 0;
  }

  const std::string m_workspace;
  std::map<std::string, FilePlace> m_wanted;
  std::map<std::string, Line> m_lines;
  std::map<std::tuple<Sound, int, int>, std::vector<int16_t>> m_rendered;
  std::optional<Sentences> m_sentences;
};

}  // namespace

std::string PlaceAllDemos(const std::string& workspace) {
  Writer writer(workspace);
  for (const DemoCase& each : DemoCases()) {
    const CatalogueRow& row = FindRow(std::string(each.routine));
    const auto place = [&](std::span<const std::string_view> words) {
      const auto uses = harness::Inputs(row, words);
      for (const FilePlace& input :
           PlaceFiles(uses, row.declared.words.parameters, words, workspace)) {
        writer.Want(input);
      }
    };
    place(each.arguments);
    if (row.listed == nullptr) continue;
    // What the list of the row names stands where its own files do.
    for (const auto& file : row.listed(TextOf(row.inputs.front().name))) {
      const std::array<FileUse, 1> one = {file};
      for (const FilePlace& input : PlaceFiles(one, "", {}, workspace)) writer.Want(input);
    }
  }
  writer.PlaceWanted();
  for (const StreamMaker& each : StreamMakers()) writer.Make(each);
  writer.Truth();
  return writer.Lines();
}

}  // namespace host
