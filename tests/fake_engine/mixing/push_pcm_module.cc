#include "engine_api/mixing/push_pcm_module.h"

#include "fake_engine/fake_engine.h"

namespace {

class FakePushPcmModule : public IPushPcmModule {
 public:
  ~FakePushPcmModule() override = default;

  bool Process(const std::string& data, std::string&) override {
    FakeEngine::Current().Call(this, "Process(%zu)", data.size());
    return !FakeEngine::Current().Fails();
  }

  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }
};

}  // namespace

IPushPcmModule* IPushPcmModule::CreatePuchPcmModule(unsigned dstFs, unsigned dstCh,
                                                    unsigned streamCount) {
  FakeEngine& engine = FakeEngine::Current();
  auto* const module = new FakePushPcmModule;
  engine.Record("IPushPcmModule::CreatePuchPcmModule(%u, %u, %u) = %s", dstFs, dstCh, streamCount,
                engine.Identify(module, "IPushPcmModule").c_str());
  return module;
}

std::string IPushPcmModule::MakeStreamInfo(unsigned* fs, unsigned* ch, unsigned* precision,
                                           unsigned* length, unsigned count) {
  FakeEngine::Current().Record("IPushPcmModule::MakeStreamInfo(%u, %u, %u, %u, %u)", *fs, *ch,
                               *precision, *length, count);
  return FakeEngine::Current().HasNone() ? "" : "head";
}
