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

// A filter that leaves more than half of the near end for so many blocks has learnt a path that is
// gone, or somebody talks there. Its uncertainty does not tell: what it leaves looks like a near
// end to it, so it would stay as certain as it is. A second filter that knows nothing learns beside
// it then, for so many blocks, and takes its place where it leaves less by this factor of energy,
// told after so many blocks at the earliest. The next trial waits for as long as one takes.
constexpr float kUsefulness = 0.5f;
constexpr int kUselessBlocks = 10;
constexpr int kTrialBlocks = 50;
constexpr int kJudgedBlocks = 20;
constexpr float kBetter = 0.7f;

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
      m_known(partitions, m_fft.Bins()),
      m_trial(partitions, m_fft.Bins()),
      m_earlierPath(partitions, Spectrum(m_fft.Bins())),
      m_predicted(m_fft.Bins()),
      m_doubt(m_fft.Bins()),
      m_echo(m_fft.Bins()),
      m_error(m_fft.Bins()),
      m_step(m_fft.Bins()),
      m_samples(2 * block),
      m_earlierEcho(2 * block),
      m_near(block),
      m_echoSamples(block) {
  Restart();
}

KalmanFilter::EchoPath::EchoPath(size_t partitions, size_t bins)
    : path(partitions, Spectrum(bins)), uncertainty(partitions, Power(bins)), nearPower(bins) {}

void KalmanFilter::EchoPath::Forget(size_t partition) {
  const float first = kFirstUncertainty * std::pow(kFade, static_cast<float>(partition));
  std::fill(path[partition].begin(), path[partition].end(), 0.0f);
  std::fill(uncertainty[partition].begin(), uncertainty[partition].end(), first);
}

void KalmanFilter::EchoPath::ForgetAll() {
  for (size_t partition = 0; partition < path.size(); ++partition) Forget(partition);
}

void KalmanFilter::EchoPath::Earlier(size_t shift) {
  std::rotate(path.begin(), path.begin() + desktop::Offset(shift), path.end());
  std::rotate(uncertainty.begin(), uncertainty.begin() + desktop::Offset(shift), uncertainty.end());
  for (size_t i = path.size() - shift; i < path.size(); ++i) Forget(i);
}

void KalmanFilter::EchoPath::Later(size_t shift) {
  std::rotate(path.begin(), path.end() - desktop::Offset(shift), path.end());
  std::rotate(uncertainty.begin(), uncertainty.end() - desktop::Offset(shift), uncertainty.end());
  for (size_t i = 0; i < shift; ++i) Forget(i);
}

void KalmanFilter::Restart() {
  m_known.ForgetAll();
  m_nearEnergy = 0;
  m_outEnergy = 0;
}

