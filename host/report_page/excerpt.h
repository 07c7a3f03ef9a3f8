#pragma once

#include <optional>
#include <span>
#include <vector>

#include "audio_measures/aligned_pair.h"
#include "report_page/sound_part.h"

namespace host {

// Where an output is listened to, and what is beside it there.

// Seconds by which an output is later than another recording of the same rate; nothing where that
// cannot be told. Of a drifting output the delay around `place`, in seconds of the output.
std::optional<double> DelayAgainst(const SoundPart& output, const SoundPart& other, double place);

// The middle of where the output differs most from the other one, once the delay and the gain are
// taken out, in seconds of the output; nothing where they are the same.
std::optional<double> LargestDifference(const SoundPart& output, const SoundPart& other,
                                        double delay);

// The middle of the loudest second, in seconds of the output.
double LoudestPlace(const SoundPart& output);

// An excerpt of a recording: which frames it is.
struct FrameRange {
  int64_t first = 0;
  size_t count = 0;
};

// `seconds` around the place, within a recording.
FrameRange RangeAround(const SoundPart& output, double place, double seconds);

// The same time in a recording against which the output is later by `delay` seconds, at its rate.
FrameRange RangeBeside(const FrameRange& range, int rate, double delay, int otherRate);

// The loudest channel of an output beside its like in another recording of the same rate.
struct ChannelPair {
  size_t output = 0;
  size_t other = 0;
};
ChannelPair ChannelsBeside(const SoundPart& output, const SoundPart& other);

}  // namespace host
