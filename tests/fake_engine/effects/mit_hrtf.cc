#include "fake_engine/effects/mit_hrtf.h"

#include "engine_api/effects/mit_hrtf.h"
#include "fake_engine/fake_engine.h"

unsigned int mit_hrtf_availability(int azimuth, int elevation, unsigned int samplerate,
                                   unsigned int diffused) {
  FakeEngine& engine = FakeEngine::Current();
  const unsigned taps = engine.Answer(engine.script<MitHrtfScript>().availability, 0U);
  engine.Record("mit_hrtf_availability(%d, %d, %u, %u) = %u", azimuth, elevation, samplerate,
                diffused, taps);
  return taps;
}

unsigned int mit_hrtf_get(int* azimuth, int* elevation, unsigned int samplerate,
                          unsigned int diffused, short* left, short* right) {
  FakeEngine& engine = FakeEngine::Current();
  const int askedAzimuth = *azimuth;
  const int askedElevation = *elevation;
  const unsigned taps =
      engine.Fails() ? 0 : engine.script<MitHrtfScript>().get(azimuth, elevation, left, right);
  engine.Record("mit_hrtf_get(%d, %d, %u, %u) = %u", askedAzimuth, askedElevation, samplerate,
                diffused, taps);
  return taps;
}
