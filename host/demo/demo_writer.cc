#include "demo/demo_writer.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/printable.h"
#include "catalogue/catalogue_text.h"
#include "demo/demo_all.h"
#include "demo/placed_file.h"
#include "demo/sound_file.h"
#include "wave/wave_file.h"

namespace host {

namespace {

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

bool IsHeaderless(const FileUse& use) { return use.container == Container::kHeaderless; }

// A sentence in the container of its file.
std::vector<std::byte> InContainer(const FileUse& use, const std::vector<int16_t>& samples) {
  const auto pcm = std::as_bytes(std::span(samples));
  std::vector<std::byte> bytes;
  if (!IsHeaderless(use)) {
    const auto header = wave::Header(8000, 1, 16, pcm.size());
    const auto span = std::as_bytes(std::span(header));
    bytes.assign(span.begin(), span.end());
  }
  bytes.insert(bytes.end(), pcm.begin(), pcm.end());
  return bytes;
}

std::vector<int16_t> SentenceSamples(const SentenceName& sentence) {
  const Sentences& all = AllSentences();
  if (sentence.place < 0) return all.Clean(sentence.number);
  return all.Noisy(sentence.number, sentence.place, sentence.level);
}

}  // namespace

DemoWriter::DemoWriter(std::string workspace, bool hashed)
    : m_workspace(std::move(workspace)), m_hashed(hashed) {}

void DemoWriter::Want(const CatalogueRow& row, std::span<const std::string_view> words) {
  const auto uses = harness::Inputs(row, words);
  for (const FilePlace& input :
       PlaceFiles(uses, row.declared.words.parameters, words, m_workspace)) {
    WantFile(input);
  }
  if (row.listed == nullptr) return;
  // What the list of the row names stands where its own files do.
  for (const auto& file : row.listed(TextOf(row.inputs.front().name))) {
    const std::array<FileUse, 1> one = {file};
    for (const FilePlace& input : PlaceFiles(one, "", {}, m_workspace)) WantFile(input);
  }
}

void DemoWriter::WantFile(const FilePlace& input) {
  if (input.place.empty()) return;
  FileUse& use = m_wanted.try_emplace(input.place, input).first->second.use;
  if (use.rate == 0) use.rate = input.use.rate;
  if (use.channels == 0) use.channels = input.use.channels;
}

void DemoWriter::Write() {
  for (const auto& [place, input] : m_wanted) WriteFile(input);
}

void DemoWriter::WriteFile(const FilePlace& input) {
  const std::string_view text = TextOf(input.name);
  if (!text.empty()) {
    Put(input, std::as_bytes(std::span(text)));
  } else if (const auto sentence = SentenceOf(input.name)) {
    Put(input, InContainer(input.use, SentenceSamples(*sentence)));
  } else if (const auto sound = SoundOf(input.name)) {
    PutSound(input, *sound, FormatOf(input.use, *sound));
  }
}

void DemoWriter::PutSound(const FilePlace& file, Sound sound, const harness::WaveFormat& format) {
  SoundFile& made = SoundFileOf(sound, format);
  const bool headerless = IsHeaderless(file.use);
  Put(file, made.Bytes(headerless), m_hashed ? &made.Digest(headerless) : nullptr);
}

void DemoWriter::Render() const {
  for (const auto& [place, input] : m_wanted) {
    if (SentenceOf(input.name)) AllSentences();
    const auto sound = SoundOf(input.name);
    if (!sound) continue;
    const harness::WaveFormat format = FormatOf(input.use, *sound);
    SoundFileOf(*sound, format).Digest(IsHeaderless(input.use));
    if (const auto truth = TruthOf(*sound)) SoundFileOf(*truth, format).Digest(false);
  }
}

void DemoWriter::WriteTruths() {
  for (const auto& [place, input] : m_wanted) {
    const auto sound = SoundOf(input.name);
    const auto truth = sound ? TruthOf(*sound) : std::nullopt;
    if (!truth) continue;
    const harness::WaveFormat format = FormatOf(input.use, *sound);
    const FilePlace file = {.use = {.container = Container::kWave},
                            .name = input.name,
                            .path = {},
                            .place = TruthPlace(place)};
    PutSound(file, *truth, format);
  }
}

void DemoWriter::WriteText(const std::string& place, const std::string& text) {
  Put({.use = {}, .name = place, .path = {}, .place = place}, std::as_bytes(std::span(text)));
}

void DemoWriter::Put(const FilePlace& file, std::span<const std::byte> bytes,
                     const FileDigest* digest) {
  const Placed placed = PlaceFile(m_workspace, file.place, bytes, digest);
  Line& line = m_lines[file.use.pattern.empty() ? file.place : file.use.pattern];
  const bool kept = placed == Placed::kKept || placed == Placed::kThere;
  ++(kept ? line.kept : line.written);
  if (file.use.container != Container::kOther) line.what = FileFormat(file.use);
}

void DemoWriter::Make(const StreamMaker& maker) {
  const std::string path = m_workspace + "/" + std::string(maker.stream);
  std::error_code error;
  if (std::filesystem::exists(path, error)) {
    m_lines[std::string(maker.stream)] = {0, 1, "coded by " + std::string(maker.routine)};
  } else if (Run(maker) && std::filesystem::exists(path, error)) {
    m_lines[std::string(maker.stream)] = {1, 0, "coded by " + std::string(maker.routine)};
  } else {
    m_lines[std::string(maker.stream)] = {0, 0, "not made: the engine at hand does not code it"};
  }
}

bool DemoWriter::Run(const StreamMaker& maker) const {
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

std::string DemoWriter::Lines() const {
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

}  // namespace host
