#pragma once

#include <cstddef>

namespace desktop {

// Brings speech or music to one level by a gain that moves slowly and stays where it is in pauses,
// and limits peaks without lag. The level is that of the active parts, as ITU-T P.56, "Objective
// measurement of active speech level", 1993, defines it, but as a moving mean, and the threshold
// follows the background. Samples are floats in the 16-bit range, of all channels in turn, which
// get the same gain. Allocates nothing. Belongs to one thread at a time.
class LevelControl {
 public:
  struct Settings {
    // The level that active parts are brought to, in dB of full scale, and the range of the gain.
    float targetDb = -23;
    float maxGainDb = 34;
    float minGainDb = -20;

    // No sample gets louder than this; 0 and above: no limiter but full scale.
    float ceilingDb = -1;

    // Whether the gain moves; if not, it stays at firstGainDb.
    bool adapts = true;
    float firstGainDb = 0;
  };

  // samplesPerSecond counts the samples of all channels.
  LevelControl(int samplesPerSecond, const Settings& settings);

  // Works on `count` samples in place, 10 ms or so; learns of them if asked to.
  void Process(float* samples, size_t count, bool learn);

  // The level of the active parts so far, in dB of full scale; 0 when there were none.
  float LevelDb() const { return m_activeSeconds > 0 ? m_levelDb : 0; }

 private:
  void Learn(const float* samples, size_t count);
  void FollowFloor(float now, float seconds);
  void MoveGain(float seconds);
  void Apply(float* samples, size_t count, float from, float to);

  float m_samplesPerSecond;
  Settings m_settings;

  // The levels of the background and of the active parts, and how long there has been anything,
  // and nothing since.
  float m_floorDb = -96;
  float m_soundSeconds = 0;
  float m_nothingSeconds = 0;
  float m_levelDb = 0;
  float m_activeSeconds = 0;
  bool m_active = false;

  // The gain that is wanted, and the one that was applied last, limiter included.
  float m_gainDb;
  float m_gain;
};

}  // namespace desktop
