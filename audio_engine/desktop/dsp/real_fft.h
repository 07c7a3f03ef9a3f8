#pragma once

#include <complex>
#include <cstddef>
#include <memory>

struct kiss_fftr_state;

namespace desktop {

// The discrete Fourier transform of real samples, by kissfft (mixed radix: Cooley and Tukey, "An
// algorithm for the machine calculation of complex Fourier series", 1965). Allocates in the
// constructor only. Belongs to one thread at a time.
class RealFft {
 public:
  // size: an even number of samples; products of 2, 3 and 5 are fast.
  explicit RealFft(size_t size);

  size_t Size() const { return m_size; }
  size_t Bins() const { return m_size / 2 + 1; }

  // Size() samples to Bins() bins, and back, so that both together change nothing. Of the first and
  // the last bin only the real part counts.
  void Forward(const float* samples, std::complex<float>* bins);
  void Inverse(const std::complex<float>* bins, float* samples);

 private:
  struct Free {
    void operator()(kiss_fftr_state* plan) const;
  };

  const size_t m_size;
  std::unique_ptr<kiss_fftr_state, Free> m_forward;
  std::unique_ptr<kiss_fftr_state, Free> m_inverse;
};

}  // namespace desktop
