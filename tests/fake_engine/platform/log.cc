#include "engine_api/platform/log.h"

#include <cstdarg>

#include "fake_engine/fake_engine.h"

void OutputDebugInfo(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string line = FormatAndArguments(format, arguments);
  va_end(arguments);
  FakeEngine::Current().Record("OutputDebugInfo(%s)", line.c_str());
}
