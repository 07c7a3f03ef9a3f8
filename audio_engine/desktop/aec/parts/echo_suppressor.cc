#include "desktop/aec/parts/echo_suppressor.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <numeric>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr size_t kMostTaper = 112;

// How much of the power of a source stays from block to block, as it fades in a room.
constexpr float kEchoStays = 0.5f;
constexpr float kFarStays = 0.6f;

// The share of the far end's mean power that counts at every frequency, because loudspeakers
// distort.
constexpr float kFarSpread = 0.03f;

// The echo of which the filter knows nothing is softer than that which it knows, and never quite 0.
constexpr float kEchoWeight = 0.5f;
constexpr float kLeastEchoLeak = 0.002f;
constexpr float kMostEchoLeak = 1.0f;

// Devices may make some frequencies much louder than they are told to play them.
constexpr float kMostFarLeak = 1e5f;
constexpr float kFarCaution = 3.0f;

// The rates at which the leaks are learnt. In the first blocks they are as fast as they can be.
constexpr float kMeanRate = 0.03f;
constexpr float kEchoRate = 0.02f;
constexpr float kFarRate = 0.007f;
constexpr float kMostRate = 0.5f;

// What lies so little above the noise of the far end is noise, too, unless it is loud.
constexpr float kFarNoise = 16;

// A filter that takes less than this of what is heard, in dB, does not know the far end; from the
// most on it does. The rate is that at which both powers are followed.
constexpr float kLeastTakenDb = 0.5f;
constexpr float kSurelyTakenDb = 1.5f;
constexpr float kTakenRate = 0.01f;

// From the first correlation on powers may waver together for a reason, from the second they do.
constexpr float kChance = 0.2f;
constexpr float kNoChance = 0.65f;

// How much of the certainty that there is more than noise stays from block to block.
constexpr float kSoundStays = 0.95f;

// A far end softer than this teaches nothing of leaks.
constexpr float kHeardRms = 80;

// There is no near talker where the error is so much below the residual, in dB and as the mean of
// all bands, and surely one where it is so much above.
constexpr float kNoNearDb = -3;
constexpr float kSurelyNearDb = 3;
constexpr float kBandRate = 0.4f;
constexpr float kNearFade = 0.1f;

// The weight of the frame before in the decision-directed ratio.
constexpr float kMemory = 0.92f;
constexpr float kLeastGain = 0.00316f;  // -50 dB

// The amplitude of the noise that takes the place of what goes, of that which is there.
constexpr float kComfort = 0.4f;

// What is added to powers that are divided by.
constexpr float kLittle = 100.0f;

float Mean(const std::vector<float>& powers) {
  const float sum = std::accumulate(powers.begin(), powers.end(), 0.0f);
  return sum / static_cast<float>(powers.size());
}

}  // namespace

EchoSuppressor::EchoSuppressor(size_t block)
    : m_block(block),
      m_taper(std::min(block, kMostTaper)),
      m_fft(2 * block),
      m_strength({0.5f, 32.0f}),
      m_window(block + m_taper, 1.0f),
      m_farWindow(2 * block),
      m_errorPast(m_window.size()),
      m_echoPast(m_window.size()),
      m_farPast(2 * block),
      m_frame(2 * block),
      m_overlap(m_taper),
      m_error(m_fft.Bins()),
      m_echo(m_fft.Bins()),
      m_farNow(m_fft.Bins()),
      m_far(kMaxDelay + 1, Power(m_fft.Bins())),
      m_farSounds(m_fft.Bins()),
      m_errorPower(m_fft.Bins()),
      m_echoPower(m_fft.Bins()),
      m_farPower(m_fft.Bins()),
      m_doubt(m_fft.Bins()),
      m_residual(m_fft.Bins()),
      m_near(m_fft.Bins()),
      m_noise(m_fft.Bins()),
      m_farNoise(m_fft.Bins()) {
  for (size_t i = 0; i < m_taper; ++i) {
    const double part = (Real(i) + 0.5) / Real(m_taper);
    m_window[i] = static_cast<float>(std::sin(part * std::numbers::pi / 2));
    m_window[m_window.size() - 1 - i] = m_window[i];
  }
  for (size_t i = 0; i < 2 * block; ++i) {
    const double turn = std::numbers::pi * (Real(i) + 0.5) / Real(block);
    m_farWindow[i] = static_cast<float>(0.5 - 0.5 * std::cos(turn));
  }
  // As wide as an ear's, about: 150 Hz below, and a sixth of the frequency above.
  const size_t bins = m_fft.Bins();
  for (size_t begin = 0; begin < bins;) {
    const size_t width = 3 + begin / 6;
    const size_t end = begin + 2 * width < bins ? begin + width : bins;
    m_bands.push_back({begin, end, PowerLeak(kMostEchoLeak), PowerLeak(0)});
    begin = end;
  }
}

