#include "fake_engine/effects/sound_process.h"

#include "engine_api/effects/sound_process.h"
#include "fake_engine/fake_engine.h"

namespace {

// Answers one call of either function; `flag` is what stands after the arguments that both have.
int Answer(const char* function, unsigned rate, unsigned channels, const short* in,
           unsigned inSamples, short* out, unsigned* outSamples, const char* flag) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string from = engine.Buffer(in);
  const std::string to = engine.Buffer(out);
  const unsigned room = *outSamples;
  const int code =
      engine.Fails() ? -1
                     : engine.script<SoundProcessScript>().process(in, inSamples, out, outSamples);
  engine.Record("%s(%u, %u, %s, %u, %s, %u%s) = %d, %u", function, rate, channels, from.c_str(),
                inSamples, to.c_str(), room, flag, code, *outSamples);
  return code;
}

}  // namespace

int AccelerateSoundProcess(unsigned int rate, unsigned int channels, const short* in,
                           unsigned int inSamples, short* out, unsigned int* outSamples,
                           bool always) {
  return Answer("AccelerateSoundProcess", rate, channels, in, inSamples, out, outSamples,
                always ? ", true" : ", false");
}

int StretchSoundProcess(unsigned int rate, unsigned int channels, const short* in,
                        unsigned int inSamples, short* out, unsigned int* outSamples) {
  return Answer("StretchSoundProcess", rate, channels, in, inSamples, out, outSamples, "");
}
