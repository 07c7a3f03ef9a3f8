#include "selftest/weighting_controls.h"

#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <string>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kTableRate = 48000;  // Hz

// A section of second order by its coefficients; the denominator starts with 1.
struct Section {
  std::array<double, 3> numerator;
  std::array<double, 2> denominator;  // The second and the third.

  // Of the magnitude, at a frequency in radians a sample.
  double Power(double angle) const {
    const std::complex<double> back = std::polar(1.0, -angle);
    return std::norm(numerator[0] + back * (numerator[1] + back * numerator[2])) /
           std::norm(1.0 + back * (denominator[0] + back * denominator[1]));
  }
};

// The tables of ITU-R BS.1770-4, annex 1, for 48 kHz.
constexpr Section kShelf = {{1.53512485958697, -2.69169619838638, 1.19839281085285},
                            {-1.69065929318241, 0.73248077421585}};
constexpr Section kHighPass = {{1, -2, 1}, {-1.99004745483398, 0.99007225036621}};

// What a section of the table is at another rate: the same one in the plane of s. The bilinear
// transform has put the square of the tangent of half its angle into the denominator, and moves
// each frequency by the tangents.
class Moved {
 public:
  Moved(const Section& section, int rate)
      : m_section(section),
        m_rate(rate),
        m_tableTangent(std::sqrt((1 + section.denominator[0] + section.denominator[1]) /
                                 (1 - section.denominator[0] + section.denominator[1]))),
        m_tangent(std::tan(std::atan(m_tableTangent) * kTableRate / rate)) {}

  double Power(double hz) const {
    const double half = std::numbers::pi * hz / m_rate;
    return m_section.Power(2 * std::atan(std::tan(half) * m_tableTangent / m_tangent));
  }

  // By what a numerator that is the same at any rate is above the one that goes with the rate.
  double Raised() const { return Whole(m_tangent) / Whole(m_tableTangent); }

 private:
  // 1 + tangent / Q + tangent^2, by which the transform divides; Q out of the last coefficient.
  double Whole(double tangent) const {
    const double last = m_section.denominator[1];
    const double ofTable =
        (1 + m_tableTangent * m_tableTangent) * (1 - last) / (1 + last) / m_tableTangent;
    return 1 + tangent * ofTable + tangent * tangent;
  }

  Section m_section;
  double m_rate;
  double m_tableTangent;
  double m_tangent;
};

// dB, of both sections.
double Weighting(double hz, int rate) {
  const Moved shelf(kShelf, rate);
  const Moved highPass(kHighPass, rate);
  return 10 * std::log10(shelf.Power(hz) * highPass.Power(hz)) + 20 * std::log10(highPass.Raised());
}

}  // namespace

double LoudnessOfSine(double hz, int rate, double amplitude) {
  return Weighting(hz, rate) + 10 * std::log10(amplitude * amplitude / 2) - 0.691;
}

namespace {

Control Weighted(double hz, int rate) {
  return {"a sine of " + std::to_string(static_cast<int>(hz)) + " Hz at " + std::to_string(rate) +
              " Hz",
          "What the tables of BS.1770-4 pass of its power, at another rate than theirs by the "
          "bilinear transform of the same sections, with the numerator 1, -2, 1. A tenth of a "
          "second has whole periods; what the filters take to settle, 4 ms, counts for a quarter "
          "of that in 2 s.",
          [=] {
            return Scene{.output = {rate, {Sine(rate, 2, hz, 0.5)}}};
          },
          {{"loudness", LoudnessOfSine(hz, rate, 0.5), 0.005}}};
}

// How much each channel counts, of so many.
std::vector<double> Weights(size_t channels) {
  if (channels == 4) return {1, 1, 1.41, 1.41};
  if (channels == 5) return {1, 1, 1, 1.41, 1.41};
  std::vector<double> weights = {1, 1, 1, 0, 1.41, 1.41};
  weights.resize(channels);
  return weights;
}

Control InChannels(size_t channels) {
  constexpr double hz = 1000;
  double power = 0;
  for (size_t i = 0; i < channels; ++i)
    power += Weights(channels)[i] * static_cast<double>(1U << i);
  return {
      "a sine in each of " + std::to_string(channels) + " channels, of twice the power in each",
      "Four are L R Ls Rs, five L R C Ls Rs, six L R C LFE Ls Rs; surrounds count 1.41 times, "
      "the one for effects and what comes after the six not at all.",
      [=] {
        Scene scene = {.output = {8000, {}}};
        const Waveform sine = Sine(8000, 1, hz, 0.01);
        for (size_t i = 0; i < channels; ++i) {
          scene.output.channels.push_back(Scaled(sine, std::pow(2, static_cast<double>(i) / 2)));
        }
        return scene;
      },
      {{"loudness", LoudnessOfSine(hz, 8000, 0.01) + 10 * std::log10(power), 0.005}}};
}

// A tenth of a second is 4095 samples.
Control OfOddTenths() {
  return {"0.4 s of a sine of 1 kHz at 40950 Hz",
          "Each sample counts, or there would be less than one block. The filters settle in 4 ms.",
          [] {
            return Scene{.output = {40950, {Sine(40950, 0.4, 1000, 0.5)}}};
          },
          {{"loudness", LoudnessOfSine(1000, 40950, 0.5), 0.02}}};
}

// All is in the left one.
Control InMany(size_t channels, const std::string& reason) {
  return {"a sine in the first of " + std::to_string(channels) + " channels",
          "Up to 64 channels are a programme.",
          [channels] {
            Scene scene = {.output = {8000, std::vector<Waveform>(channels, Waveform(4000))}};
            scene.output.channels.front() = Sine(8000, 0.5, 1000, 0.5);
            return scene;
          },
          {{"loudness", LoudnessOfSine(1000, 8000, 0.5), 0.02, reason}}};
}

}  // namespace

std::vector<Control> WeightingControls() {
  std::vector<Control> controls;
  for (const double hz : {30.0, 60.0, 500.0, 1500.0, 2500.0, 10000.0}) {
    controls.push_back(Weighted(hz, kTableRate));
  }
  for (const double hz : {40.0, 1500.0, 3000.0}) controls.push_back(Weighted(hz, 8000));
  for (const size_t channels : {3U, 4U, 5U, 6U, 8U}) controls.push_back(InChannels(channels));
  controls.push_back(OfOddTenths());
  controls.push_back(InMany(64, ""));
  controls.push_back(InMany(65, "a rate or channel count that is out of range"));
  return controls;
}

}  // namespace host
