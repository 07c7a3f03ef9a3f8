#include "audio_measures/real_fft.h"

#include <kiss_fftr.h>

namespace audio_measures {

void RealFft::Free::operator()(kiss_fftr_state* plan) const { kiss_fftr_free(plan); }

RealFft::RealFft(size_t size)
    : m_size(size),
      m_forward(kiss_fftr_alloc(static_cast<int>(size), 0, nullptr, nullptr)),
      m_inverse(kiss_fftr_alloc(static_cast<int>(size), 1, nullptr, nullptr)) {}

void RealFft::Forward(std::span<const float> samples, std::span<std::complex<float>> bins) const {
  kiss_fftr(m_forward.get(), samples.data(), reinterpret_cast<kiss_fft_cpx*>(bins.data()));
}

void RealFft::Inverse(std::span<const std::complex<float>> bins, std::span<float> samples) const {
  kiss_fftri(m_inverse.get(), reinterpret_cast<const kiss_fft_cpx*>(bins.data()), samples.data());
}

}  // namespace audio_measures
