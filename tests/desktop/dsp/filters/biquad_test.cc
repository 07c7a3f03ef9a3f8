#include "desktop/dsp/filters/biquad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

#include "support/signals.h"

namespace {

using desktop::BiquadKind;
using desktop::BiquadShape;

constexpr int kRate = 48000;

// The gain in dB at a frequency, from the first second of the response to an impulse.
double GainAt(const BiquadShape& shape, double frequency) {
  desktop::Biquad filter;
  filter.Design(shape, kRate);
  std::complex<double> sum = 0;
  for (int i = 0; i < kRate; ++i) {
    sum += filter.Run(i == 0 ? 1 : 0) * std::polar(1.0, -2 * M_PI * frequency * i / kRate);
  }
  return Decibels(std::abs(sum));
}

// The analogue prototype at the frequency that the bilinear transform puts there, where s is 1 at
// the frequency of the shape.
double Prototype(const BiquadShape& shape, double frequency) {
  const double a = std::pow(10, shape.gainDb / 40);
  const double width = 1 / shape.q;
  const double warped =
      std::tan(M_PI * frequency / kRate) / std::tan(M_PI * shape.frequency / kRate);
  const std::complex<double> s(0, warped);
  const std::complex<double> low = a * (s * s + std::sqrt(a) * width * s + a);
  const std::complex<double> high = a * s * s + std::sqrt(a) * width * s + 1.0;
  const auto of = [](const std::complex<double>& value) { return Decibels(std::abs(value)); };
  switch (shape.kind) {
    case BiquadKind::kNone:
      return 0;
    case BiquadKind::kLowPass:
      return -of(s * s + width * s + 1.0);
    case BiquadKind::kHighPass:
      return of(s * s) - of(s * s + width * s + 1.0);
    case BiquadKind::kPeak:
      return of(s * s + a * width * s + 1.0) - of(s * s + width / a * s + 1.0);
    case BiquadKind::kLowShelf:
      return of(low) - of(high);
    case BiquadKind::kHighShelf:
      break;
  }
  return of(a * high) - of(low / a);
}

TEST(Biquad, HasTheGainOfItsPrototypeAtEveryFrequency) {
  for (const BiquadShape& shape : {BiquadShape{BiquadKind::kLowPass, 3000, 0.707, 0},
                                   {BiquadKind::kLowPass, 500, 4, 0},
                                   {BiquadKind::kHighPass, 3000, 0.707, 0},
                                   {BiquadKind::kHighPass, 8000, 0.5, 0},
                                   {BiquadKind::kPeak, 2000, 2, 9},
                                   {BiquadKind::kPeak, 9000, 0.6, -12},
                                   {BiquadKind::kLowShelf, 1500, 0.707, 6},
                                   {BiquadKind::kLowShelf, 400, 0.5, -9},
                                   {BiquadKind::kHighShelf, 1500, 0.707, 6},
                                   {BiquadKind::kHighShelf, 7000, 1, -9},
                                   {BiquadKind::kNone, 1000, 1, 6}}) {
    for (const double frequency : {100.0, 400.0, 1000.0, 3000.0, 9000.0, 18000.0}) {
      EXPECT_NEAR(GainAt(shape, frequency), Prototype(shape, frequency), 0.01)
          << static_cast<int>(shape.kind) << " at " << frequency;
    }
  }
}

TEST(Biquad, LeavesAloneWhatLiesTooHigh) {
  EXPECT_NEAR(GainAt({BiquadKind::kLowPass, 0.45 * kRate + 1, 0.707, 0}, 23000), 0, 1e-9);
  EXPECT_LT(GainAt({BiquadKind::kLowPass, 0.45 * kRate - 1, 0.707, 0}, 23000), -6);
}

TEST(Biquad, StartsAfreshWithEachDesign) {
  desktop::Biquad filter;
  filter.Design({BiquadKind::kLowPass, 1000, 0.707, 0}, kRate);
  filter.Run(1);
  filter.Design({BiquadKind::kLowPass, 1000, 0.707, 0}, kRate);
  EXPECT_EQ(filter.Run(0), 0);
}

}  // namespace
