// Records what a program asks of SoundTouch, for programs linked with --wrap for each function
// below; the library itself still does it. The names are those that the C++ ABI gives to the member
// functions, with the object as first argument.

#include "fake_engine/effects/soundtouch_recorder.h"

#include <BPMDetect.h>
#include <SoundTouch.h>

#include "fake_engine/fake_engine.h"

using soundtouch::BPMDetect;
using soundtouch::SoundTouch;

// Declares the library's function and the one that takes its place.
#define WRAPPED(result, symbol, ...)   \
  result __real_##symbol(__VA_ARGS__); \
  result __wrap_##symbol(__VA_ARGS__);

extern "C" {
WRAPPED(void, _ZN10soundtouch10SoundTouchC1Ev, SoundTouch* self)
WRAPPED(void, _ZN10soundtouch10SoundTouchD1Ev, SoundTouch* self)
WRAPPED(void, _ZN10soundtouch10SoundTouch13setSampleRateEj, SoundTouch* self, unsigned rate)
WRAPPED(void, _ZN10soundtouch10SoundTouch11setChannelsEj, SoundTouch* self, unsigned channels)
WRAPPED(void, _ZN10soundtouch10SoundTouch14setTempoChangeEd, SoundTouch* self, double percent)
WRAPPED(void, _ZN10soundtouch10SoundTouch17setPitchSemiTonesEi, SoundTouch* self, int semitones)
WRAPPED(void, _ZN10soundtouch10SoundTouch17setPitchSemiTonesEd, SoundTouch* self, double semitones)
WRAPPED(void, _ZN10soundtouch10SoundTouch13setRateChangeEd, SoundTouch* self, double percent)
WRAPPED(bool, _ZN10soundtouch10SoundTouch10setSettingEii, SoundTouch* self, int setting, int value)
WRAPPED(void, _ZN10soundtouch10SoundTouch8setTempoEd, SoundTouch* self, double tempo)
WRAPPED(void, _ZN10soundtouch10SoundTouch10putSamplesEPKfj, SoundTouch* self, const float* in,
        unsigned frames)
WRAPPED(unsigned, _ZN10soundtouch10SoundTouch14receiveSamplesEPfj, SoundTouch* self, float* out,
        unsigned room)
WRAPPED(void, _ZN10soundtouch10SoundTouch5flushEv, SoundTouch* self)
WRAPPED(void, _ZN10soundtouch9BPMDetectC1Eii, BPMDetect* self, int channels, int rate)
WRAPPED(void, _ZN10soundtouch9BPMDetectD1Ev, BPMDetect* self)
WRAPPED(void, _ZN10soundtouch9BPMDetect12inputSamplesEPKfi, BPMDetect* self, const float* in,
        int frames)
WRAPPED(float, _ZN10soundtouch9BPMDetect6getBpmEv, BPMDetect* self)
}

void __wrap__ZN10soundtouch10SoundTouchC1Ev(SoundTouch* self) {
  FakeEngine::Current().Born(self, "SoundTouch", "%s", "");
  __real__ZN10soundtouch10SoundTouchC1Ev(self);
}

void __wrap__ZN10soundtouch10SoundTouchD1Ev(SoundTouch* self) {
  FakeEngine::Current().Died(self);
  __real__ZN10soundtouch10SoundTouchD1Ev(self);
}

void __wrap__ZN10soundtouch10SoundTouch13setSampleRateEj(SoundTouch* self, unsigned rate) {
  FakeEngine::Current().Call(self, "setSampleRate(%u)", rate);
  __real__ZN10soundtouch10SoundTouch13setSampleRateEj(self, rate);
}

void __wrap__ZN10soundtouch10SoundTouch11setChannelsEj(SoundTouch* self, unsigned channels) {
  FakeEngine::Current().Call(self, "setChannels(%u)", channels);
  __real__ZN10soundtouch10SoundTouch11setChannelsEj(self, channels);
}

void __wrap__ZN10soundtouch10SoundTouch14setTempoChangeEd(SoundTouch* self, double percent) {
  FakeEngine::Current().Call(self, "setTempoChange(%g)", percent);
  __real__ZN10soundtouch10SoundTouch14setTempoChangeEd(self, percent);
}

