#include "fake_engine/mixing/audio_block_mixer.h"

#include "fake_engine/fake_engine.h"

struct CAudioBlockMixer::State {};

CAudioBlockMixer::CAudioBlockMixer(int samples, int channels) {
  FakeEngine::Current().Born(this, "CAudioBlockMixer", "%d, %d", samples, channels);
}

CAudioBlockMixer::~CAudioBlockMixer() { FakeEngine::Current().Died(this); }

void CAudioBlockMixer::Process(const AudioBlockList& blocks, std::string& outMix) {
  FakeEngine& engine = FakeEngine::Current();
  std::string sizes;
  for (const std::string* block : blocks) sizes += " " + std::to_string(block->size());
  const std::string before = outMix;
  if (!engine.Fails()) outMix = engine.script<BlockMixerScript>().process(blocks);
  engine.Call(this, "Process(%s%s) = %s", sizes.empty() ? "" : sizes.c_str() + 1,
              before.empty() ? "" : ", into what is not empty", outMix.c_str());
}
