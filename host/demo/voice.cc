#include "demo/voice.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr Voice::Formants kVowels[] = {
    {700, 1200, 2600}, {500, 1900, 2500}, {300, 2200, 2900}, {450, 900, 2400}, {320, 800, 2300}};
constexpr Voice::Formants kA = kVowels[0];
constexpr double kPi = 3.141592653589793;

// From 0 to 1 and back without a corner, as x goes from 0 to 1.
double Arch(double x) { return x <= 0 || x >= 1 ? 0 : Sine(x / 2) * Sine(x / 2); }

void Normalize(std::vector<double>& samples) {
  double peak = 0;
  for (const double sample : samples) peak = std::max(peak, std::fabs(sample));
  if (peak == 0) return;
  for (double& sample : samples) sample *= 0.5 / peak;
}

// Speech as it is spoken, syllable after syllable.
class Talker {
 public:
  Talker(int rate, uint64_t seed, Speech& speech)
      : m_rate(rate), m_chance(seed), m_voice(rate, seed + 1), m_speech(speech) {
    m_pitch = m_chance.Between(95, 190);
  }

  // From this time on; returns when the word ends.
  double Word(double begin) {
    double end = begin;
    const int syllables = 1 + static_cast<int>(m_chance.Between(0, 3.999));
    for (int i = 0; i < syllables; ++i) end = Syllable(end);
    m_speech.spoken.push_back({begin, std::min(end, Seconds())});
    return end;
  }

  double Pause() { return m_chance.Between(0.1, 0.6); }

 private:
  double Seconds() const { return static_cast<double>(m_speech.samples.size()) / m_rate; }

  double Syllable(double begin) {
    const double consonant = m_chance.Next() > 0 ? m_chance.Between(0.03, 0.07) : 0;
    const double vowel = m_chance.Between(0.1, 0.22);
    const double loudness = m_chance.Between(0.5, 1);
    const auto& from = m_vowel;
    const auto& to = kVowels[static_cast<size_t>(m_chance.Between(0, 4.999))];
    const double rise = m_chance.Between(-0.15, 0.1);
    const auto first = static_cast<size_t>(begin * m_rate);
    const auto count = static_cast<size_t>((consonant + vowel) * m_rate);
    double before = 0;
    for (size_t i = 0; i < count && first + i < m_speech.samples.size(); ++i) {
      const double time = static_cast<double>(i) / m_rate;
      const double place = (time - consonant) / vowel;  // Below 0 in the consonant.
      if (i % 32 == 0) Glide(from, to, std::clamp(2 * place, 0.0, 1.0));
      const double voiced = m_voice.Next(m_pitch * (1 + rise * std::max(place, 0.0)),
                                         loudness * Arch(place), 0.02 * Arch(place));
      const double hiss = m_chance.Next();
      m_speech.samples[first + i] +=
          voiced + (consonant > 0 ? 0.3 * loudness * Arch(time / consonant) * (hiss - before) : 0);
      before = hiss;
    }
    m_vowel = to;
    return begin + consonant + vowel;
  }

  void Glide(const Voice::Formants& from, const Voice::Formants& to, double share) {
    Voice::Formants now = from;
    for (size_t i = 0; i < now.size(); ++i) now[i] += share * (to[i] - from[i]);
    m_voice.Shape(now);
  }

  const double m_rate;
  Noise m_chance;
  Voice m_voice;
  Speech& m_speech;
  double m_pitch;
  Voice::Formants m_vowel = kA;
};

struct Syllable {
  int midi;
  int beats;
};

// Of a song in D: two lines of eight beats, and again.
constexpr Syllable kSong[] = {{62, 1}, {64, 1}, {66, 1}, {67, 1}, {69, 2}, {66, 2},
                              {67, 1}, {66, 1}, {64, 1}, {66, 1}, {62, 4}};
constexpr double kBeat = 0.6;

}  // namespace

Voice::Voice(int rate, uint64_t seed) : m_rate(rate), m_noise(seed) { Shape(kA); }

void Voice::Shape(const Formants& formants) {
  constexpr double kWidths[] = {80, 110, 160};  // Hz
  for (size_t i = 0; i < m_tract.size(); ++i) {
    const double radius = Exp(-kPi * kWidths[i] / m_rate);
    const double cosine = Sine(formants[i] / m_rate + 0.25);
    m_tract[i].first = 2 * radius * cosine;
    m_tract[i].second = -radius * radius;
    m_tract[i].gain = 1 - m_tract[i].first - m_tract[i].second;
  }
}

double Voice::Next(double pitch, double buzz, double breath) {
  constexpr double kOpen = 0.6;  // Of a period.
  m_phase += pitch / m_rate;
  m_phase -= std::floor(m_phase);
  const double open = m_phase / kOpen;
  double sample = open < 1 ? buzz * (2 * open - 3 * open * open) : 0;
  sample += breath * m_noise.Next();
  for (Resonator& each : m_tract) {
    sample = each.gain * sample + each.first * each.before + each.second * each.earlier;
    each.earlier = each.before;
    each.before = sample;
  }
  return sample;
}

Speech Speak(int rate, double seconds, uint64_t seed) {
  Speech speech;
  speech.samples.resize(static_cast<size_t>(rate * seconds));
  Talker talker(rate, seed, speech);
  for (double time = 0.3; time + 0.3 < seconds;) time = talker.Word(time) + talker.Pause();
  Normalize(speech.samples);
  return speech;
}

Song Sing(int rate, double seconds) {
  Song song;
  song.samples.resize(static_cast<size_t>(rate * seconds));
  Voice voice(rate, 1990);
  size_t next = 0;
  for (double begin = kBeat; begin < seconds;) {
    const Syllable& syllable = kSong[next++ % std::size(kSong)];
    const double length = syllable.beats * kBeat;
    const double end = std::min(begin + length - 0.05, seconds);
    song.notes.push_back({{begin, end}, syllable.midi});
    const double pitch = 440 * Exp((syllable.midi - 69) * (0.6931471805599453 / 12));
    const auto first = static_cast<size_t>(begin * rate);
    for (size_t i = first; i < static_cast<size_t>(end * rate); ++i) {
      const double time = static_cast<double>(i - first) / rate;
      const double vibrato = time > 0.3 ? 0.008 * Sine(5.5 * time) : 0;
      const double ends = std::min({1.0, time / 0.04, (end - begin - time) / 0.04});
      song.samples[i] = voice.Next(pitch * (1 + vibrato), ends, 0.01 * ends);
    }
    begin += length;
  }
  Normalize(song.samples);
  return song;
}

}  // namespace host
