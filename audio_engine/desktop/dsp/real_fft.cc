#include "desktop/dsp/real_fft.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <new>

#include "desktop/common/counts.h"

namespace desktop {

void RealFft::Free::operator()(kiss_fftr_state* plan) const { kiss_fftr_free(plan); }

RealFft::RealFft(size_t size)
    : m_size(size),
      m_forward(kiss_fftr_alloc(Count(size), 0, nullptr, nullptr)),
      m_inverse(kiss_fftr_alloc(Count(size), 1, nullptr, nullptr)) {
  if (!m_forward || !m_inverse) throw std::bad_alloc();
}

void RealFft::Forward(const float* samples, std::complex<float>* bins) {
  kiss_fftr(m_forward.get(), samples, reinterpret_cast<kiss_fft_cpx*>(bins));
}

void RealFft::Inverse(const std::complex<float>* bins, float* samples) {
  kiss_fftri(m_inverse.get(), reinterpret_cast<const kiss_fft_cpx*>(bins), samples);
  const float scale = 1.0f / static_cast<float>(m_size);
  std::for_each(samples, samples + m_size, [scale](float& sample) { sample *= scale; });
}

}  // namespace desktop
