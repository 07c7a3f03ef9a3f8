#include "controls/control_material.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "audio_measures/measure.h"
#include "base/usage_error.h"
#include "controls/control_faults.h"
#include "demo/band.h"
#include "demo/call.h"
#include "demo/surroundings.h"
#include "demo/voice.h"
#include "files/whole_file.h"
#include "recording/recording_writer.h"

namespace host {

namespace {

using Samples = std::vector<double>;

constexpr int kMusicRate = 32000;  // There must be something above 7 kHz.
constexpr int kCodecRate = 44100;
constexpr int kCallRate = 16000;
constexpr double kStereoSeconds = 4;
constexpr double kCallSeconds = 8;
constexpr double kNoiseDistance = 10;  // dB

// Each piece is spoken by two others, or played at a tempo of its own.
struct Piece {
  bool music;
  int number;  // From 0.

  uint64_t Speaker(int which) const {
    return 100 * static_cast<uint64_t>(which) + static_cast<uint64_t>(number);
  }
  double Tempo() const { return 84 + 9 * number; }
};

// Dithered, as recordings of 16 bits are.
void WriteSound(const std::string& path, const Samples& samples, int rate, int channels) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) throw UsageError{"cannot write " + path + ": " + strerror(errno)};
  RecordingWriter writer(file, {.rate = rate, .channels = channels}, 1, true);
  const bool written = writer.Write(samples) && writer.Close();
  const std::string fault = writer.Fault();
  close(file);
  if (!written) throw UsageError{"cannot write " + path + ": " + fault};
}

// Two who sit left and right, or a band; not loud enough to be limited by what amplifies it a
// little.
Samples Stereo(const Piece& piece, int rate) {
  if (piece.music) return PlayBand(rate, kStereoSeconds, piece.Tempo()).samples;
  const Samples left = Speak(rate, kStereoSeconds, piece.Speaker(1)).samples;
  const Samples right = Speak(rate, kStereoSeconds, piece.Speaker(2)).samples;
  Samples both(2 * left.size());
  for (size_t i = 0; i < left.size(); ++i) {
    both[2 * i] = 0.8 * left[i] + 0.2 * right[i];
    both[2 * i + 1] = 0.2 * left[i] + 0.8 * right[i];
  }
  return both;
}

Samples Mono(const Piece& piece) {
  if (!piece.music) return Speak(kCallRate, kCallSeconds, piece.Speaker(3)).samples;
  const Samples stereo = PlayBand(kCallRate, kCallSeconds, piece.Tempo()).samples;
  Samples mono(stereo.size() / 2);
  for (size_t i = 0; i < mono.size(); ++i) mono[i] = 0.5 * (stereo[2 * i] + stereo[2 * i + 1]);
  return mono;
}

// What a microphone hears of a loudspeaker: the direct sound and two reflections, 40 ms late or
// more, and a little noise.
Samples Echo(const Samples& far, int number) {
  const int direct = kCallRate * (40 + 5 * number) / 1000;
  const struct {
    int late;
    double gain;
  } paths[] = {{direct, 0.5}, {direct + 91, -0.2}, {direct + 277, 0.1}};
  Samples near(far.size());
  for (const auto& path : paths) {
    const auto late = static_cast<size_t>(path.late);
    for (size_t i = late; i < near.size(); ++i) near[i] += path.gain * far[i - late];
  }
  Noise noise(static_cast<uint64_t>(number));
  for (double& sample : near) sample += 0.0005 * noise.Next();
  return near;
}

// One case of the suite, and the recordings that it takes.
class CaseWriter {
 public:
  // `given` says what the measures find beside the output.
  CaseWriter(std::string folder, const Piece& piece, std::string_view word, const char* routine,
             unsigned given)
      : m_folder(std::move(folder)),
        m_id(std::string(kControlSounds[piece.music ? 1 : 0]) + "-" + std::string(word) + "-" +
             std::to_string(piece.number + 1)),
        m_text("\n[[case]]\nid = \"" + m_id + "\"\nroutine = \"" + routine + "\"\n") {
    m_text += "measures = [";
    for (const audio_measures::Measure& measure : audio_measures::AllMeasures()) {
      if (measure.version == 0 || (measure.needs & ~given) != 0) continue;
      m_text += "\"" + std::string(measure.name) + "\", ";
    }
    m_text += "]\n";
  }

  // A recording that is there for a file of the routine, under a key of the case: "in.ns_in.wav".
  void Add(const std::string& key, const std::string& file, const Samples& samples, int rate,
           int channels) {
    const std::string name = m_id + "." + key + "." + file + ".wav";
    WriteSound(m_folder + "/" + name, samples, rate, channels);
    m_text += key + ".\"" + file + "\" = \"" + name + "\"\n";
  }

  void Arguments(const char* list) { m_text += std::string("arguments = ") + list + "\n"; }

  const std::string& text() const { return m_text; }

 private:
  std::string m_folder;
  std::string m_id;
  std::string m_text;
};

// What should come out as it was.
constexpr unsigned kFaithful = audio_measures::kInput | audio_measures::kReference;

std::string WriteThrough(const std::string& folder, const Piece& piece) {
  CaseWriter one(folder, piece, kThrough, "TestAudioResamplerEx", kFaithful);
  one.Arguments(R"(["in.wav", "out.wav", "32000", "2"])");
  one.Add("in", "in.wav", Stereo(piece, kMusicRate), kMusicRate, 2);
  return one.text();
}

std::string WriteDenoised(const std::string& folder, const Piece& piece) {
  const Samples clean = Mono(piece);
  Samples noisy =
      AddNoise({clean, {}}, NoiseOf(piece.number, kCallRate, kCallSeconds), kNoiseDistance);
  Samples half = clean;
  for (Samples* const samples : {&noisy, &half}) {
    for (double& sample : *samples) sample = std::clamp(0.5 * sample, -1.0, 1.0);
  }
  CaseWriter one(folder, piece, kDenoised, "TestDenoiseProcess", kFaithful);
  one.Add("in", "ns_in.wav", noisy, kCallRate, 1);
  one.Add("reference", "ns_out.wav", half, kCallRate, 1);
  return one.text();
}

std::string WriteCalled(const std::string& folder, const Piece& piece) {
  const Samples far = Mono(piece);
  CaseWriter one(folder, piece, kCalled, "TestEchoDelayEstAndAEC",
                 audio_measures::kInput | audio_measures::kFar);
  one.Arguments(R"(["far.wav", "near.wav", "out.wav"])");
  one.Add("in", "far.wav", far, kCallRate, 1);
  one.Add("in", "near.wav", Echo(far, piece.number), kCallRate, 1);
  return one.text();
}

std::string WriteCoded(const std::string& folder, const Piece& piece) {
  CaseWriter one(folder, piece, kCoded, "TestAudioEncode", kFaithful);
  one.Add("in", "audio_test.pcm", Stereo(piece, kCodecRate), kCodecRate, 2);
  return one.text();
}

}  // namespace

void WriteControlMaterial(const std::string& folder) {
  std::string suite;
  for (const bool music : {false, true}) {
    for (int number = 0; number < kControlPieces; ++number) {
      const Piece piece = {music, number};
      suite += WriteThrough(folder, piece) + WriteDenoised(folder, piece) +
               WriteCalled(folder, piece) + WriteCoded(folder, piece);
    }
  }
  const std::string path = folder + "/suite.toml";
  if (!ReplaceFile(path, 0666, suite)) {
    throw UsageError{"cannot write " + path + ": " + strerror(errno)};
  }
}

}  // namespace host
