// How well the beat tracker follows: beat_quality [MUSIC.wav BPM]
//
// Plays it drum loops of known beats, and the music at a steady tempo, each from several places on.
// Of the beats from 3.5 s on it prints the share that was told within 70 ms (found), the share of
// those told that are right, when the first one came, and how late the latest of them was told.
// Half and twice the tempo count as right where all that is told lies on beats or halves of them.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "engine_api/common/wav_reader.h"
#include "engine_api/effects/beat_track.h"
#include "support/drum_loop.h"

namespace {

constexpr double kFrom = 3.5;
constexpr double kNear = 0.07;

class Listener : public IBeatTrackNotify {
 public:
  void NotifyBeat(int /*bpm*/, float /*power*/) override { times.push_back(now); }
  void NotifyStartFive() override {}

  double now = 0;  // Seconds.
  std::vector<double> times;
};

std::vector<double> Told(std::vector<short> samples, int rate, int channels) {
  Listener listener;
  IBeatTrack* const tracker = CreateBeatTrack(rate, channels);
  tracker->Start(0, &listener, 0);
  const auto block = static_cast<size_t>(rate / 100) * static_cast<size_t>(channels);
  for (size_t done = 0; done + block <= samples.size(); done += block) {
    listener.now = static_cast<double>(done + block) / rate / channels;
    tracker->Detectbeat(&samples[done], static_cast<int>(block));
  }
  tracker->Stop();
  tracker->Destroy();
  return listener.times;
}

struct Score {
  double found = 0;
  double right = 0;
  double first = 0;
  double latest = 0;
};

double Distance(const std::vector<double>& times, double time) {
  double nearest = 1e9;
  for (const double other : times) {
    if (std::fabs(time - other) < std::fabs(nearest)) nearest = time - other;
  }
  return nearest;
}

Score Judge(const std::vector<double>& told, const std::vector<double>& beats, double end) {
  Score score;
  score.first = told.empty() ? end : told.front();
  int expected = 0, found = 0, said = 0, right = 0;
  for (const double beat : beats) {
    if (beat < kFrom || beat > end - 0.1) continue;
    ++expected;
    found += std::fabs(Distance(told, beat)) <= kNear ? 1 : 0;
  }
  for (const double time : told) {
    if (time < kFrom) continue;
    const double late = Distance(beats, time);
    ++said;
    if (std::fabs(late) > kNear) continue;
    ++right;
    score.latest = std::max(score.latest, late);
  }
  score.found = expected > 0 ? 1.0 * found / expected : 0;
  score.right = said > 0 ? 1.0 * right / said : 0;
  return score;
}

// The level that was heard: the beats, every other one of them, or also those between.
Score JudgeLevel(const std::vector<double>& told, const std::vector<double>& beats, double end) {
  std::vector<double> levels[4] = {beats, {}, {}, {}};
  for (size_t i = 0; i < beats.size(); ++i) levels[1 + i % 2].push_back(beats[i]);
  for (size_t i = 0; i + 1 < beats.size(); ++i) {
    levels[3].push_back(beats[i]);
    levels[3].push_back((beats[i] + beats[i + 1]) / 2);
  }
  Score best;
  for (const auto& level : levels) {
    const Score score = Judge(told, level, end);
    if (score.found + score.right > best.found + best.right) best = score;
  }
  if (best.first == 0) best.first = told.empty() ? end : told.front();
  return best;
}

struct Sum {
  Score mean;
  int count = 0;
  void Add(const Score& score) {
    mean.found += score.found;
    mean.right += score.right;
    mean.first = std::max(mean.first, score.first);
    mean.latest = std::max(mean.latest, score.latest);
    ++count;
  }
  void Print(const char* name) const {
    std::printf("%-12s found %5.1f %%, right %5.1f %%, first at %4.1f s, latest %3.0f ms late\n",
                name, 100 * mean.found / count, 100 * mean.right / count, mean.first,
                1000 * mean.latest);
  }
};

void PlayLoops() {
  const std::pair<Groove, const char*> grooves[] = {{Groove::kRock, "rock"},
                                                    {Groove::kHouse, "house"},
                                                    {Groove::kWaltz, "waltz"},
                                                    {Groove::kSwing, "swing"},
                                                    {Groove::kBallad, "ballad"}};
  for (const auto& [groove, name] : grooves) {
    Sum sum;
    for (int bpm = 70; bpm <= 180; bpm += 11) {
      for (const double start : {0.05, 0.31, 0.47}) {
        const DrumLoop loop = RenderLoop(groove, bpm, 15, start, 22050);
        const Score score = JudgeLevel(Told(loop.samples, 22050, 1), loop.beats, 15);
        sum.Add(score);
      }
    }
    sum.Print(name);
  }
}

// The steady beats that what was told in the second half fits best.
std::vector<double> SteadyBeats(const std::vector<double>& told, double bpm, double end) {
  const double period = 60 / bpm;
  double best = 0;
  int most = -1;
  for (double phase = 0; phase < period; phase += 0.002) {
    int near = 0;
    for (const double time : told) {
      if (time < end / 2) continue;
      near += std::fabs(std::remainder(time - phase, period)) < 0.03 ? 1 : 0;
    }
    if (near > most) best = phase;
    most = std::max(most, near);
  }
  std::vector<double> beats;
  for (double time = best; time < end; time += period) beats.push_back(time);
  return beats;
}

void PlayMusic(const char* name, double bpm) {
  zuwebrtc::WavReader reader(name);
  std::vector<short> samples(reader.num_samples());
  reader.ReadSamples(static_cast<unsigned>(samples.size()), samples.data());
  const int rate = reader.sample_rate();
  const int channels = reader.num_channels();
  const double second = 1.0 * rate * channels;
  const double end = static_cast<double>(samples.size()) / second;
  const std::vector<double> beats = SteadyBeats(Told(samples, rate, channels), bpm, end);
  Sum sum;
  for (double start = 0; start + 15 <= end; start += 1.3) {
    const auto begin = static_cast<size_t>(start * rate) * static_cast<size_t>(channels);
    std::vector<double> here;
    for (const double beat : beats) here.push_back(beat - start);
    const std::vector<short> part(samples.begin() + static_cast<std::ptrdiff_t>(begin),
                                  samples.end());
    const Score score = JudgeLevel(Told(part, rate, channels), here, end - start);
    sum.Add(score);
  }
  sum.Print("the music");
}

}  // namespace

int main(int count, char** words) {
  PlayLoops();
  if (count == 3) PlayMusic(words[1], std::atof(words[2]));
  return 0;
}
