#include "demo/surroundings.h"

#include <cstddef>
#include <cstdint>

#include "demo/arithmetic.h"
#include "demo/voice.h"

namespace host {

namespace {

// What a place sounds like.
struct Place {
  double low;      // Hz above which its rumble falls by 6 dB an octave.
  double hiss;     // White noise in it, as a share of the rumble.
  int voices;      // Who talks there.
  double swells;   // How often it gets louder and softer, Hz.
  double depth;    // How much, 0 to 1.
  double clatter;  // Short knocks a second.
};

constexpr Place kPlaces[] = {
    {400, 0.10, 2, 0.10, 0.4, 0.3},  // Airport
    {300, 0.02, 6, 0.00, 0.0, 0.0},  // Babble
    {90, 0.02, 0, 0.30, 0.1, 0.0},   // Car
    {600, 0.15, 3, 0.20, 0.3, 0.5},  // Exhibition
    {500, 0.06, 4, 0.00, 0.0, 2.0},  // Restaurant
    {350, 0.10, 1, 0.15, 0.6, 0.5},  // Station
    {200, 0.12, 0, 0.25, 0.7, 0.2},  // Street
    {120, 0.08, 0, 0.50, 0.3, 3.0},  // Train
};

}  // namespace

std::vector<double> NoiseOf(int place, int rate, double seconds) {
  const Place& here = kPlaces[place];
  const uint64_t seed = 100 + static_cast<uint64_t>(place);
  Noise noise(seed);
  std::vector<double> samples(static_cast<size_t>(rate * seconds));
  const double share = 1 - Exp(-6.283185307179586 * here.low / rate);
  double rumble = 0;
  double knock = 0;
  for (size_t i = 0; i < samples.size(); ++i) {
    const double white = noise.Next();
    rumble += share * (white - rumble);
    if (noise.Between(0, rate) < here.clatter) knock = 1.5;
    knock *= 1 - 150.0 / rate;
    const double time = static_cast<double>(i) / rate;
    const double swell = 1 + here.depth * Sine(here.swells * time);
    samples[i] = swell * (rumble + here.hiss * noise.Next()) + 0.2 * knock * noise.Next();
  }
  for (int i = 0; i < here.voices; ++i) {
    const Speech talk = Speak(rate, seconds, 1000 * seed + static_cast<uint64_t>(i));
    for (size_t k = 0; k < samples.size(); ++k) samples[k] += 0.6 * talk.samples[k];
  }
  return samples;
}

}  // namespace host
