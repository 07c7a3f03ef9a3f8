#include "fake_engine/platform/paths.h"

#include "engine_api/platform/paths.h"
#include "fake_engine/fake_engine.h"

std::string GetIosDocPath() {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("GetIosDocPath()");
  return engine.script<PathsScript>().documents;
}

std::string GetDebugPath() {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("GetDebugPath()");
  return engine.script<PathsScript>().debug;
}
