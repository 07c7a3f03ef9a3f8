#pragma once

#include "engine_api/effects/dsp.h"
#include "fake_engine/fake_engine.h"

// A fake IDSP of one interface; only what becomes of 16-bit samples is left to the facility.
template <typename Interface>
class FakeDsp : public Interface {
 public:
  using Interface::Process;

  void Destroy() override { delete this; }

  int Process(int*, int samplesPerChannel, int, int, int, int) override {
    FakeEngine::Current().Call(this, "Process(ints, %d)", samplesPerChannel);
    return samplesPerChannel;
  }

  void Flush() override { FakeEngine::Current().Call(this, "Flush()"); }

  bool GetEnabled() override {
    FakeEngine::Current().Call(this, "GetEnabled()");
    return false;
  }

  void SetEnabled(bool enabled) override {
    FakeEngine::Current().Call(this, "SetEnabled(%s)", enabled ? "true" : "false");
  }

  bool IsActive() override {
    FakeEngine::Current().Call(this, "IsActive()");
    return false;
  }

 protected:
  ~FakeDsp() override { FakeEngine::Current().Died(this); }
};
