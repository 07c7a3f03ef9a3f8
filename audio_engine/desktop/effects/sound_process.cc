#include "engine_api/effects/sound_process.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <numeric>
#include <span>

#include "desktop/common/counts.h"
#include "desktop/dsp/tempo/best_match.h"
#include "desktop/platform/log.h"

namespace {

constexpr unsigned kMaxChannels = 8;
constexpr size_t kMaxFrames = 1488;  // 31 ms at 48 kHz.

// From which likeness on a stretch counts as a repetition: usually, and where only a longer period
// than usual would do. Below the last of the three the longer periods are looked at.
constexpr double kPeriodic = 0.6;
constexpr double kLowVoice = 0.85;
constexpr double kHardlyAlike = 0.7;

// Waveform-similarity overlap-add within one block (Verhelst and Roelands, "An overlap-add
// technique based on waveform similarity for high quality time-scale modification of speech",
// 1993).

// Two stretches of a block that look alike: one is [first, first + overlap), the other lies `lag`
// later.
struct Repetition {
  size_t first = 0;
  size_t lag = 0;
  size_t overlap = 0;
  double likeness = -2;
};

// Returns how many frames last so many tenths of a millisecond, rounded up.
size_t Frames(unsigned rate, unsigned tenths) { return (size_t{rate} * tenths + 9999) / 10000; }

// The frames of a block, interleaved.
struct Block {
  const float* samples;
  size_t frames;
  size_t channels;

  const float* At(size_t frame) const { return samples + frame * channels; }
};

// Returns the best repetition with a lag of `lowest` to `highest` frames. It is looked for early,
// amid and late in the block.
Repetition Search(const Block& block, unsigned rate, size_t lowest, size_t highest) {
  const size_t overlap = Frames(rate, 70);
  const size_t slack = block.frames - overlap - highest;
  const size_t step = std::max(rate / 11000, 1U);
  Repetition best;
  for (const size_t first : {slack / 2, slack / 8, slack - slack / 8}) {
    const desktop::Match match =
        desktop::BestMatch(block.At(first), overlap, block.At(first + lowest), highest - lowest + 1,
                           step, block.channels);
    if (match.likeness > best.likeness) {
      best = {first, lowest + match.place, overlap, match.likeness};
    }
  }
  return best;
}

// Returns true for half the blocks of a voice, by where its pulses happen to lie in them: a choice
// that needs no memory of the block before.
bool PulsesLieEarly(const Block& block, size_t period) {
  size_t loudest = 0;
  float most = -1;
  for (size_t frame = 0; frame < block.frames; ++frame) {
    const float* samples = block.At(frame);
    const float power = std::inner_product(samples, samples + block.channels, samples, 0.0F);
    if (power > most) loudest = frame;
    most = std::max(most, power);
  }
  return loudest % period < period / 2;
}

// Returns what to take out or put in; its lag is 0 when the block is to stay as it is.
Repetition FindRepetition(const Block& block, unsigned rate, bool always) {
  const size_t shortest = Frames(rate, 24);
  const size_t longest = Frames(rate, 90) - 1;
  const Repetition best = Search(block, rate, shortest, longest);
  if (best.likeness < kHardlyAlike) {
    const Repetition low = Search(block, rate, longest + 1, Frames(rate, 125));
    if (low.likeness > kLowVoice) {
      // A whole period of every block would be more than a third of it.
      return PulsesLieEarly(block, low.lag) ? low : Repetition();
    }
  }
  return always || best.likeness >= kPeriodic ? best : Repetition();
}

// Copies the frames [0, before), fades from those at `before` to those at `after` and copies the
// rest. Returns the number of samples.
unsigned Splice(std::span<const short> in, unsigned channels, size_t before, size_t after,
                size_t overlap, short* out) {
  const short* leaving = in.data() + before * channels;
  const short* coming = in.data() + after * channels;
  short* end = std::copy(in.data(), leaving, out);
  for (size_t i = 0; i < overlap * channels; ++i) {
    const size_t frame = i / channels;
    const double phase = (desktop::Real(frame) + 0.5) / desktop::Real(overlap);
    const double share = 0.5 - 0.5 * std::cos(M_PI * phase);
    *end++ = static_cast<short>(std::lrint(leaving[i] + share * (coming[i] - leaving[i])));
  }
  end = std::copy(coming + overlap * channels, in.data() + in.size(), end);
  return static_cast<unsigned>(end - out);
}

// Returns `code`. Only the first refusal is logged, not one for each block.
int Refuse(int code, const char* why) {
  static std::atomic_flag told;
  if (!told.test_and_set()) desktop::LogRefusal("sound process: %s", why);
  return code;
}

int Process(unsigned rate, unsigned channels, const short* in, unsigned samples, short* out,
            unsigned* outSamples, bool shorter, bool always) {
  const unsigned room = *outSamples;
  *outSamples = 0;
  if (rate < 8000 || rate > 48000 || channels < 1 || channels > kMaxChannels) {
    return Refuse(kSoundProcessBadFormat, "a format that cannot be done");
  }
  const size_t frames = samples / channels;
  if (in == nullptr || out == nullptr || frames < Frames(rate, 290) || frames > Frames(rate, 310) ||
      frames > kMaxFrames) {
    return Refuse(kSoundProcessBadBlock, "a block that does not last 30 ms");
  }
  std::array<float, kMaxFrames * kMaxChannels> floats;
  std::copy_n(in, frames * channels, floats.begin());
  const Repetition found = FindRepetition({floats.data(), frames, channels}, rate, always);
  const size_t lag = found.lag * channels;
  if ((shorter ? samples - lag : samples + lag) > room) {
    return Refuse(kSoundProcessNoRoom, "too little room for the block");
  }
  const size_t later = found.first + found.lag;
  *outSamples = Splice({in, samples}, channels, shorter ? found.first : later,
                       shorter ? later : found.first, found.overlap, out);
  return 0;
}

}  // namespace

int AccelerateSoundProcess(unsigned int rate, unsigned int channels, const short* in,
                           unsigned int inSamples, short* out, unsigned int* outSamples,
                           bool always) {
  return Process(rate, channels, in, inSamples, out, outSamples, true, always);
}

int StretchSoundProcess(unsigned int rate, unsigned int channels, const short* in,
                        unsigned int inSamples, short* out, unsigned int* outSamples) {
  return Process(rate, channels, in, inSamples, out, outSamples, false, true);
}
