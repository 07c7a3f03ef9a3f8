#pragma once

// The records that carry the settings of effects. A value out of its range is brought to the
// nearest one in it; what is no number counts as the lowest.

// Gains of the eleven equaliser bands in dB, band 0 first (16, 31.5, 63, 125, 250, 500 Hz, 1, 2, 4,
// 8, 16 kHz), -24 to 24. One that is no number leaves its band as it was.
using EqGains = float[11];

// A reverberation: a tail that follows the sound itself.
struct NreverbFv3Parameter {
  float Factor;      // Size of the room: scales the echo paths; 1 = 9 to 23 ms each. 0.5 to 5.
  float Wet;         // Gain of the tail, dB: 0 = as much energy as the sound itself. -100 to 20.
  float Dry;         // Gain of the sound itself, dB, -100 to 20.
  float Feedback;    // How strongly echoes are smeared before they enter the room, 0 to 1.
  float Damp1;       // How much faster the tail loses its highs (above 5 kHz), 0 to 1 (5 times).
  float Damp2;       // How much faster it loses its lows (below 150 Hz), 0 to 1 (5 times).
  float Damp3;       // How much the whole tail is dulled, 0 to 1 (a low-pass at 5 kHz).
  float ReverbTime;  // Seconds that the tail takes to fall by 60 dB at 500 Hz to 1 kHz, 0.2 to 20.
  float Width;       // 0 = the tail is the same in both channels, 1 = unrelated.
  float Delay;       // From the sound to the start of its tail, ms, 0 to 500.
};

// A look-ahead limiter. Up to the threshold a sound passes unchanged; from there its peaks bend
// gently towards the ceiling and never exceed it.
struct LimiterParam {
  float fCeiling;         // Highest peak that comes out, dBFS, -60 to 0.
  float fThreshold;       // Peak from which on the gain falls, dBFS; at most the ceiling.
  float fPreGain;         // Gain ahead of the limiter, dB, -40 to 40.
  float fRelease;         // Time constant of the gain's way back, ms, 1 to 5000.
  float fAttack;          // Time constant of its fall, ms, 0 to 100; 0 = within the look-ahead.
  float fLookahead;       // How long a peak is known ahead, ms, 0 to 20; delays the sound as much.
  float fLookaheadRatio;  // Share of the look-ahead over which the gain falls, 0 to 1.
  float fRMS;             // Window of a level by power, ms, 0 to 300; 0 = by peaks.
  float fStLink;          // 0 = each channel has its own gain, 1 = all have the lowest.
};

// The same with two fields more.
struct LimiterParameter {
  float fCeiling;
  float fThreshold;
  float fPreGain;
  float fRelease;
  float fAttack;
  float fLookahead;
  float fLookaheadRatio;
  float fRMS;
  float fFactor;  // Has no effect.
  float fStLink;
  float fType;  // Has no effect.
};
