#include "demo/call.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

struct Reflection {
  size_t after;  // Samples.
  double gain;
};

// The direct sound and sixty reflections that fade within some 60 ms; of the given energy in all.
std::vector<Reflection> Room(int rate, double delay, double gain) {
  Noise noise(1983);
  std::vector<Reflection> room = {{static_cast<size_t>(delay * rate), 1}};
  double energy = 1;
  for (int i = 0; i < 60; ++i) {
    const double late = noise.Between(0.001, 0.06);
    const double strength = 0.4 * noise.Next() * Exp(-100 * late);
    room.push_back({static_cast<size_t>((delay + late) * rate), strength});
    energy += strength * strength;
  }
  for (Reflection& each : room) each.gain *= gain / std::sqrt(energy);
  return room;
}

double PowerWhereSpoken(const Speech& speech) {
  double sum = 0;
  size_t count = 0;
  for (const double sample : speech.samples) {
    if (sample == 0) continue;
    sum += sample * sample;
    ++count;
  }
  return count == 0 ? 0 : sum / static_cast<double>(count);
}

}  // namespace

std::vector<double> AddNoise(const Speech& speech, const std::vector<double>& noise, double snr) {
  double power = 0;
  for (const double sample : noise) power += sample * sample;
  power /= static_cast<double>(noise.size());
  const double gain = std::sqrt(PowerWhereSpoken(speech) / power) * Gain(-snr);
  std::vector<double> noisy(speech.samples.size());
  for (size_t i = 0; i < noisy.size(); ++i) {
    noisy[i] = speech.samples[i] + gain * noise[i % noise.size()];
  }
  return noisy;
}

Call MakeCall(int rate) {
  constexpr double kSeconds = 20;
  Call call = {.far = Speak(rate, kSeconds, 11).samples,
               .near = {},
               .talk = {},
               .delay = kCallDelay,
               .echoGain = -6,
               .doubleTalk = {10, 16},
               .nearTalk = {}};
  call.near.resize(call.far.size());
  call.talk.resize(call.far.size());
  for (const Reflection& each : Room(rate, call.delay, Gain(call.echoGain))) {
    for (size_t i = each.after; i < call.near.size(); ++i) {
      call.near[i] += each.gain * call.far[i - each.after];
    }
  }
  const double length = call.doubleTalk.end - call.doubleTalk.begin;
  const Speech near = Speak(rate, length, 12);
  const auto first = static_cast<size_t>(call.doubleTalk.begin * rate);
  for (size_t i = 0; i < near.samples.size(); ++i) call.talk[first + i] = 0.8 * near.samples[i];
  for (size_t i = 0; i < call.near.size(); ++i) call.near[i] += call.talk[i];
  for (const Stretch& each : near.spoken) {
    call.nearTalk.push_back({each.begin + call.doubleTalk.begin, each.end + call.doubleTalk.begin});
  }
  Noise noise(13);
  for (double& sample : call.near) sample = std::clamp(sample + 0.001 * noise.Next(), -1.0, 1.0);
  return call;
}

}  // namespace host
