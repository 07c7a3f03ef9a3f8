#include <array>

#include "selftest/control.h"

namespace host {

namespace {

// A copy, which is 0 cents higher where it has a pitch.
Control Copy(const std::string& name, const std::string& theory, int rate,
             const std::function<Samples()>& make, bool voiced) {
  Expected expected = {.measure = "pitch_cents", .value = 0, .tolerance = 1e-6};
  if (!voiced) expected.reason = "too little that has a pitch";
  return {name,
          theory,
          [=] {
            const Samples samples = make();
            return Scene{.output = {rate, {samples}}, .reference = {rate, {samples}}};
          },
          {expected}};
}

Control AtEdge(double hz, bool voiced) {
  constexpr int kRate = 100000;  // So that the period is known to a thousandth of a cent.
  return Copy(
      "a voice of " + std::to_string(hz) + " Hz", "Pitches from 60 to 1000 Hz count.", kRate,
      [hz] {
        Samples samples = Sine(kRate, 0.2, hz, 0.3);
        for (int k = 2; k <= 5; ++k) samples = Sum(samples, Sine(kRate, 0.2, k * hz, 0.3 / k, k));
        return samples;
      },
      voiced);
}

// A sequence of 127 signs that has next to nothing in common with itself at any lag below 127: of a
// shift register with the polynomial x^7 + x^6 + 1 (S. W. Golomb, "Shift Register Sequences",
// 1967).
Samples Signs(size_t count) {
  std::array<bool, 7> bits;
  bits.fill(true);
  Samples samples(count);
  for (float& sample : samples) {
    sample = bits[6] ? 0.5F : -0.5F;
    const bool next = bits[6] != bits[5];
    for (size_t i = 6; i > 0; --i) bits[i] = bits[i - 1];
    bits[0] = next;
  }
  return samples;
}

// At 20320 Hz a window is 508 samples, four of the sequence's 127, and a step 203. The tenth block
// starts at 1827, and what is missing of the last 635 samples that it looks at counts.
Control EndsAt(size_t count, bool voiced) {
  constexpr int kRate = 20320;
  return Copy(
      "signs that repeat themselves after 127 samples, " + std::to_string(count) +
          " of them, then silence",
      "Ten blocks count where the tenth has less than a tenth of the mean difference one "
      "period later, summed by the definition: 0.0990 with 97 samples missing, 0.1001 "
      "with 98.",
      kRate,
      [count] {
        Samples samples = Signs(count);
        samples.resize(count + 4000);
        return samples;
      },
      voiced);
}

}  // namespace

std::vector<Control> PitchControls() {
  return {AtEdge(60.003, true),  AtEdge(59.997, false), AtEdge(999.9, true),
          AtEdge(1000.1, false), EndsAt(2365, true),    EndsAt(2364, false)};
}

}  // namespace host
