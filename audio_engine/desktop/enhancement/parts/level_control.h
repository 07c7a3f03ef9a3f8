#pragma once

namespace desktop {

// Brings speech or music to one level by a gain that moves slowly and stays where it is in pauses,
// and limits peaks without lag. Samples are floats in the 16-bit range, of all channels in turn,
// which get the same gain. Allocates nothing. Belongs to one thread at a time.
class LevelControl {
 public:
  struct Settings {
    float targetDb = -23;   // Level of active parts, dB below full scale.
    float mostGainDb = 34;  // And at most so much less.
    float leastGainDb = -20;
    float ceilingDb = -1;  // No sample gets louder; 0 and above: no limiter but full scale.
    bool adapts = true;    // False: the gain stays at firstGainDb.
    float firstGainDb = 0;
  };

  // samplesPerSecond: of all channels together.
  LevelControl(int samplesPerSecond, const Settings& settings);

  // Works on `count` samples in place, 10 ms or so; learns of them if asked to.
  void Process(float* samples, int count, bool learn);

  // The level of the active parts so far, in dB of full scale; 0 when there were none.
  float LevelDb() const { return m_activeSeconds > 0 ? m_levelDb : 0; }

 private:
  void Learn(const float* samples, int count);
  void MoveGain(float seconds);
  void Apply(float* samples, int count, float from, float to);

  float m_samplesPerSecond;
  Settings m_settings;
  float m_floorDb = 0;  // Of the background.
  float m_levelDb = 0;  // Of the active parts.
  float m_activeSeconds = 0;
  bool m_active = false;
  float m_gainDb;
  float m_gain;  // As applied last, limiter included.
};

}  // namespace desktop
