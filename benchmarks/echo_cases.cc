#include "echo_cases.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "engine_api/common/wav_reader.h"
#include "support/seeded_noise.h"

namespace {

constexpr int kRate = 16000;

enum class Speaker { kLinear, kSoft, kHard };

// echoDb: the level of the echo over that of the near talker.
struct Setting {
  const char* far;
  const char* near;
  double nearFrom;  // s
  int delayMs;
  double decayMs;  // By 60 dB.
  Speaker speaker;
  double moveSeconds;  // From one room to another and back; 0: at rest.
  double echoDb;
  double noiseDb;
};

constexpr Setting kAdjusting[] = {
    {"aec/fs01_farend", "speech16k/librispeech_198-209-0000", 0, 40, 150, Speaker::kLinear, 0, 3,
     -70},
    {"aec/syn9499_farend", "speech16k/librispeech_198-209-0000", 4, 90, 250, Speaker::kSoft, 0, 3,
     -65},
    {"aec/fs01_farend", "aec/syn9499_truth_nearend_speech", 0, 130, 300, Speaker::kLinear, 4, 2,
     -70},
    {"aec/syn9499_farend", "speech16k/librispeech_198-209-0000", 2, 20, 200, Speaker::kHard, 0, 4,
     -60},
    {"aec/fs01_farend", "aec/syn9499_truth_nearend_speech", 0, 200, 400, Speaker::kSoft, 6, 0, -65},
    {"aec/syn9499_farend", "speech16k/librispeech_198-209-0000", 3, 60, 200, Speaker::kLinear, 0, 6,
     -75}};

constexpr Setting kJudging[] = {
    {"aec/fs05_farend", "aec/ns01_nearend", 0, 30, 200, Speaker::kLinear, 0, 3, -70},
    {"aec/dt01_farend", "noizeus", 0, 110, 180, Speaker::kSoft, 0, 3, -65},
    {"aec/fs05_farend", "noizeus", 0, 160, 350, Speaker::kLinear, 5, 2, -68},
    {"aec/dt01_farend", "aec/ns01_nearend", 0, 70, 250, Speaker::kHard, 0, 4, -62},
    {"aec/fs05_farend", "noizeus", 0, 220, 300, Speaker::kSoft, 4, 0, -65},
    {"aec/dt01_farend", "noizeus", 0, 50, 220, Speaker::kLinear, 0, 6, -72}};

Samples ReadWave(const std::string& name, int rate) {
  zuwebrtc::WavReader reader(name);
  if (reader.sample_rate() != rate || reader.num_channels() != 1) {
    fprintf(stderr, "%s: not there, or not %d Hz, mono\n", name.c_str(), rate);
    std::exit(1);
  }
  Samples samples(reader.num_samples());
  samples.resize(reader.ReadSamples(reader.num_samples(), samples.data()));
  return samples;
}

// The clean sentences at 8 kHz, one after the other, brought to 16 kHz.
Samples ReadSentences(const std::string& folder) {
  Samples sentences;
  for (int i = 1; i <= 4; ++i) {
    const Samples one =
        ReadWave(folder + "/noizeus/in/clean/sp0" + std::to_string(i) + ".wav", kRate / 2);
    for (size_t at = 0; at + 1 < one.size(); ++at) {
      sentences.push_back(one[at]);
      sentences.push_back(static_cast<short>((one[at] + one[at + 1]) / 2));
    }
  }
  return sentences;
}

double Energy(const std::vector<double>& samples) {
  double energy = 0;
  for (const double sample : samples) energy += sample * sample;
  return energy;
}

// A response of as many reflections as tell in a room, a third of all taps.
std::vector<double> Room(SeededNoise& noise, int delayMs, double decayMs) {
  const auto delay = static_cast<size_t>(delayMs * kRate / 1000);
  std::vector<double> room(delay + static_cast<size_t>(decayMs * kRate / 1000));
  room[delay] = 1;
  for (size_t i = delay + 20; i < room.size(); ++i) {
    const double late = static_cast<double>(i - delay) * 1000 / kRate;
    if (noise() < 0.33) continue;
    room[i] = 0.4 * noise() * std::pow(10, -3 * late / decayMs);
  }
  return room;
}

std::vector<double> Play(const Samples& far, Speaker speaker) {
  std::vector<double> played(far.begin(), far.end());
  const double rms = std::sqrt(Energy(played) / static_cast<double>(played.size()));
  for (double& sample : played) {
    if (speaker == Speaker::kSoft) sample = 3 * rms * std::tanh(sample / (3 * rms));
    if (speaker == Speaker::kHard) sample = std::clamp(sample, -2 * rms, 2.5 * rms);
  }
  return played;
}

std::vector<double> Convolve(const std::vector<double>& in, const std::vector<double>& room) {
  std::vector<double> out(in.size());
  for (size_t tap = 0; tap < room.size(); ++tap) {
    if (room[tap] == 0) continue;
    for (size_t i = tap; i < in.size(); ++i) out[i] += room[tap] * in[i - tap];
  }
  return out;
}

EchoCase Make(const std::string& folder, const Setting& setting, unsigned seed) {
  SeededNoise noise(seed);
  EchoCase made;
  made.name = std::to_string(seed) + " " + setting.far + ", " + setting.near;
  made.far = ReadSpeech(folder, setting.far);
  made.near = ReadSpeech(folder, setting.near);
  made.near.erase(made.near.begin(),
                  made.near.begin() + static_cast<ptrdiff_t>(setting.nearFrom * kRate));
  made.far.resize(std::min(made.far.size(), made.near.size()));
  made.near.resize(made.far.size());

  const std::vector<double> played = Play(made.far, setting.speaker);
  const std::vector<double> here = Convolve(played, Room(noise, setting.delayMs, setting.decayMs));
  const std::vector<double> there = Convolve(played, Room(noise, setting.delayMs, setting.decayMs));
  std::vector<double> echo = here;
  for (size_t i = 0; setting.moveSeconds > 0 && i < echo.size(); ++i) {
    const double turn = 6.2831853 * static_cast<double>(i) / kRate / setting.moveSeconds;
    const double share = 0.25 - 0.25 * std::cos(turn);
    echo[i] = (1 - share) * here[i] + share * there[i];
  }
  const std::vector<double> near(made.near.begin(), made.near.end());
  const double gain = std::sqrt(Energy(near) / Energy(echo) * std::pow(10, setting.echoDb / 10));
  const double hiss = 32768 * std::sqrt(3.0) * std::pow(10, setting.noiseDb / 20);
  for (const double sample : echo)
    made.echo.push_back(NearestSample(gain * sample + hiss * noise()));
  return made;
}

}  // namespace

Samples ReadSpeech(const std::string& folder, const std::string& name) {
  return name == "noizeus" ? ReadSentences(folder) : ReadWave(folder + "/" + name + ".wav", kRate);
}

std::vector<EchoCase> MakeEchoCases(const std::string& folder, bool judges) {
  std::vector<EchoCase> cases;
  unsigned seed = judges ? 101 : 1;
  for (const Setting& setting : judges ? kJudging : kAdjusting) {
    cases.push_back(Make(folder, setting, seed++));
  }
  return cases;
}
