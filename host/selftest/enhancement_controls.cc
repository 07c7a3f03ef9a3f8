#include <cmath>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 320;      // 20 ms
constexpr size_t kBlocks = 50;      // Of speech, and of the silence after it.
constexpr size_t kRounds = 4;       // Of both.
constexpr size_t kHangover = 10;    // Blocks after speech that are no pause,
constexpr size_t kBeforeOnset = 3;  // and before it.
constexpr double kSpeech = 0.1;     // RMS
constexpr double kNoise = 0.01;     // RMS
constexpr double kSpeechGain = 0.8;
constexpr double kEdge = 0.5;    // Gain of the noise in the first and last block of a pause,
constexpr double kWithin = 0.1;  // and between them.

// A block of white noise of this RMS; of `beside` nothing is in it.
Samples Block(double rms, std::span<const float> beside, uint64_t seed) {
  Samples block(kBlock);
  if (Energy(beside) > 0) {
    block = NoiseBelow(beside, 0, kBlock, seed);
  } else {
    block = WhiteNoise(kBlock, 1, seed);
  }
  return Scaled(block, rms * std::sqrt(kBlock / Energy(block)));
}

// The gain of the noise in a block of a round.
double NoiseGain(size_t block) {
  const size_t first = kBlocks + kHangover;
  const size_t last = 2 * kBlocks - kBeforeOnset - 1;
  if (block < kBlocks) return kWithin;
  if (block < first || block > last) return 1;
  return block == first || block == last ? kEdge : kWithin;
}

Scene Suppressed(bool withReference) {
  Samples speech;
  Samples input;
  Samples output;
  for (size_t i = 0; i < kRounds * 2 * kBlocks; ++i) {
    const size_t block = i % (2 * kBlocks);
    const Samples said = block < kBlocks ? Block(kSpeech, {}, 61 + i) : Samples(kBlock);
    const Samples noise = Block(kNoise, said, 6100 + i);
    Append(speech, said);
    Append(input, Sum(said, noise));
    Append(output, Sum(Scaled(said, kSpeechGain), Scaled(noise, NoiseGain(block))));
  }
  Scene scene = {.output = {kRate, {output}}, .input = {kRate, {input}}};
  if (withReference) scene.reference = {kRate, {speech}};
  return scene;
}

// Energy of the noise in the output over that in the input. The last pause has no onset after it,
// so that three more blocks, at their full level, are in it.
double LeftOver() {
  double energy = kBeforeOnset;
  double blocks = kBeforeOnset;
  for (size_t i = kBlocks + kHangover; i + kBeforeOnset < 2 * kBlocks; ++i) {
    energy += static_cast<double>(kRounds) * NoiseGain(i) * NoiseGain(i);
    blocks += static_cast<double>(kRounds);
  }
  return energy / blocks;
}

double Decibels(double power) { return 10 * std::log10(power); }

Control WithReference() {
  const double before = kSpeech * kSpeech / (kNoise * kNoise);
  const double after = kSpeechGain * kSpeechGain * kSpeech * kSpeech;
  const double active = after + kWithin * kWithin * kNoise * kNoise;
  const double pause = LeftOver() * kNoise * kNoise;
  return {"speech at gain 0.8, noise softer by a known gain in each block",
          "Speech and noise are orthogonal and of known energy in each 20 ms. A pause begins 0.2 s "
          "after speech and ends 60 ms before it; the noise is whole outside, half as large in its "
          "first and last block and a tenth between: the mean of that is the reduction. Speech has "
          "its gain. The SNR is that of active blocks less pauses to pauses.",
          [] { return Suppressed(true); },
          {{"noise_reduction", -Decibels(LeftOver()), 0.01},
           {"speech_retained", 2 * Decibels(kSpeechGain), 0.01},
           {"delta_snr", Decibels((active - pause) / pause) - Decibels(before), 0.02}}};
}

