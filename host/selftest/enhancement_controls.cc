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
Waveform Block(double rms, std::span<const float> beside, uint64_t seed) {
  Waveform block(kBlock);
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
  Waveform speech;
  Waveform input;
  Waveform output;
  for (size_t i = 0; i < kRounds * 2 * kBlocks; ++i) {
    const size_t block = i % (2 * kBlocks);
    const Waveform said = block < kBlocks ? Block(kSpeech, {}, 61 + i) : Waveform(kBlock);
    const Waveform noise = Block(kNoise, said, 6100 + i);
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

// The same scene, with samples of silence before a signal, or without its first ones.
void Delay(Waveform& samples, int later) {
  if (later < 0) samples.erase(samples.begin(), samples.begin() - later);
  if (later > 0) samples.insert(samples.begin(), static_cast<size_t>(later), 0.0F);
}

Control Moved(int output, int reference) {
  Control control = WithReference();
  control.name += ", output " + std::to_string(output) + " and reference " +
                  std::to_string(reference) + " samples later";
  control.theory += " All of it is the same at any delay; a first block of speech may be lost.";
  control.make = [=] {
    Scene scene = Suppressed(true);
    Delay(scene.output.channels[0], output);
    Delay(scene.reference.channels[0], reference);
    return scene;
  };
  return control;
}

// Half a second of speech, and nothing of the noise left.
Control Gated() {
  return {"speech without any of its noise",
          "What is nothing counts as 120 dB below the other; there is no kurtosis of it.",
          [] {
            Scene scene = Suppressed(true);
            scene.output = scene.reference;
            return scene;
          },
          {{"noise_reduction", 120, 1e-6},
           {"delta_snr", 120 - 20, 0.02},
           {.measure = "musical", .reason = audio_measures::kSilence}}};
}

Control WordAtStart() {
  return {"one loud block at the start of a noise",
          "It and the 0.2 s after it, which the output leaves as they are, are no pause.",
          [] {
            Waveform input;
            Waveform output;
            for (size_t i = 0; i < 100; ++i) {
              const Waveform block = Block(kNoise * (i == 0 ? 10 : 1), {}, 7100 + i);
              Append(input, block);
              Append(output, Scaled(block, i <= kHangover ? 1 : kWithin));
            }
            return Scene{.output = {kRate, {output}}, .input = {kRate, {input}}};
          },
          {{"noise_reduction", -2 * Decibels(kWithin), 0.01}}};
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

// 1 s, the least that is defined, of which so many blocks are speech; noise a tenth as large in
// all.
Control Shortest(size_t speechBlocks, std::vector<Expected> expected) {
  return {
      "1 s with " + std::to_string(speechBlocks) +
          " blocks of speech at gain 0.8, its noise at gain 0.1",
      "From ten blocks after the speech on it pauses. The gain of the noise is the reduction, "
      "that of the speech is retained, and the SNR rises by both; a gain that does not change "
      "leaves the kurtosis. Ten blocks of 20 ms are the least of either, and 16 windows of "
      "512 samples, one every 256, for the kurtosis: 14 blocks.",
      [speechBlocks] {
        Scene scene = {.output = {kRate, {{}}}, .reference = {kRate, {{}}}, .input = {kRate, {{}}}};
        for (size_t i = 0; i < kBlocks; ++i) {
          const Waveform said = i < speechBlocks ? Block(kSpeech, {}, 65 + i) : Waveform(kBlock);
          const Waveform beside = Block(kNoise, said, 6500 + i);
          Append(scene.reference.channels[0], said);
          Append(scene.input.channels[0], Sum(said, beside));
          Append(scene.output.channels[0], Sum(Scaled(said, kSpeechGain), Scaled(beside, kWithin)));
        }
        return scene;
      },
      std::move(expected)};
}

std::vector<Control> ShortestOfAll() {
  const std::string pause = "too little pause";
  const std::string speech = "too little speech";
  const double reduction = -2 * Decibels(kWithin);
  const double retained = 2 * Decibels(kSpeechGain);
  return {Shortest(9, {{"noise_reduction", reduction, 0.01},
                       {.measure = "speech_retained", .reason = speech},
                       {.measure = "delta_snr", .reason = speech}}),
          Shortest(
              10, {{"speech_retained", retained, 0.01}, {"delta_snr", reduction + retained, 0.02}}),
          Shortest(26, {{"musical", 0, 1e-3}}),
          Shortest(27, {{.measure = "musical", .reason = pause}}),
          Shortest(30, {{"noise_reduction", reduction, 0.01},
                        {"delta_snr", reduction + retained, 0.02}}),
          Shortest(31, {{"speech_retained", retained, 0.01},
                        {.measure = "noise_reduction", .reason = pause},
                        {.measure = "delta_snr", .reason = pause}})};
}

// Noise with one block that is so many dB louder, which the output leaves as it is.
Control LouderBlock(double louder, bool pause) {
  const double power = std::pow(10, louder / 10);
  const double left = kWithin * kWithin;
  const double mean = pause ? (99 * left + power) / (99 + power) : left;
  return {"a block of noise " + std::to_string(louder) + " dB louder than the others",
          "From 6 dB above the noise floor on it is speech, and neither it nor what is around it "
          "is a pause; below, it is one of 100 blocks of noise, the one that is not reduced.",
          [power] {
            Waveform input;
            Waveform output;
            for (size_t i = 0; i < 100; ++i) {
              const double rms = kNoise * (i == 50 ? std::sqrt(power) : 1);
              const Waveform block = Block(rms, {}, 6700 + i);
              Append(input, block);
              Append(output, Scaled(block, i == 50 ? 1 : kWithin));
            }
            return Scene{.output = {kRate, {output}}, .input = {kRate, {input}}};
          },
          {{"noise_reduction", -Decibels(mean), 0.01}}};
}

// The clean speech is noise of this level.
Control SoftReference(double level, const std::string& reason) {
  return {"speech of " + std::to_string(level) + " dBFS",
          "A reference below -60 dBFS is the noise of a line. That of 2 s is active but for the "
          "first 20 to 30 ms, which lifts its level by 0.1 dB.",
          [level] {
            Waveform samples;
            for (size_t i = 0; i < 100; ++i) {
              Append(samples, Block(std::pow(10, level / 20), {}, 6900 + i));
            }
            const ControlSound sound = {kRate, {samples}};
            return Scene{.output = sound, .reference = sound, .input = sound};
          },
          {{"speech_retained", 0, 1e-3, reason}}};
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
        const Waveform half = WhiteNoise(Frames(kRate, 4.096), 0.05, 71);
        Waveform input = half;
        Append(input, half);
        Waveform output = half;
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
            const Waveform noise = WhiteNoise(Frames(kRate, 4), 0.05, 72);
            Waveform output = noise;
            for (size_t i = 1; i < noise.size(); ++i) output[i] += 0.5F * noise[i - 1];
            return Scene{.output = {kRate, {output}}, .input = {kRate, {noise}}};
          },
          {{"musical", 0, 0.02}}};
}

}  // namespace

std::vector<Control> EnhancementControls() {
  std::vector<Control> controls = {WithReference(),
                                   Moved(37, 0),
                                   Moved(-320, 0),
                                   Moved(0, -320),
                                   Moved(40, 320),
                                   Gated(),
                                   WordAtStart(),
                                   WithoutReference(),
                                   Flickering(0.1),
                                   Flickering(0.7),
                                   Flickering(1),
                                   Coloured(),
                                   LouderBlock(5.95, true),
                                   LouderBlock(6.05, false),
                                   SoftReference(-59.9, ""),
                                   SoftReference(-60.3, "nothing as loud as speech")};
  for (Control& each : ShortestOfAll()) controls.push_back(std::move(each));
  return controls;
}

}  // namespace host
