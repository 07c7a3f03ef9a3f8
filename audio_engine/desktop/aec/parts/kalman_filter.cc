#include "desktop/aec/parts/kalman_filter.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

// How much of the echo path is the same one block later. Nearer to 1 gives more depth in the end,
// farther from it follows a moving talker faster.
constexpr float kPersistence = 0.9995f;

// The power of a path that has not been heard yet: at its start, and what is left of it per block,
// as rooms fade.
constexpr float kFirstUncertainty = 1.0f;
constexpr float kFade = 0.87f;

// How much of the power of the near end stays from block to block, and what it is at least.
constexpr float kNearSmoothing = 0.8f;
constexpr float kNoisePower = 1000.0f;

// A filter that makes the near end louder by this factor of energy, over about 200 ms, is wrong.
constexpr float kDivergence = 2.0f;
constexpr float kEnergySmoothing = 0.95f;

// A filter that took 6 dB once, and then makes the near end louder for so many blocks, may have
// learnt a path that is gone: less than half of the echo it takes out is in the near end, whoever
// else talks there. Its uncertainty does not grow by itself then, because the echo it leaves looks
// like a near end.
constexpr float kUsefulness = 0.25f;
constexpr int kUselessBlocks = 50;

// The share of a block in which the echo by the earlier path gives way to that by the new one.
constexpr size_t kFadeShare = 4;

// With a quieter far end nothing can be told.
constexpr float kFarRms = 50.0f;

// The sum of the squares of `count` samples.
float Energy(const float* samples, size_t count) {
  float energy = 0;
  for (size_t i = 0; i < count; ++i) energy += samples[i] * samples[i];
  return energy;
}

// Adds the products of two spectra. They are written out, because the operator of std::complex
// looks for infinities, which costs more than the product.
void AddProduct(const std::vector<std::complex<float>>& one,
                const std::vector<std::complex<float>>& other,
                std::vector<std::complex<float>>& sum) {
  for (size_t bin = 0; bin < sum.size(); ++bin) {
    const float re = one[bin].real() * other[bin].real() - one[bin].imag() * other[bin].imag();
    const float im = one[bin].real() * other[bin].imag() + one[bin].imag() * other[bin].real();
    sum[bin] += std::complex<float>(re, im);
  }
}

}  // namespace

KalmanFilter::KalmanFilter(size_t block, size_t partitions, size_t maxOffset)
    : m_block(block),
      m_partitions(partitions),
      m_fft(2 * block),
      m_farSamples(2 * block),
      m_far(partitions + maxOffset, Spectrum(m_fft.Bins())),
      m_path(partitions, Spectrum(m_fft.Bins())),
      m_uncertainty(partitions, Power(m_fft.Bins())),
      m_earlierPath(partitions, Spectrum(m_fft.Bins())),
      m_predicted(m_fft.Bins()),
      m_doubt(m_fft.Bins()),
      m_nearPower(m_fft.Bins()),
      m_echo(m_fft.Bins()),
      m_error(m_fft.Bins()),
      m_step(m_fft.Bins()),
      m_samples(2 * block),
      m_earlierEcho(2 * block),
      m_echoSamples(block) {
  Restart();
}

void KalmanFilter::Restart() {
  for (size_t partition = 0; partition < m_partitions; ++partition) ForgetPartition(partition);
  m_nearEnergy = 0;
  m_outEnergy = 0;
  m_wasUseful = false;
  m_uselessFor = 0;
}

void KalmanFilter::ForgetPartition(size_t partition) {
  std::fill(m_path[partition].begin(), m_path[partition].end(), 0.0f);
  DoubtPartition(partition);
}

void KalmanFilter::DoubtPartition(size_t partition) {
  const float first = kFirstUncertainty * std::pow(kFade, static_cast<float>(partition));
  std::fill(m_uncertainty[partition].begin(), m_uncertainty[partition].end(), first);
}

