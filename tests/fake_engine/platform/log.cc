#include "engine_api/platform/log.h"

#include <cstdarg>
#include <cstdio>

#include "fake_engine/fake_engine.h"

void OutputDebugInfo(const char* format, ...) {
  char line[512];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  FakeEngine::Current().Record("OutputDebugInfo(%s)", line);
}
