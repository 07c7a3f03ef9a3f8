#pragma once

#include <array>
#include <cstddef>

namespace audio_measures {

// The K-weighting of ITU-R BS.1770-4, annex 1, of two channels side by side: a shelf for the head,
// then a high-pass, both of second order.
class KWeighting {
 public:
  explicit KWeighting(int rate);

  // Takes in frames of which each starts `stride` floats after the one before: one or two channels
  // of each.
  void Add(const float* frames, size_t count, size_t stride, bool two);

  // The sum of the squares of what has been added, of the first channel and of the second one,
  // since the last call.
  struct Sums {
    double first = 0;
    double second = 0;
  };
  Sums Take();

 private:
  // What a vector register of any machine holds. The compiler does not find this by itself.
  using Doubles = double __attribute__((vector_size(16)));

  // A filter by its state, each sample of which depends on the one before by one product only.
  struct Section {
    double now = 0;  // The share of the sample in the result,
    double toFirst = 0;
    double toSecond = 0;  // and in both states, which
    double keptFirst = 0;
    double keptSecond = 0;  // keep so much of the first one.
    Doubles first = {};
    Doubles second = {};

    // Of the coefficients of a transfer function whose denominator starts with 1.
    using Coefficients = std::array<double, 3>;
    static Section Of(const Coefficients& numerator, const Coefficients& denominator);
    Doubles Next(const Doubles& sample);
    void DropTraces();
  };

  template <bool kTwo>
  void AddFrames(const float* frames, size_t count, size_t stride);

  Section m_shelf;
  Section m_highPass;
  Doubles m_sums = {};
};

}  // namespace audio_measures
