#include "engine_api/platform/place_string.h"

#include "fake_engine/fake_engine.h"

std::string GetPlaceString(const char* function, const char* file, int line) {
  FakeEngine::Current().Record("GetPlaceString(%s, %s, %d)", function, file, line);
  return "the place";
}
