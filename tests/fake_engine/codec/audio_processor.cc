#include "fake_engine/codec/audio_processor.h"

#include <set>

#include "engine_api/codec/audio_processor.h"
#include "fake_engine/fake_engine.h"

namespace {

class FakeProcessor : public AudioProcessor {
 public:
  ~FakeProcessor() override = default;

  void ProcessData(const void* in, uint32_t* inLen, void* out, uint32_t* outLen, int reserved1,
                   int reserved2) override {
    FakeEngine& engine = FakeEngine::Current();
    const std::string given(static_cast<const char*>(in), *inLen);
    const std::string made =
        engine.Fails() ? std::string() : engine.script<AudioProcessorScript>().process(given);
    RequireOrDie(made.size() <= *outLen, "output within the caller's room");
    engine.Call(this, "ProcessData(%u, room %u, %d, %d) = %zu", *inLen, *outLen, reserved1,
                reserved2, made.size());
    made.copy(static_cast<char*>(out), made.size());
    *outLen = static_cast<uint32_t>(made.size());
  }
};

// Keeps processors that nobody releases from looking lost.
std::set<const AudioProcessor*>& Alive() {
  static auto* const processors = new std::set<const AudioProcessor*>;
  return *processors;
}

}  // namespace

void AudioProcessor::Create(const AudioStreamFormat& in, const AudioStreamFormat& out,
                            AudioProcessor*& processor) {
  FakeEngine& engine = FakeEngine::Current();
  engine.script<AudioProcessorScript>().formats.emplace_back(in, out);
  const std::string before = engine.NameOf(processor);
  processor = new FakeProcessor;
  Alive().insert(processor);
  const std::string name = engine.Identify(processor, "AudioProcessor");
  engine.Record("AudioProcessor::Create(%s) = %s", before.c_str(), name.c_str());
}

void AudioProcessor::Release(AudioProcessor*& processor) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("AudioProcessor::Release(%s)", engine.NameOf(processor).c_str());
  engine.Forget(processor);
  Alive().erase(processor);
  delete static_cast<FakeProcessor*>(processor);
  processor = nullptr;
}
