#pragma once

#include "../common/visibility.h"

// The table of head-related impulse responses. Azimuth in degrees, clockwise seen from above: 0
// ahead, 90 at the right ear; elevation in degrees, 90 overhead. diffused selects the diffuse-field
// equalised set (1) or the plain one (0). Any thread.
//
// The desktop engine has the plain set only, for 44100 and 48000 Hz. Azimuths of any size wrap
// around.
extern "C" {

// The number of taps that the nearest measured position has at that rate (Hz), 0 when the table has
// no such set.
ENGINE_API unsigned int mit_hrtf_availability(int azimuth, int elevation, unsigned int samplerate,
                                              unsigned int diffused);

// Fills left and right with the 16-bit impulse responses of both ears (at most 8192 taps each),
// moves azimuth and elevation to the measured position that is nearest, and returns the number of
// taps; 0 on failure, all untouched.
ENGINE_API unsigned int mit_hrtf_get(int* azimuth, int* elevation, unsigned int samplerate,
                                     unsigned int diffused, short* left, short* right);
}
