#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

Control Longer(size_t input, size_t output) {
  return {"an output of " + std::to_string(output) + " samples from " + std::to_string(input),
          "The ratio of both.",
          [=] {
            return Scene{.output = {16000, {Waveform(output, 0.1F)}},
                         .input = {16000, {Waveform(input, 0.1F)}}};
          },
          {{"length_factor", static_cast<double>(output) / static_cast<double>(input), 1e-9}}};
}

Control LongerThanNothing() {
  return {"an output from an input of no samples",
          "No length has a ratio to 0.",
          [] {
            return Scene{.output = {16000, {Waveform(100, 0.1F)}}, .input = {16000, {Waveform()}}};
          },
          {{.measure = "length_factor", .reason = audio_measures::kNoSamples}}};
}

// A voice: harmonics that fall with their number.
Waveform Voice(int rate, double seconds, double hz) {
  Waveform samples(Frames(rate, seconds));
  for (int k = 1; k <= 5; ++k) samples = Sum(samples, Sine(rate, seconds, k * hz, 0.3 / k, k));
  return samples;
}

Control Higher(double hz, double cents, int rate) {
  return {"a voice of " + std::to_string(hz) + " Hz, " + std::to_string(cents) +
              " cents higher, at " + std::to_string(rate) + " Hz",
          "1200 log2 of the ratio of the frequencies that it was made of; the period between "
          "samples by a parabola is known to 2 cents.",
          [=] {
            return Scene{.output = {rate, {Voice(rate, 0.5, hz * std::exp2(cents / 1200))}},
                         .reference = {rate, {Voice(rate, 0.5, hz)}}};
          },
          {{"pitch_cents", cents, 2}}};
}

Control OtherTimbre() {
  return {"a sine and a tone with as much of its octave",
          "Both repeat themselves after one period of 220 Hz, the second nearly after half of it: "
          "0 cents.",
          [] {
            const Waveform sine = Sine(16000, 0.5, 220, 0.3);
            return Scene{.output = {16000, {Sum(sine, Sine(16000, 0.5, 440, 0.3))}},
                         .reference = {16000, {sine}}};
          },
          {{"pitch_cents", 0, 2}}};
}

constexpr int kVoiceRate = 16000;

// Stretches of voice and of noise, one after the other: hz 0 is noise.
struct Stretch {
  double seconds;
  double hz;
  double gain = 1;
};

Waveform Stretches(const std::vector<Stretch>& stretches) {
  Waveform samples;
  for (const Stretch& each : stretches) {
    const Waveform part = each.hz > 0 ? Voice(kVoiceRate, each.seconds, each.hz)
                                      : WhiteNoise(Frames(kVoiceRate, each.seconds), 0.2, 61);
    Append(samples, Scaled(part, each.gain));
  }
  return samples;
}

Control Spoken(const std::string& name, const std::string& theory,
               const std::vector<Stretch>& reference, const std::vector<Stretch>& output,
               double cents) {
  return {name,
          theory,
          [=] {
            return Scene{.output = {kVoiceRate, {Stretches(output)}},
                         .reference = {kVoiceRate, {Stretches(reference)}}};
          },
          {{"pitch_cents", cents, 2}}};
}

