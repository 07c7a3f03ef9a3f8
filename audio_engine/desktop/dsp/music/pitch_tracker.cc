#include "desktop/dsp/music/pitch_tracker.h"

#include <algorithm>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

// In samples: the periods that are tried, and how much sound is compared.
constexpr size_t kShortest = 15;
constexpr size_t kLongest = 246;
constexpr size_t kWindow = 640;

// A sound repeats itself, and has a pitch, where its distance to itself is less than this part of
// the mean.
constexpr float kClear = 0.15F;

// The power of what is too quiet to be sung: -50 dBFS.
constexpr double kQuiet = 100.0 * 100;

// Returns where the parabola through three neighbours has its lowest point, as seen from the middle
// one.
double Vertex(double before, double middle, double after) {
  const double bend = before - 2 * middle + after;
  return bend <= 0 ? 0 : std::clamp((before - after) / (2 * bend), -0.5, 0.5);
}

}  // namespace

PitchTracker::PitchTracker() : m_samples(kWindow + kLongest + 1), m_distance(kLongest + 2) {}

double PitchTracker::Power() const {
  double power = 0;
  for (const float sample : m_samples) power += double{sample} * sample;
  return power / Real(m_samples.size());
}

double PitchTracker::Track(const short* samples) {
  std::copy(m_samples.begin() + kHop, m_samples.end(), m_samples.begin());
  std::copy_n(samples, kHop, m_samples.end() - kHop);
  if (Power() < kQuiet) return 0;

  // The distance of the sound to itself one period later, against the mean over all shorter
  // periods. What is compared lies around the middle of m_samples for each of them: so high notes
  // are heard no later than low ones.
  double sum = 0;
  for (size_t period = 1; period <= kLongest + 1; ++period) {
    float distance = 0;
    const size_t first = (kLongest + 1 - period) / 2;
    for (size_t i = first; i < first + kWindow; ++i) {
      const float difference = m_samples[i] - m_samples[i + period];
      distance += difference * difference;
    }
    sum += distance;
    m_distance[period] = sum > 0 ? static_cast<float>(distance * Real(period) / sum) : 1;
  }
  for (size_t period = kShortest; period <= kLongest; ++period) {
    if (m_distance[period] > kClear || m_distance[period + 1] < m_distance[period]) continue;
    return kRate / (Real(period) +
                    Vertex(m_distance[period - 1], m_distance[period], m_distance[period + 1]));
  }
  return 0;
}

}  // namespace desktop