void __wrap__ZN10soundtouch10SoundTouch17setPitchSemiTonesEi(SoundTouch* self, int semitones) {
  FakeEngine::Current().Call(self, "setPitchSemiTones(%d)", semitones);
  __real__ZN10soundtouch10SoundTouch17setPitchSemiTonesEi(self, semitones);
}

void __wrap__ZN10soundtouch10SoundTouch17setPitchSemiTonesEd(SoundTouch* self, double semitones) {
  FakeEngine::Current().Call(self, "setPitchSemiTones(%g as double)", semitones);
  __real__ZN10soundtouch10SoundTouch17setPitchSemiTonesEd(self, semitones);
}

void __wrap__ZN10soundtouch10SoundTouch13setRateChangeEd(SoundTouch* self, double percent) {
  FakeEngine::Current().Call(self, "setRateChange(%g)", percent);
  __real__ZN10soundtouch10SoundTouch13setRateChangeEd(self, percent);
}

bool __wrap__ZN10soundtouch10SoundTouch10setSettingEii(SoundTouch* self, int setting, int value) {
  FakeEngine::Current().Call(self, "setSetting(%d, %d)", setting, value);
  return __real__ZN10soundtouch10SoundTouch10setSettingEii(self, setting, value);
}

void __wrap__ZN10soundtouch10SoundTouch8setTempoEd(SoundTouch* self, double tempo) {
  FakeEngine::Current().Call(self, "setTempo(%g)", tempo);
  __real__ZN10soundtouch10SoundTouch8setTempoEd(self, tempo);
}

void __wrap__ZN10soundtouch10SoundTouch10putSamplesEPKfj(SoundTouch* self, const float* in,
                                                         unsigned frames) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string buffer = engine.Buffer(in);
  engine.Call(self, "putSamples(%s, %u)", buffer.c_str(), frames);
  __real__ZN10soundtouch10SoundTouch10putSamplesEPKfj(self, in, frames);
}

unsigned __wrap__ZN10soundtouch10SoundTouch14receiveSamplesEPfj(SoundTouch* self, float* out,
                                                                unsigned room) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string buffer = engine.Buffer(out);
  const auto& script = engine.script<SoundTouchScript>();
  const unsigned frames =
      engine.Fails()   ? 0
      : script.receive ? script.receive(out, room)
                       : __real__ZN10soundtouch10SoundTouch14receiveSamplesEPfj(self, out, room);
  engine.Call(self, "receiveSamples(%s, %u) = %u", buffer.c_str(), room, frames);
  return frames;
}

void __wrap__ZN10soundtouch10SoundTouch5flushEv(SoundTouch* self) {
  FakeEngine::Current().Call(self, "flush()");
  __real__ZN10soundtouch10SoundTouch5flushEv(self);
}

void __wrap__ZN10soundtouch9BPMDetectC1Eii(BPMDetect* self, int channels, int rate) {
  __real__ZN10soundtouch9BPMDetectC1Eii(self, channels, rate);  // May throw: none is born then.
  FakeEngine::Current().Born(self, "BPMDetect", "%d, %d", channels, rate);
}

void __wrap__ZN10soundtouch9BPMDetectD1Ev(BPMDetect* self) {
  FakeEngine::Current().Died(self);
  __real__ZN10soundtouch9BPMDetectD1Ev(self);
}

void __wrap__ZN10soundtouch9BPMDetect12inputSamplesEPKfi(BPMDetect* self, const float* in,
                                                         int frames) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string buffer = engine.Buffer(in);
  engine.Call(self, "inputSamples(%s, %d)", buffer.c_str(), frames);
  __real__ZN10soundtouch9BPMDetect12inputSamplesEPKfi(self, in, frames);
}

float __wrap__ZN10soundtouch9BPMDetect6getBpmEv(BPMDetect* self) {
  FakeEngine& engine = FakeEngine::Current();
  const auto& script = engine.script<SoundTouchScript>();
  const float bpm = engine.Fails() ? 0
                    : script.bpm   ? script.bpm()
                                   : __real__ZN10soundtouch9BPMDetect6getBpmEv(self);
  engine.Call(self, "getBpm()");
  return bpm;
}