std::vector<Control> SpokenInStretches() {
  const double fifth = 220 * std::exp2(700.0 / 1200);
  const std::string median = "The median is that of the longer stretch of those that count: ";
  return {
      Spoken("two pitches that last other times in an output of twice the length",
             "Each block stands beside that at the same part of the length, so that 100 Hz meet "
             "100 Hz a fifth higher, and 300 Hz meet 300 Hz, which last less than half the time.",
             {{0.35, 100}, {0.25, 300}}, {{0.7, 100 * std::exp2(700.0 / 1200)}, {0.5, 300}}, 700),
      Spoken("noise and two pitches in an output of twice the length",
             "Each block stands beside that at the same part of the length, which is as high; at "
             "the same time most are a twelfth lower, or noise.",
             {{0.1, 0}, {0.2, 100}, {0.3, 300}}, {{0.2, 0}, {0.4, 100}, {0.6, 300}}, 0),
      Spoken("a voice a fifth higher, then noise in the output", median + "noise has no pitch.",
             {{1.2, 220}}, {{0.4, fifth}, {0.8, 0}}, 700),
      Spoken("a voice a fifth higher, then noise in the reference", median + "noise has no pitch.",
             {{0.4, 220}, {0.8, 0}}, {{0.4, fifth}, {0.8, fifth / 2}}, 700),
      Spoken("a voice a fifth higher, then noise in both", median + "noise has no pitch.",
             {{0.4, 220}, {0.8, 0}}, {{0.4, fifth}, {0.8, 0}}, 700),
      Spoken("a voice a fifth higher, then one as high and 32 dB softer",
             median + "what is more than 30 dB softer than the loudest block does not count.",
             {{0.4, 220}, {0.8, 220, 0.025}}, {{0.4, fifth}, {0.8, 220, 0.025}}, 700),
      Spoken("a voice as high, then one a fifth higher and 28 dB softer",
             median + "what is less than 30 dB softer than the loudest block counts.",
             {{0.4, 220}, {0.8, 220, 0.04}}, {{0.4, 220}, {0.8, fifth, 0.04}}, 700),
      Spoken("a voice a semitone higher, 60 dB softer than another",
             "How soft all of a signal is makes no difference.", {{0.5, 220, 0.001}},
             {{0.5, 220 * std::exp2(1.0 / 12), 0.001}}, 100)};
}

Control BesideZero() {
  return {"a voice 300 cents higher, both beside a constant",
          "What is constant is the same one period later.",
          [] {
            Waveform reference = Voice(kVoiceRate, 0.5, 150);
            Waveform output = Voice(kVoiceRate, 0.5, 150 * std::exp2(0.25));
            for (Waveform* const each : {&reference, &output}) {
              for (float& sample : *each) sample += 0.4F;
            }
            return Scene{.output = {kVoiceRate, {output}}, .reference = {kVoiceRate, {reference}}};
          },
          {{"pitch_cents", 300, 2}}};
}

// A copy, voiced in so many blocks from the first one on.
Control ShortVoice(size_t blocks) {
  Expected expected = {.measure = "pitch_cents", .value = 0, .tolerance = 1e-6};
  if (blocks < 10) expected.reason = "too little that has a pitch";
  return {"a voice of 200 Hz in " + std::to_string(blocks) + " blocks, then silence",
          "A block of 25 ms is voiced where both it and what is a period of 5 ms later are in the "
          "voice; they start every 10 ms, and the voice ends 0.6 ms after the last of them. It "
          "takes ten.",
          [blocks] {
            Waveform samples =
                Voice(kVoiceRate, 0.03 + 0.01 * static_cast<double>(blocks - 1), 200);
            Append(samples, Voice(kVoiceRate, 0.0006, 200));
            samples.resize(kVoiceRate);
            return Scene{.output = {kVoiceRate, {samples}}, .reference = {kVoiceRate, {samples}}};
          },
          {expected}};
}

// A copy, voiced in so many blocks and then noise.
Control VoiceBeforeNoise(size_t blocks) {
  Control control = ShortVoice(blocks);
  control.name = "a voice of 200 Hz in " + std::to_string(blocks) + " blocks, then noise";
  control.theory =
      "A block of 25 ms is voiced where both it and what is a period of 5 ms later are in the "
      "voice; the noise in any other makes up more than the threshold of a tenth. It takes ten.";
  control.make = [blocks] {
    Waveform samples = Voice(kVoiceRate, 0.0306 + 0.01 * static_cast<double>(blocks - 1), 200);
    Append(samples, WhiteNoise(kVoiceRate / 2, 0.25, 63));
    return Scene{.output = {kVoiceRate, {samples}}, .reference = {kVoiceRate, {samples}}};
  };
  return control;
}

Control WholePeriods() {
  return {"a voice of 400 Hz beside a sine of 200 Hz, both of whole samples",
          "Periods of 80 and of 40 samples, at which the difference is 0 and the same to either "
          "side: nothing is to be found between the samples.",
          [] {
            return Scene{.output = {kVoiceRate, {Voice(kVoiceRate, 0.5, 400)}},
                         .reference = {kVoiceRate, {Sine(kVoiceRate, 0.5, 200, 0.3, 0.7)}}};
          },
          {{"pitch_cents", 1200, 0.05}}};
}

