#include "fake_engine/aec/echo_detection.h"

#include <string>

#include "engine_api/aec/echo_detection.h"
#include "fake_engine/fake_engine.h"

void* echo_detection_create(const void* config, int rate, int maxDelayMs) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string given = engine.NameOf(config);
  const bool makes = engine.script<EchoDetectionScript>().create && !engine.HasNone();
  void* const handle = makes ? new char : nullptr;
  const std::string name = handle != nullptr ? engine.Identify(handle, "EchoDetection") : "null";
  engine.Record("echo_detection_create(%s, %d, %d) = %s", given.c_str(), rate, maxDelayMs,
                name.c_str());
  return handle;
}

int echo_detection_process(void* detector, const short* farend, const short* nearend, int count) {
  FakeEngine& engine = FakeEngine::Current();
  engine.script<EchoDetectionScript>().process(farend, nearend, count);
  engine.Record("echo_detection_process(%s, %d.., %d.., %d)", engine.HandleOf(detector).c_str(),
                farend[0], nearend[0], count);
  return engine.Answer(0, -1);
}

int get_echo_detection_result(void* detector) {
  FakeEngine& engine = FakeEngine::Current();
  const int result = engine.script<EchoDetectionScript>().result;
  engine.Record("get_echo_detection_result(%s) = %d", engine.HandleOf(detector).c_str(), result);
  return result;
}

void echo_detection_free(void* detector) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("echo_detection_free(%s)", engine.HandleOf(detector).c_str());
  engine.Forget(detector);
  delete static_cast<char*>(detector);
}
