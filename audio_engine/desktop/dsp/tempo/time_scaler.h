#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// Plays 16-bit audio faster or slower at the same pitch: waveform-similarity overlap-add (Verhelst
// and Roelands, "An overlap-add technique based on waveform similarity for high quality time-scale
// modification of speech", 1993) over a stream. Each segment of the output is a stretch of the
// input, faded in over 10 ms where the input resembles what would have come next in every channel;
// all channels are joined at the same places. The fade keeps the power of what it joins, from equal
// stretches to stretches that have nothing in common. At speed 1 it copies, sample by sample, with
// no delay of its own.
class TimeScaler {
 public:
  // rate: Hz, 8000 to 48000. channels: at least 1.
  TimeScaler(int rate, int channels);

  // 0.25 to 4; the segment in progress is played to its end.
  void SetSpeed(double speed);

  // Appends `frames` interleaved frames to what waits.
  void Put(const short* samples, size_t frames);

  // Plays up to `room` frames into `out` and returns how many.
  size_t Take(short* out, size_t room);

  // Frames that were put and neither played nor passed over yet.
  size_t Waiting() const { return Frames() - m_position; }

  // Forgets all samples; the speed stays.
  void Reset();

 private:
  size_t Frames() const { return m_input.size() / m_channels; }
  size_t Segment() const;
  bool Join();
  void ShapeFade(double likeness);
  void Copy(short* out, size_t frames);

  const size_t m_channels;

  // All in frames: how many fade at a join, and how far a join may lie from its target.
  const size_t m_overlap;
  const size_t m_reach;

  // How much is played before the next join is looked for. To play on fits best, so that a sound is
  // joined only where that lies beyond the reach. Below speed 1 it is as much as repeats
  // m_fewRepeated, within m_short and m_usual: soon enough that only little has to be repeated. Up
  // to 1.6 it is as much as passes over m_fewPassed, within m_usual and m_long; above, m_fast, or
  // what passes over m_mostPassed if that is less.
  const size_t m_short;
  const size_t m_usual;
  const size_t m_fast;
  const size_t m_long;
  const size_t m_fewRepeated;
  const size_t m_fewPassed;
  const size_t m_mostPassed;

  // The coarse step of the search.
  const size_t m_step;

  // The gains of the segment before and of this one, frame by frame of the fade.
  std::vector<float> m_fadeOut;
  std::vector<float> m_fadeIn;

  // Interleaved: what would come next, and where the like of it is looked for.
  std::vector<float> m_pattern;
  std::vector<float> m_field;
  std::vector<short> m_input;
  double m_speed = 1;

  // The next frame of m_input to play, and where the next segment should begin.
  size_t m_position = 0;
  double m_target = 0;

  // How many frames of this segment are still to play. Not used at speed 1.
  size_t m_left = 0;

  // The next frame of the segment before, while that fades out, and how many frames of the fade are
  // done: all of them when there is no fade.
  size_t m_fadingOut = 0;
  size_t m_faded = 0;
};

}  // namespace desktop
