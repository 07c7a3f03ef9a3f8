#pragma once

#include "../common/visibility.h"

// Two stateless functions that shorten or lengthen a block of 30 ms by one pitch period (or a few,
// when they are short), with an overlap-add where the signal resembles itself most. The first and
// the last samples of a block stay as they are, so that blocks join without a step.
//
// rate: Hz, 8000 to 48000. channels: 1 to 8. inSamples: of all channels together, 29 to 31 ms (a
// rest that is no whole frame is copied to the end). outSamples: in: room in `out`, out: samples
// produced. in and out must not overlap. Any thread. Returns 0, or a negative code with no samples
// produced: kSoundProcessBadFormat, kSoundProcessBadBlock, kSoundProcessNoRoom.
constexpr int kSoundProcessBadFormat = -1;
constexpr int kSoundProcessBadBlock = -2;
constexpr int kSoundProcessNoRoom = -3;

// Takes 2.4 to 9 ms out: 0.70 to 0.92 of the length. A voice below 111 Hz has no period so short:
// it loses a whole one (0.58 at 80 Hz) in some blocks and nothing in the others, which is 0.70 to
// 0.92 over a sentence. always: true shortens every other block; false leaves also a block as it is
// that is neither periodic nor silent, so that consonants stay whole.
ENGINE_API int AccelerateSoundProcess(unsigned int rate, unsigned int channels, const short* in,
                                      unsigned int inSamples, short* out, unsigned int* outSamples,
                                      bool always);

// Puts in what AccelerateSoundProcess takes out: 1.08 to 1.30 of the length.
ENGINE_API int StretchSoundProcess(unsigned int rate, unsigned int channels, const short* in,
                                   unsigned int inSamples, short* out, unsigned int* outSamples);