Control InNoise() {
  return {"a voice with a period of 79.6 samples in noise, beside one of 80",
          "Noise of a twentieth of the power adds the same to the difference at every lag, which "
          "leaves the parabola where it was; over 95 blocks its chance is 0.5 cents.",
          [] {
            const Waveform voice = Voice(kVoiceRate, 1, kVoiceRate / 79.6);
            const double power = Energy(voice) / static_cast<double>(voice.size());
            const Waveform noise = WhiteNoise(voice.size(), std::sqrt(power / 19), 64);
            return Scene{.output = {kVoiceRate, {Sum(voice, noise)}},
                         .reference = {kVoiceRate, {Voice(kVoiceRate, 1, 200)}}};
          },
          {{"pitch_cents", 1200 * std::log2(80 / 79.6), 2}}};
}

// A copy of a voice in noise that makes up this share of its power.
Control NoisyVoice(double share, bool voiced) {
  Expected expected = {.measure = "pitch_cents", .value = 0, .tolerance = 1e-6};
  if (!voiced) expected.reason = "too little that has a pitch";
  return {
      "a voice in noise of " + std::to_string(share) + " of the power",
      "The difference from one period later is twice the power of the noise, its mean over all "
      "lags twice that of both: their ratio is the share, to a fifth of it for 400 samples, and "
      "the threshold 0.1.",
      [share] {
        const Waveform voice = Voice(kVoiceRate, 1, 200);
        const double power = Energy(voice) / static_cast<double>(voice.size());
        const Waveform noise = WhiteNoise(voice.size(), std::sqrt(power * share / (1 - share)), 62);
        const Waveform samples = Sum(voice, noise);
        return Scene{.output = {kVoiceRate, {samples}}, .reference = {kVoiceRate, {samples}}};
      },
      {expected}};
}

Control SilentReference() {
  return {"a voice against silence",
          "Silence has no pitch.",
          [] {
            return Scene{.output = {kVoiceRate, {Voice(kVoiceRate, 0.5, 200)}},
                         .reference = {kVoiceRate, {Waveform(8000)}}};
          },
          {{.measure = "pitch_cents", .reason = audio_measures::kSilence}}};
}

Control Clicking(double bpm, int rate) {
  return {"clicks at " + std::to_string(bpm) + " BPM and " + std::to_string(rate) + " Hz",
          "A click of 5 ms each 60 / BPM s; known over eight beats to a fraction of 10 ms: 0.3 %.",
          [=] {
            Waveform samples(Frames(rate, 12));
            Random random(51);
            for (double t = 0.1; t < 11.9; t += 60 / bpm) {
              for (size_t i = 0; i < Frames(rate, 0.005); ++i) {
                samples[Frames(rate, t) + i] = static_cast<float>(0.3 * random.Normal());
              }
            }
            return Scene{.output = {rate, {samples}}};
          },
          {{"tempo", bpm, bpm * 0.003}}};
}

}  // namespace

std::vector<Control> TimeControls() {
  std::vector<Control> controls = {OtherTimbre(),
                                   Longer(16000, 16000),
                                   Longer(16000, 24000),
                                   Longer(12345, 4321),
                                   Longer(1, 2),
                                   Longer(2, 1),
                                   LongerThanNothing(),
                                   Higher(220, 0, 16000),
                                   Higher(220, 700, 16000),
                                   Higher(440, -1200, 48000),
                                   Higher(110.7, 33, 16000),
                                   Higher(130, 100, 8000),
                                   Clicking(120, 16000),
                                   Clicking(93, 16000),
                                   Clicking(150.5, 44100)};
  for (Control& each : SpokenInStretches()) controls.push_back(std::move(each));
  for (const auto& [share, voiced] : {std::pair{0.07, true}, {0.15, false}}) {
    controls.push_back(NoisyVoice(share, voiced));
  }
  controls.push_back(ShortVoice(10));
  controls.push_back(ShortVoice(9));
  controls.push_back(VoiceBeforeNoise(10));
  controls.push_back(VoiceBeforeNoise(9));
  controls.push_back(WholePeriods());
  controls.push_back(InNoise());
  controls.push_back(BesideZero());
  controls.push_back(SilentReference());
  controls.push_back(Higher(120, -1200, 16000));
  controls.push_back(Higher(490, 1200, 48000));
  return controls;
}

}  // namespace host