void EchoSuppressor::Transform(std::vector<float>& past, const float* samples,
                               const std::vector<float>& window, Spectrum& spectrum) {
  std::copy(past.begin() + Offset(m_block), past.end(), past.begin());
  std::copy(samples, samples + m_block, past.end() - Offset(m_block));
  std::fill(m_frame.begin(), m_frame.end(), 0.0f);
  std::transform(past.begin(), past.end(), window.begin(), m_frame.begin(), std::multiplies<>());
  m_fft.Forward(m_frame.data(), spectrum.data());
}

void EchoSuppressor::Hear(const float* far) {
  Transform(m_farPast, far, m_farWindow, m_farNow);
  m_newest = (m_newest + m_far.size() - 1) % m_far.size();
  Power& power = m_far[m_newest];
  std::transform(m_farNow.begin(), m_farNow.end(), power.begin(),
                 [](std::complex<float> bin) { return std::norm(bin); });
  m_farNoise.Follow(power);
  for (size_t i = 0; i < power.size(); ++i) {
    const float noise = std::min(kFarNoise * m_farNoise.At(i), HeardPower());
    const float above = std::max(0.0f, power[i] - noise);
    m_farSounds[i] = std::max(above / (power[i] + 1), kSoundStays * m_farSounds[i]);
    power[i] = above;
  }
}

void EchoSuppressor::Process(const float* echo, const std::vector<float>& doubt, Delay delay,
                             float* samples) {
  Transform(m_errorPast, samples, m_window, m_error);
  Transform(m_echoPast, echo, m_window, m_echo);
  MeasurePowers(doubt, delay);
  FollowLeaks();
  m_noise.Follow(m_errorPower);
  EstimateResidual();
  ApplyGains();
  Synthesise(samples);
}

void EchoSuppressor::MeasurePowers(const std::vector<float>& doubt, Delay delay) {
  for (float& power : m_farPower) power *= kFarStays;
  for (size_t at = delay.first; at <= std::min(delay.last, kMaxDelay); ++at) {
    const Power& far = m_far[(m_newest + at) % m_far.size()];
    for (size_t i = 0; i < far.size(); ++i) m_farPower[i] = std::max(m_farPower[i], far[i]);
  }
  for (size_t i = 0; i < m_error.size(); ++i) {
    m_errorPower[i] = std::norm(m_error[i]);
    const float echo = std::norm(m_echo[i]);
    m_echoPower[i] =
        std::max(echo, kEchoStays * m_echoPower[i] + (1 - kEchoStays) * kEchoWeight * echo);
    // Half of what the filter transforms are samples of the block. It may doubt for long, but not
    // what comes of a noise.
    m_doubt[i] = std::max(0.5f * m_farSounds[i] * doubt[i], kEchoStays * m_doubt[i]);
  }
}

// Returns the power by bin of a white far end that is just loud enough to teach.
float EchoSuppressor::HeardPower() const {
  const float windowEnergy = 0.375f * static_cast<float>(2 * m_block);
  return kHeardRms * kHeardRms * windowEnergy;
}

void EchoSuppressor::FollowLeaks() {
  if (Mean(m_farPower) > HeardPower()) {
    ++m_heardBlocks;
    FollowFilter();
  }
  const float first = 1 / (m_heardBlocks + 1);
  const float meanRate = std::clamp(first, kMeanRate, kMostRate);
  const float farRate = std::clamp(first, kFarRate, kMostRate);
  for (Band& band : m_bands) {
    float error = 0;
    float echo = 0;
    float far = 0;
    for (size_t i = band.begin; i < band.end; ++i) {
      error += m_errorPower[i];
      echo += m_echoPower[i];
      far += m_farPower[i];
    }
    // Much error beside little echo tells nothing of the echo.
    const float echoRate = kEchoRate * std::min(1.0f, echo / (error + 1));
    band.ofEcho.Follow(error, echo, meanRate, echoRate);
    band.ofFar.Follow(error, far, meanRate, farRate);
  }
}

