#include "beat_listener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

Listener Listen(std::vector<short> samples, int rate, int channels, int block, int delay) {
  Listener listener;
  const Tracker tracker(CreateBeatTrack(rate, channels));
  tracker->Start(0, &listener, delay);
  const int count = static_cast<int>(samples.size());
  for (int done = 0; done < count; done += block) {
    const int length = std::min(block, count - done);
    listener.now = static_cast<double>(done + length) / rate / channels;
    const size_t before = listener.times.size();
    const int status = tracker->Detectbeat(&samples[static_cast<size_t>(done)], length);
    EXPECT_EQ(status, listener.times.size() > before ? 1 : 0);
  }
  tracker->Stop();
  return listener;
}

double OnTheGrid(const Listener& listener, const DrumLoop& loop) {
  int told = 0;
  int right = 0;
  for (const double time : listener.times) {
    if (time < 10) continue;
    ++told;
    right += std::any_of(loop.beats.begin(), loop.beats.end(),
                         [&](double beat) { return std::fabs(beat - time) < 0.07; });
  }
  return told > 0 ? static_cast<double>(right) / told : 0;
}
