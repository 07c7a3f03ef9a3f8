#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "engine_api/effects/beat_track.h"
#include "support/drum_loop.h"

struct Release {
  void operator()(IBeatTrack* tracker) const { tracker->Destroy(); }
};
using Tracker = std::unique_ptr<IBeatTrack, Release>;

// Notes each beat with the samples handed over before it.
class Listener : public IBeatTrackNotify {
 public:
  void NotifyBeat(int bpm, float power) override {
    times.push_back(now);
    tempi.push_back(bpm);
    powers.push_back(power);
  }
  void NotifyStartFive() override { startsAfter.push_back(times.size()); }

  double now = 0;  // Seconds.
  std::vector<double> times;
  std::vector<int> tempi;
  std::vector<float> powers;
  std::vector<size_t> startsAfter;
};

// Plays `samples` to a new tracker in blocks of `block` and returns what it told.
Listener Listen(std::vector<short> samples, int rate, int channels, int block, int delay = 0);

// The share of beats after 10 s that lie within 70 ms of one of the loop.
double OnTheGrid(const Listener& listener, const DrumLoop& loop);
