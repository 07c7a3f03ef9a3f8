#include <algorithm>
#include <cmath>

#include "demo/arithmetic.h"
#include "demo/demo.h"

namespace host {

// Plucked strings after Karplus and Strong (1983), tuned by the first-order all-pass of Jaffe and
// Smith (1983). Only the basic operations on doubles are used, whose results are the same to the
// last bit wherever the code runs.

namespace {

constexpr int kRate = 44100;  // Hz
constexpr int kFrames = 8 * kRate;
constexpr int kBeat = kRate * 2 / 5;   // Samples; 150 beats a minute.
constexpr double kPeak = 0.5 * 32767;  // -6 dBFS

// One pluck.
struct Note {
  int beat;      // When it is plucked.
  double pitch;  // Hz
  double pan;    // 0 at the left ear, 1 at the right.
  double loudness;
};

constexpr double kD3 = 146.83, kA3 = 220.00, kD4 = 293.66, kE4 = 329.63, kFSharp4 = 369.99,
                 kA4 = 440.00, kB4 = 493.88, kD5 = 587.33;

constexpr Note kMelody[] = {
    {0, kD3, 0.50, 0.8},       {0, kD4, 0.10, 0.9},      {1, kFSharp4, 0.25, 0.8},
    {2, kA4, 0.40, 0.8},       {3, kB4, 0.55, 0.9},      {4, kA3, 0.50, 0.7},
    {4, kA4, 0.70, 0.8},       {5, kFSharp4, 0.85, 0.7}, {6, kE4, 0.95, 0.7},
    {7, kFSharp4, 0.80, 0.7},  {8, kD3, 0.50, 0.8},      {8, kA4, 0.60, 0.9},
    {9, kB4, 0.40, 0.8},       {10, kD5, 0.20, 0.9},     {11, kB4, 0.05, 0.8},
    {12, kA3, 0.50, 0.7},      {12, kA4, 0.20, 0.8},     {13, kE4, 0.40, 0.7},
    {14, kFSharp4, 0.65, 0.7}, {15, kD3, 0.50, 0.9},     {15, kD4, 0.90, 0.9},
    {15, kA3, 0.15, 0.6},
};

// A string that has just been plucked.
class String {
 public:
  String(double pitch, uint64_t seed) {
    // The period is the loop's whole samples, half a sample of its averaging, and the all-pass.
    const double period = kRate / pitch - 0.5;
    const auto whole = static_cast<size_t>(period - 0.3);
    const double rest = period - static_cast<double>(whole);  // 0.3 to 1.3 samples.
    m_allPass = (1 - rest) / (1 + rest);
    m_loop.resize(whole);
    Noise noise(seed);
    double mean = 0;
    double softened = 0;
    for (double& sample : m_loop) {
      softened += 0.4 * (noise.Next() - softened);  // Plucked with a fingertip: fewer highs.
      sample = softened;
      mean += sample / static_cast<double>(whole);
    }
    for (double& sample : m_loop) sample -= mean;  // No direct current.
  }

  double Next() {
    const double sample = m_loop[m_at];
    const double averaged = 0.998 * 0.5 * (sample + m_before);
    m_before = sample;
    const double tuned = m_allPass * (averaged - m_tuned) + m_averaged;
    m_averaged = averaged;
    m_tuned = tuned;
    m_loop[m_at] = tuned;
    m_at = m_at + 1 == m_loop.size() ? 0 : m_at + 1;
    return sample;
  }

 private:
  std::vector<double> m_loop;
  size_t m_at = 0;
  double m_allPass;
  double m_before = 0;
  double m_averaged = 0;
  double m_tuned = 0;
};

// Close to sin(pi / 2 * x): both ears together are equally loud, within 0.3 dB, wherever x is.
double Share(double x) { return x * (1.5 - 0.5 * x * x); }

// 0 to 1 with no corner, as x goes from 0 to 1.
double Smooth(double x) {
  const double inside = std::clamp(x, 0.0, 1.0);
  return inside * inside * (3 - 2 * inside);
}

void Play(const Note& note, uint64_t seed, std::vector<double>& mix) {
  constexpr double kAttack = 1.0 / 60;      // Per sample.
  constexpr double kFadeOut = 1.0 / 35280;  // Per sample: the last 0.8 s.
  String string(note.pitch, seed);
  for (int frame = note.beat * kBeat; frame < kFrames; ++frame) {
    const double attack = Smooth((frame - note.beat * kBeat) * kAttack);
    const double end = Smooth((kFrames - 1 - frame) * kFadeOut);
    const double sample = note.loudness * attack * end * string.Next();
    const auto at = 2 * static_cast<size_t>(frame);
    mix[at] += Share(1 - note.pan) * sample;
    mix[at + 1] += Share(note.pan) * sample;
  }
}

}  // namespace

std::vector<int16_t> DemoRecording() {
  std::vector<double> mix(2 * static_cast<size_t>(kFrames));
  uint64_t seed = 1983;
  for (const Note& note : kMelody) Play(note, seed++, mix);

  double peak = 0;
  for (const double sample : mix) peak = std::max(peak, std::fabs(sample));
  std::vector<int16_t> recording(mix.size());
  std::transform(mix.begin(), mix.end(), recording.begin(), [peak](double sample) {
    const double scaled = sample * (kPeak / peak);
    return static_cast<int16_t>(scaled + (scaled < 0 ? -0.5 : 0.5));
  });
  return recording;
}

}  // namespace host