void KalmanFilter::SetOffset(size_t blocks) {
  const size_t wanted = std::min(blocks, m_far.size() - m_partitions);
  // A path on trial has to prove itself anyway, and stays where it is.
  if (wanted > m_offset) {
    m_known.Earlier(std::min(wanted - m_offset, m_partitions));
  } else {
    m_known.Later(std::min(m_offset - wanted, m_partitions));
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
  std::copy(near, near + m_block, m_near.begin());
  m_quietFor = FarSounds() ? 0 : m_quietFor + 1;
  PredictEarlierEcho();
  PredictError(m_known);
  m_doubt = m_predicted;
  for (size_t i = 0; i < m_block; ++i) m_echoSamples[i] = near[i] - m_samples[m_block + i];
  const bool diverged = Diverged(near, &m_samples[m_block]);
  TakeOut(near, out, diverged);
  if (diverged) Restart();
  m_earlierPath = m_known.path;
  m_earlierOffset = m_offset;
  if (diverged) return;
  const float known = Energy(&m_samples[m_block], m_block);
  Adapt(m_known);
  Try(known);
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

// Leaves what the near end is without the echo by this path in the second half of m_samples, after
// zeros.
void KalmanFilter::PredictError(EchoPath& by) {
  Age(by);
  std::fill(m_echo.begin(), m_echo.end(), 0.0f);
  std::fill(m_predicted.begin(), m_predicted.end(), 0.0f);
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    const Spectrum& far = FarSpectrum(m_offset, partition);
    const Power& uncertainty = by.uncertainty[partition];
    for (size_t bin = 0; bin < far.size(); ++bin) {
      m_predicted[bin] += std::norm(far[bin]) * uncertainty[bin];
    }
    AddProduct(far, by.path[partition], m_echo);
  }
  m_fft.Inverse(m_echo.data(), m_samples.data());
  for (size_t i = 0; i < m_block; ++i) {
    m_samples[m_block + i] = m_near[i] - m_samples[m_block + i];
  }
  std::fill(m_samples.begin(), m_samples.begin() + desktop::Offset(m_block), 0.0f);
}

bool KalmanFilter::FarSounds() const {
  const float least = kFarRms * kFarRms * static_cast<float>(m_block);
  return Energy(&m_farSamples[m_block], m_block) >= least;
}

// Lets a block's time pass: the path may have changed. What the far end does not sound on stays as
// it is known, else the filter would forget in every pause and then never learn again.
void KalmanFilter::Age(EchoPath& aged) const {
  constexpr float kKept = kPersistence * kPersistence;
  // All bins alike: a path of which only some fade would wrap around.
  const float keptOfPath = m_quietFor < m_partitions ? kPersistence : 1;
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    const Spectrum& far = FarSpectrum(m_offset, partition);
    Spectrum& path = aged.path[partition];
    Power& uncertainty = aged.uncertainty[partition];
    for (size_t bin = 0; bin < path.size(); ++bin) {
      const float kept = std::norm(far[bin]) >= kNoisePower ? kKept : 1;
      uncertainty[bin] = kept * uncertainty[bin] + (1 - kept) * std::norm(path[bin]);
      path[bin] *= keptOfPath;
    }
  }
}

// Learns from the error, which stands in m_samples after a block of zeros. Only half of what is
// transformed are samples, so powers count half.
void KalmanFilter::Adapt(EchoPath& taught) {
  m_fft.Forward(m_samples.data(), m_error.data());
  for (size_t bin = 0; bin < m_error.size(); ++bin) {
    float& near = taught.nearPower[bin];
    near = kNearSmoothing * near + (1 - kNearSmoothing) * std::norm(m_error[bin]);
    m_predicted[bin] = 1 / (0.5f * m_predicted[bin] + near + kNoisePower);
  }
  for (size_t partition = 0; partition < m_partitions; ++partition) {
    const Spectrum& far = FarSpectrum(m_offset, partition);
    Power& uncertainty = taught.uncertainty[partition];
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
    Spectrum& path = taught.path[partition];
    for (size_t bin = 0; bin < path.size(); ++bin) path[bin] += m_step[bin];
  }
}

bool KalmanFilter::Diverged(const float* near, const float* error) {
  m_nearEnergy = kEnergySmoothing * m_nearEnergy + Energy(near, m_block);
  m_outEnergy = kEnergySmoothing * m_outEnergy + Energy(error, m_block);
  // The negation is true for values that are no number as well.
  return !(m_outEnergy <= kDivergence * m_nearEnergy + static_cast<float>(m_block) * 1000);
}

// Tries a second filter where the first has been of no use. The first left `known` of energy of
// this block.
void KalmanFilter::Try(float known) {
  if (!FarSounds()) return;
  if (!m_tries) {
    const bool useless = m_outEnergy > kUsefulness * m_nearEnergy;
    m_uselessFor = useless ? m_uselessFor + 1 : 0;
    if (m_uselessFor >= kUselessBlocks) BeginTrial();
    return;
  }

  PredictError(m_trial);
  m_trialEnergy += Energy(&m_samples[m_block], m_block);
  m_knownEnergy += known;
  Adapt(m_trial);
  ++m_trialBlocks;
  const bool better = m_trialEnergy < kBetter * m_knownEnergy;
  const bool ends = m_trialBlocks >= (better ? kJudgedBlocks : kTrialBlocks);
  if (!ends) return;
  if (better) std::swap(m_known, m_trial);
  m_tries = false;
  m_uselessFor = -kTrialBlocks;
}

void KalmanFilter::BeginTrial() {
  m_trial.ForgetAll();
  m_tries = true;
  m_trialBlocks = 0;
  m_trialEnergy = 0;
  m_knownEnergy = 0;
}

}  // namespace desktop