void KalmanFilter::SetOffset(size_t blocks) {
  const size_t wanted = std::min(blocks, m_far.size() - m_partitions);
  if (wanted > m_offset) {
    const size_t shift = std::min(wanted - m_offset, m_partitions);
    std::rotate(m_path.begin(), m_path.begin() + desktop::Offset(shift), m_path.end());
    std::rotate(m_uncertainty.begin(), m_uncertainty.begin() + desktop::Offset(shift),
                m_uncertainty.end());
    for (size_t i = m_partitions - shift; i < m_partitions; ++i) ForgetPartition(i);
  } else if (wanted < m_offset) {
    const size_t shift = std::min(m_offset - wanted, m_partitions);
    std::rotate(m_path.begin(), m_path.end() - desktop::Offset(shift), m_path.end());
    std::rotate(m_uncertainty.begin(), m_uncertainty.end() - desktop::Offset(shift),
                m_uncertainty.end());
    for (size_t i = 0; i < shift; ++i) ForgetPartition(i);
  }
  m_offset = wanted;
}

const KalmanFilter::Spectrum& KalmanFilter::FarSpectrum(size_t offset, size_t partition) const {
  return m_far[(m_newest + offset + partition) % m_far.size()];
}

void KalmanFilter::Hear(const float* far) {
  std::copy(m_farSamples.begin() + desktop::Offset(m_block), m_farSamples.end(),
            m_farSamples.begin());
  std::copy(far, far + m_block, m_farSamples.begin() + desktop::Offset(m_block));
  m_newest = (m_newest + m_far.size() - 1) % m_far.size();
  m_fft.Forward(m_farSamples.data(), m_far[m_newest].data());
}

void KalmanFilter::Process(const float* far, const float* near, float* out) {
  Hear(far);
  PredictEarlierEcho();
  PredictEcho();
  for (size_t i = 0; i < m_block; ++i) {
    m_echoSamples[i] = m_samples[m_block + i];
    m_samples[m_block + i] = near[i] - m_echoSamples[i];
  }
  std::fill(m_samples.begin(), m_samples.begin() + desktop::Offset(m_block), 0.0f);
  const bool diverged = Diverged(near, &m_samples[m_block]);
  TakeOut(near, out, diverged);
  if (diverged) Restart();
  m_earlierPath = m_path;
  m_earlierOffset = m_offset;
  if (diverged) return;
  DoubtUselessPath();
  Adapt();
}

// Takes the echo out of the near end. A filter that has diverged takes out nothing.
void KalmanFilter::TakeOut(const float* near, float* out, bool diverged) const {
  const size_t fade = m_block / kFadeShare;
  for (size_t i = 0; i < m_block; ++i) {
    float echo = diverged ? 0 : m_echoSamples[i];
    if (i < fade) {
      const float share = (static_cast<float>(i) + 0.5f) / static_cast<float>(fade);
      echo = share * echo + (1 - share) * m_earlierEcho[m_block + i];
    }
    out[i] = near[i] - echo;
  }
}

// Leaves what the echo would be by the path of the block before in the second half of
// m_earlierEcho.
void KalmanFilter::PredictEarlierEcho() {
  std::fill(m_echo.begin(), m_echo.end(), 0.0f);
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    AddProduct(FarSpectrum(m_earlierOffset, partition), m_earlierPath[partition], m_echo);
  }
  m_fft.Inverse(m_echo.data(), m_earlierEcho.data());
}

// Leaves the block's echo in the second half of m_samples.
void KalmanFilter::PredictEcho() {
  Age();
  std::fill(m_echo.begin(), m_echo.end(), 0.0f);
  std::fill(m_predicted.begin(), m_predicted.end(), 0.0f);
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    const Spectrum& far = FarSpectrum(m_offset, partition);
    const Power& uncertainty = m_uncertainty[partition];
    for (size_t bin = 0; bin < far.size(); ++bin) {
      m_predicted[bin] += std::norm(far[bin]) * uncertainty[bin];
    }
    AddProduct(far, m_path[partition], m_echo);
  }
  m_doubt = m_predicted;
  m_fft.Inverse(m_echo.data(), m_samples.data());
}

