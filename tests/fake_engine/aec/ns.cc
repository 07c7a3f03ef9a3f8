#include "engine_api/aec/ns.h"

#include <string>

#include "fake_engine/aec/ns.h"
#include "fake_engine/fake_engine.h"

int Ns_Create(void** handle) {
  FakeEngine& engine = FakeEngine::Current();
  *handle = new char;
  engine.Record("Ns_Create() = %s", engine.Identify(*handle, "Ns").c_str());
  return engine.Answer(0, -1);
}

int Ns_Free(void* handle) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("Ns_Free(%s)", engine.HandleOf(handle).c_str());
  engine.Forget(handle);
  delete static_cast<char*>(handle);
  return engine.Answer(0, -1);
}

int Ns_Init(void* handle, unsigned int rate) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("Ns_Init(%s, %u)", engine.HandleOf(handle).c_str(), rate);
  return engine.Answer(0, -1);
}

int Ns_set_policy(void* handle, int policy) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("Ns_set_policy(%s, %d)", engine.HandleOf(handle).c_str(), policy);
  return engine.Answer(0, -1);
}

int Ns_Process2(void* handle, const short* in, short* out, int16_t channels) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string from = engine.Buffer(in);
  const std::string to = engine.Buffer(out);
  if (!engine.Fails()) engine.script<NsScript>().process(in, out);
  engine.Record("Ns_Process2(%s, %s, %s, %d)", engine.HandleOf(handle).c_str(), from.c_str(),
                to.c_str(), channels);
  return engine.Answer(0, -1);
}