Control WithoutReference() {
  const double speech = kSpeech * kSpeech;
  const double noise = kNoise * kNoise;
  return {"the same, the clean speech not known",
          "Speech stands 20 dB above the noise and so is found in the input. What is retained is "
          "taken along the input, noise and all.",
          [] { return Suppressed(false); },
          {{"noise_reduction", -Decibels(LeftOver()), 0.01},
           {"speech_retained",
            2 * Decibels((kSpeechGain * speech + kWithin * noise) / (speech + noise)), 0.01},
           {"delta_snr", 0, 0, "no reference"}}};
}

// The least that is defined: 0.4 s of speech, then silence, with noise a tenth as large throughout.
Control Shortest() {
  const double speech = kSpeech * kSpeech;
  const double noise = kNoise * kNoise;
  const double after = kSpeechGain * kSpeechGain * speech / (kWithin * kWithin * noise);
  return {
      "1 s of speech at gain 0.8, its noise at gain 0.1",
      "From 0.2 s after the speech on it pauses. The gain of the noise is the reduction, that "
      "of the speech is retained, and the SNR rises by both; a gain that does not change "
      "leaves the kurtosis.",
      [] {
        Scene scene = {.output = {kRate, {{}}}, .reference = {kRate, {{}}}, .input = {kRate, {{}}}};
        for (size_t i = 0; i < kBlocks; ++i) {
          const Samples said = i < 20 ? Block(kSpeech, {}, 65 + i) : Samples(kBlock);
          const Samples beside = Block(kNoise, said, 6500 + i);
          Append(scene.reference.channels[0], said);
          Append(scene.input.channels[0], Sum(said, beside));
          Append(scene.output.channels[0], Sum(Scaled(said, kSpeechGain), Scaled(beside, kWithin)));
        }
        return scene;
      },
      {{"noise_reduction", -2 * Decibels(kWithin), 0.01},
       {"speech_retained", 2 * Decibels(kSpeechGain), 0.01},
       {"delta_snr", Decibels(after) - Decibels(speech / noise), 0.02},
       {"musical", 0, 1e-3}}};
}

// A pause of 4 s of noise, then the same 4 s again, which the output has at this gain.
Control Flickering(double gain) {
  const double fourth = std::pow(gain, 4);
  const double ratio = 2 * (1 + fourth * fourth) / ((1 + fourth) * (1 + fourth));
  return {
      "noise whose second half is at gain " + std::to_string(gain),
      "Both halves are of the same samples. Powers scale with the square of the gain g, so that "
      "the kurtosis E[p^4] / E[p^2]^2 grows by 2 (1 + g^8) / (1 + g^4)^2; a few blocks in some "
      "hundred lie across the border.",
      [gain] {
        const Samples half = WhiteNoise(Frames(kRate, 4.096), 0.05, 71);
        Samples input = half;
        Append(input, half);
        Samples output = half;
        Append(output, Scaled(half, gain));
        return Scene{.output = {kRate, {output}}, .input = {kRate, {input}}};
      },
      {{"musical", std::log(ratio), 0.02}}};
}

Control Coloured() {
  return {"noise through a filter that halves its upper bands",
          "Each bin is divided by its mean, so that a filter does not change the kurtosis, but for "
          "what its two taps bring in from beside the window.",
          [] {
            const Samples noise = WhiteNoise(Frames(kRate, 4), 0.05, 72);
            Samples output = noise;
            for (size_t i = 1; i < noise.size(); ++i) output[i] += 0.5F * noise[i - 1];
            return Scene{.output = {kRate, {output}}, .input = {kRate, {noise}}};
          },
          {{"musical", 0, 0.02}}};
}

}  // namespace

std::vector<Control> EnhancementControls() {
  return {WithReference(), WithoutReference(), Shortest(), Flickering(0.1),
          Flickering(0.7), Flickering(1),      Coloured()};
}

}  // namespace host
