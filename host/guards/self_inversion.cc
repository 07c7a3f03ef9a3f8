#include "guards/self_inversion.h"

#include <algorithm>
#include <complex>
#include <vector>

#include "audio_measures/real_fft.h"

namespace host {

namespace {

constexpr size_t kStretch = 16384;  // Frames that are held against themselves,
constexpr size_t kLags = 8192;      // by up to so many later,
constexpr int64_t kPlaces = 12;     // at so many places.
constexpr float kOwnNegative = -0.9F;

}  // namespace

bool InvertsItself(const Track& track, int channel) {
  return InvertsItself(track.Frames(),
                       [&](int64_t first, std::span<float> to) { track.Read(channel, first, to); });
}

bool InvertsItself(int64_t frames, const ReadFrom& read) {
  const audio_measures::RealFft fft(2 * kStretch);
  std::vector<float> samples(fft.Size());
  std::vector<std::complex<float>> bins(fft.Bins());
  std::vector<std::complex<float>> power(fft.Bins());
  for (int64_t place = 0; place < kPlaces; ++place) {
    read(place * frames / kPlaces, std::span(samples).first(kStretch));
    fft.Forward(samples, bins);
    for (size_t i = 0; i < bins.size(); ++i) power[i] += std::norm(bins[i]);
  }
  // An offset is no part of the sound.
  power.front() = 0;
  fft.Inverse(power, samples);
  for (size_t lag = 1; lag < kLags; ++lag) {
    const float both = static_cast<float>(kStretch - lag) / kStretch;
    if (samples[lag] <= kOwnNegative * both * samples[0]) return true;
  }
  return false;
}

}  // namespace host
