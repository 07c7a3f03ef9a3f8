#include "audio_measures/phase_fit.h"

#include <algorithm>
#include <cmath>

#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

namespace {

constexpr double kMaxWeight = 1000;  // Bins that agree to 30 dB count no more for agreeing better.

double Angle(size_t bin) { return 2 * M_PI * static_cast<double>(bin) / PhaseFit::kBlock; }

// As many as overlap by half or a little more.
size_t Blocks(size_t samples) {
  return samples < PhaseFit::kBlock ? 0 : (samples - 1) / (PhaseFit::kBlock / 2);
}

// They are evenly spread from the first sample to the last one.
std::span<const float> Block(std::span<const float> samples, size_t block) {
  const size_t hops = std::max<size_t>(Blocks(samples.size()) - 1, 1);
  return samples.subspan(block * (samples.size() - PhaseFit::kBlock) / hops, PhaseFit::kBlock);
}

// Turns one bin after the other, from the first one on, back by how much later the signal is: each
// by the turn of the one before and a little more.
class Turn {
 public:
  explicit Turn(double later) : m_step(std::polar(1.0, Angle(1) * later)), m_turn(m_step) {}

  std::complex<double> Next(const std::complex<double>& bin) {
    const std::complex<double> turned = Product(bin, m_turn);
    m_turn = Product(m_turn, m_step);
    return turned;
  }

 private:
  // Without the look for infinities that the product of std::complex takes.
  static std::complex<double> Product(const std::complex<double>& a,
                                      const std::complex<double>& b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
  }

  std::complex<double> m_step;
  std::complex<double> m_turn;
};

}  // namespace

PhaseFit::PhaseFit()
    : m_fft(kBlock),
      m_window(Hann(kBlock)),
      m_block(kBlock),
      m_reference(m_fft.Bins()),
      m_signal(m_fft.Bins()),
      m_cross(m_fft.Bins()),
      m_referencePower(m_fft.Bins()),
      m_signalPower(m_fft.Bins()) {}

void PhaseFit::Transform(std::span<const float> block, std::span<std::complex<float>> bins) {
  for (size_t i = 0; i < kBlock; ++i) m_block[i] = block[i] * m_window[i];
  m_fft.Forward(m_block, bins);
}

void PhaseFit::Add(std::span<const float> reference, std::span<const float> signal) {
  for (size_t block = 0; block < Blocks(reference.size()); ++block) {
    Transform(Block(reference, block), m_reference);
    AddBlock(m_reference, Block(signal, block));
  }
}

PhaseFit::Spectra PhaseFit::SpectraOf(std::span<const float> reference) {
  Spectra spectra;
  for (size_t block = 0; block < Blocks(reference.size()); ++block) {
    Transform(Block(reference, block), m_reference);
    spectra.insert(spectra.end(), m_reference.begin(), m_reference.end());
  }
  return spectra;
}

void PhaseFit::Add(const Spectra& reference, std::span<const float> signal) {
  const size_t bins = m_fft.Bins();
  for (size_t block = 0; block < reference.size() / bins; ++block) {
    AddBlock(std::span(reference).subspan(block * bins, bins), Block(signal, block));
  }
}

void PhaseFit::AddBlock(std::span<const std::complex<float>> reference,
                        std::span<const float> signal) {
  Transform(signal, m_signal);
  for (size_t i = 1; i + 1 < m_cross.size(); ++i) {
    const std::complex<double> a(reference[i]);
    const std::complex<double> b(m_signal[i]);
    m_cross[i] += CrossBin(a, b);
    m_referencePower[i] += std::norm(a);
    m_signalPower[i] += std::norm(b);
  }
}

// How much later the signal is than `later`, by the bins up to `band` of half the rate.
double PhaseFit::Slope(double later, int polarity, double band) const {
  const auto last = static_cast<size_t>(band * static_cast<double>(m_cross.size() - 1));
  double product = 0;
  double squares = 0;
  Turn turn(later);
  for (size_t i = 1; i < last; ++i) {
    const std::complex<double> turned = turn.Next(m_cross[i]);
    const double both = m_referencePower[i] * m_signalPower[i];
    if (!(both > 0)) continue;
    const double coherence = std::min(1.0, std::norm(m_cross[i]) / both);
    const double weight = coherence / std::max(1 - coherence, 1 / kMaxWeight);
    product -= weight * Angle(i) * std::arg(turned * static_cast<double>(polarity));
    squares += weight * Angle(i) * Angle(i);
  }
  return squares > 0 ? product / squares : 0;
}

// How far from `later` the correlation is highest, by a step of Newton's.
double PhaseFit::StepToMostAlike(double later, int polarity) const {
  double slope = 0;
  double curvature = 0;
  Turn turn(later);
  for (size_t i = 1; i + 1 < m_cross.size(); ++i) {
    const std::complex<double> turned = turn.Next(m_cross[i]);
    slope -= polarity * Angle(i) * turned.imag();
    curvature += polarity * Angle(i) * Angle(i) * turned.real();
  }
  return curvature > 0 ? std::clamp(slope / curvature, -0.5, 0.5) : 0;
}

int PhaseFit::Polarity() const {
  double common = 0;
  for (const auto& bin : m_cross) common += bin.real();
  return common < 0 ? -1 : 1;
}

std::optional<PhaseFit::Fit> PhaseFit::Find(int polarity) const {
  double reference = 0;
  double signal = 0;
  for (size_t i = 0; i < m_cross.size(); ++i) {
    reference += m_referencePower[i];
    signal += m_signalPower[i];
  }
  if (!(reference > 0) || !(signal > 0)) return std::nullopt;

  // From the low bins up, so that no phase is more than half a turn away when its turn comes.
  Fit fit;
  for (const double band : {0.125, 0.25, 0.5, 1.0, 1.0, 1.0}) {
    fit.later += Slope(fit.later, polarity, band);
  }
  for (int i = 0; i < 4; ++i) fit.later += StepToMostAlike(fit.later, polarity);
  // Nothing is added to the first bin and the last one.
  double common = 0;
  Turn turn(fit.later);
  for (size_t i = 1; i + 1 < m_cross.size(); ++i) common += turn.Next(m_cross[i]).real();
  fit.gain = common / reference;
  fit.correlation = common / std::sqrt(reference * signal);
  return fit;
}

}  // namespace audio_measures