bool KalmanFilter::FarSounds() const {
  const float least = kFarRms * kFarRms * static_cast<float>(m_block);
  return Energy(&m_farSamples[m_block], m_block) >= least;
}

// Lets a block's time pass: the path may have changed. What the far end does not sound on stays as
// it is known, else the filter would forget in every pause and then never learn again.
void KalmanFilter::Age() {
  constexpr float kKept = kPersistence * kPersistence;
  // All bins alike: a path of which only some fade would wrap around.
  m_quietFor = FarSounds() ? 0 : m_quietFor + 1;
  const float keptOfPath = m_quietFor < m_partitions ? kPersistence : 1;
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    const Spectrum& far = FarSpectrum(m_offset, partition);
    Spectrum& path = m_path[partition];
    Power& uncertainty = m_uncertainty[partition];
    for (size_t bin = 0; bin < path.size(); ++bin) {
      const float kept = std::norm(far[bin]) >= kNoisePower ? kKept : 1;
      uncertainty[bin] = kept * uncertainty[bin] + (1 - kept) * std::norm(path[bin]);
      path[bin] *= keptOfPath;
    }
  }
}

// Learns from the error, which stands in m_samples after a block of zeros. Only half of what is
// transformed are samples, so powers count half.
void KalmanFilter::Adapt() {
  m_fft.Forward(m_samples.data(), m_error.data());
  for (size_t bin = 0; bin < m_error.size(); ++bin) {
    m_nearPower[bin] =
        kNearSmoothing * m_nearPower[bin] + (1 - kNearSmoothing) * std::norm(m_error[bin]);
    m_predicted[bin] = 1 / (0.5f * m_predicted[bin] + m_nearPower[bin] + kNoisePower);
  }
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    const Spectrum& far = FarSpectrum(m_offset, partition);
    Power& uncertainty = m_uncertainty[partition];
    for (size_t bin = 0; bin < far.size(); ++bin) {
      const float gain = uncertainty[bin] * m_predicted[bin];
      const std::complex<float> x = far[bin];
      const std::complex<float> e = m_error[bin];
      m_step[bin] = {gain * (x.real() * e.real() + x.imag() * e.imag()),
                     gain * (x.real() * e.imag() - x.imag() * e.real())};
      uncertainty[bin] *= std::max(0.0f, 1 - 0.5f * gain * std::norm(x));
    }
    // What would wrap around in the circular convolution is no part of the path.
    m_fft.Inverse(m_step.data(), m_samples.data());
    std::fill(m_samples.begin() + desktop::Offset(m_block), m_samples.end(), 0.0f);
    m_fft.Forward(m_samples.data(), m_step.data());
    Spectrum& path = m_path[partition];
    for (size_t bin = 0; bin < path.size(); ++bin) path[bin] += m_step[bin];
  }
}

bool KalmanFilter::Diverged(const float* near, const float* error) {
  m_nearEnergy = kEnergySmoothing * m_nearEnergy + Energy(near, m_block);
  m_outEnergy = kEnergySmoothing * m_outEnergy + Energy(error, m_block);
  // The negation is true for values that are no number as well.
  return !(m_outEnergy <= kDivergence * m_nearEnergy + static_cast<float>(m_block) * 1000);
}

void KalmanFilter::DoubtUselessPath() {
  if (!FarSounds()) return;
  if (m_outEnergy < kUsefulness * m_nearEnergy) m_wasUseful = true;
  const bool useless = m_outEnergy > m_nearEnergy;
  m_uselessFor = useless ? m_uselessFor + 1 : 0;
  if (!m_wasUseful || m_uselessFor < kUselessBlocks) return;

  m_wasUseful = false;
  for (size_t partition = 0; partition < m_partitions; ++partition) DoubtPartition(partition);
}

}  // namespace desktop
