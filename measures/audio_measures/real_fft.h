#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <span>

struct kiss_fftr_state;

namespace audio_measures {

// Fourier transforms of real blocks, both directions; neither scales, so that there and back
// multiplies by the size. Sizes are even. What a size needs is kept for the next one of that size.
class RealFft {
 public:
  explicit RealFft(size_t size);

  size_t Size() const { return m_size; }
  size_t Bins() const { return m_size / 2 + 1; }

  // samples: Size() of them; bins: Bins() of them.
  void Forward(std::span<const float> samples, std::span<std::complex<float>> bins) const;
  void Inverse(std::span<const std::complex<float>> bins, std::span<float> samples) const;

 private:
  enum class Direction { kForward, kInverse };
  // Of one transform at a time, because it holds what is being worked on.
  struct GiveBack {
    size_t size = {};
    Direction direction = Direction::kForward;
    void operator()(kiss_fftr_state* plan) const;
  };
  using Plan = std::unique_ptr<kiss_fftr_state, GiveBack>;
  class Shelf;

  static Plan Take(size_t size, Direction direction);

  size_t m_size;
  Plan m_forward;
  Plan m_inverse;
};

// A bin of the cross-spectrum from `a` to `b`: conj(a) b, without the look for infinities that the
// product of std::complex takes.
template <typename T>
std::complex<T> CrossBin(const std::complex<T>& a, const std::complex<T>& b) {
  return {a.real() * b.real() + a.imag() * b.imag(), a.real() * b.imag() - a.imag() * b.real()};
}

}  // namespace audio_measures
