#include "demo/material.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "demo/band.h"
#include "demo/call.h"
#include "demo/demo.h"
#include "demo/surroundings.h"
#include "harness/noizeus_cases.h"

namespace host {

namespace {

constexpr int kSentenceRate = 8000;
constexpr int kStreet = 6;

// Full scale is 1; what is louder is limited.
int16_t Rounded(double sample) {
  const double scaled = std::clamp(sample * 32768, -32768.0, 32767.0);
  return static_cast<int16_t>(std::floor(scaled + 0.5));
}

std::vector<int16_t> ToPcm(const std::vector<double>& mono, int channels = 1) {
  std::vector<int16_t> samples;
  samples.reserve(mono.size() * static_cast<size_t>(channels));
  for (const double sample : mono) {
    samples.insert(samples.end(), static_cast<size_t>(channels), Rounded(sample));
  }
  return samples;
}

std::vector<double> NoisySpeech(int rate) {
  std::vector<double> noisy = AddNoise(Speak(rate, kSpeechSeconds, kSpeaker),
                                       NoiseOf(kStreet, rate, kSpeechSeconds), kNoisySnr);
  for (double& sample : noisy) sample *= 0.7;  // Room for the peaks of the noise.
  return noisy;
}

std::vector<int16_t> Band(int rate, int channels) {
  const std::vector<double> stereo = PlayBand(rate, kMusicSeconds, kBandTempo).samples;
  if (channels == 2) return ToPcm(stereo);
  std::vector<double> mono(stereo.size() / 2);
  for (size_t i = 0; i < mono.size(); ++i) mono[i] = 0.5 * (stereo[2 * i] + stereo[2 * i + 1]);
  return ToPcm(mono, channels);
}

}  // namespace

std::vector<int16_t> Render(Sound sound, int rate, int channels) {
  switch (sound) {
    case Sound::kMelody:
      return DemoRecording();
    case Sound::kSpeech:
      return ToPcm(Speak(rate, kSpeechSeconds, kSpeaker).samples, channels);
    case Sound::kNoisy:
      return ToPcm(NoisySpeech(rate), channels);
    case Sound::kSong:
      return ToPcm(Sing(rate, kMusicSeconds).samples, channels);
    case Sound::kBand:
      return Band(rate, channels);
    case Sound::kFar:
      return ToPcm(MakeCall(rate).far, channels);
    case Sound::kNear:
      return ToPcm(MakeCall(rate).near, channels);
    case Sound::kTalk:
      return ToPcm(MakeCall(rate).talk, channels);
  }
  return {};
}

std::optional<Sound> TruthOf(Sound sound) {
  if (sound == Sound::kNoisy) return Sound::kSpeech;
  if (sound == Sound::kNear) return Sound::kTalk;
  return std::nullopt;
}

Sentences::Sentences() {
  for (int sentence = 0; sentence < harness::kNoizeusSentences; ++sentence) {
    const double seconds = 3.0 + 0.05 * (sentence % 10);
    m_clean.push_back(Speak(kSentenceRate, seconds, 500 + static_cast<uint64_t>(sentence)));
  }
  for (int place = 0; place < static_cast<int>(std::size(harness::kNoizeusNoises)); ++place) {
    m_noise.push_back(NoiseOf(place, kSentenceRate, 12));
  }
}

// Soft enough for noise that is as strong.
std::vector<int16_t> Sentences::Clean(int sentence) const {
  std::vector<double> samples = m_clean[static_cast<size_t>(sentence)].samples;
  for (double& sample : samples) sample *= 0.5;
  return ToPcm(samples);
}

std::vector<int16_t> Sentences::Noisy(int sentence, int place, int level) const {
  // Each sentence meets another part of the noise.
  const std::vector<double>& all = m_noise[static_cast<size_t>(place)];
  const Speech& speech = m_clean[static_cast<size_t>(sentence)];
  const size_t start = static_cast<size_t>(sentence) * 2400 % (all.size() - speech.samples.size());
  const auto begin = all.begin() + static_cast<std::ptrdiff_t>(start);
  const std::vector<double> noise(begin,
                                  begin + static_cast<std::ptrdiff_t>(speech.samples.size()));
  std::vector<double> noisy = AddNoise(speech, noise, harness::kNoizeusLevels[level]);
  for (double& sample : noisy) sample *= 0.5;
  return ToPcm(noisy);
}

const std::vector<Stretch>& Sentences::Spoken(int sentence) const {
  return m_clean[static_cast<size_t>(sentence)].spoken;
}

}  // namespace host