void EchoSuppressor::FollowFilter() {
  float before = 0;
  float after = 0;
  for (size_t i = 0; i < m_error.size(); ++i) {
    before += std::norm(m_error[i] + m_echo[i]);
    after += m_errorPower[i];
  }
  m_before += kTakenRate * (before - m_before);
  m_after += kTakenRate * (after - m_after);
}

// Returns how surely the filter knows the far end, 0 to 1.
float EchoSuppressor::KnownShare() const {
  const float takenDb = 10 * std::log10((m_before + 1) / (m_after + 1));
  return std::clamp((takenDb - kLeastTakenDb) / (kSurelyTakenDb - kLeastTakenDb), 0.0f, 1.0f);
}

void EchoSuppressor::EstimateResidual() {
  const float everywhere = kFarSpread * Mean(m_farPower);
  const float known = KnownShare();
  float excessDb = 0;
  for (Band& band : m_bands) {
    const float echoLeak = band.ofEcho.Share(kLeastEchoLeak, kMostEchoLeak);
    const float certainty =
        std::clamp((band.ofFar.Correlation() - kChance) / (kNoChance - kChance), 0.0f, 1.0f);
    const float farLeak =
        kFarCaution * (1 - known * (1 - certainty)) * band.ofFar.Share(0, kMostFarLeak);
    float error = 0;
    float expected = 0;
    for (size_t i = band.begin; i < band.end; ++i) {
      m_residual[i] =
          std::max(echoLeak * m_echoPower[i] + m_doubt[i], farLeak * (m_farPower[i] + everywhere));
      error += m_errorPower[i];
      expected += m_residual[i] + m_noise.At(i);
    }
    band.error += kBandRate * (error - band.error);
    band.expected += kBandRate * (expected - band.expected);
    excessDb += 10 * std::log10((band.error + kLittle) / (band.expected + kLittle));
  }
  excessDb /= static_cast<float>(m_bands.size());
  const float near = std::clamp((excessDb - kNoNearDb) / (kSurelyNearDb - kNoNearDb), 0.0f, 1.0f);
  m_nearness = std::max(near, m_nearness + kNearFade * (near - m_nearness));
}

void EchoSuppressor::ApplyGains() {
  const float caution = m_strength.most * std::pow(m_strength.least / m_strength.most, m_nearness);
  float before = 0;
  float after = 0;
  for (size_t i = 0; i < m_error.size(); ++i) {
    before += std::norm(m_error[i] + m_echo[i]);
    const float residual = caution * m_residual[i] + 1e-3f;
    const float power = m_errorPower[i];
    const float now = std::max(power / residual - 1, 0.0f);
    const float ratio = kMemory * m_near[i] / residual + (1 - kMemory) * now;
    const float wiener = ratio / (1 + ratio);
    m_near[i] = wiener * wiener * power;
    const float gain = std::max(wiener, kLeastGain);
    after += gain * gain * power;
    const float noise = m_noise.At(i);
    const float fill = kComfort * std::sqrt(noise * std::max(0.0f, 1 - gain * gain));
    const auto turn = 2 * std::numbers::pi_v<float> * static_cast<float>(m_random()) /
                      static_cast<float>(std::minstd_rand::max());
    m_error[i] = gain * m_error[i] + std::polar(fill, turn);
  }
  m_hasEcho = after < 0.5f * before;
}

void EchoSuppressor::Synthesise(float* samples) {
  m_fft.Inverse(m_error.data(), m_frame.data());
  for (size_t i = 0; i < m_window.size(); ++i) m_frame[i] *= m_window[i];
  for (size_t i = 0; i < m_taper; ++i) m_frame[i] += m_overlap[i];
  std::copy_n(m_frame.begin(), m_block, samples);
  std::copy_n(m_frame.begin() + Offset(m_block), m_taper, m_overlap.begin());
}

}  // namespace desktop
