#include "engine_api/platform/log.h"

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>

#include "desktop/platform/log.h"

namespace {

std::atomic<void (*)(const char*)> g_listener = nullptr;
thread_local bool t_inListener = false;

// The local time of day, as in "12:34:56.789 ".
std::string TimeOfDay() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
  const auto seconds = static_cast<time_t>(ms / 1000);
  tm local = {};
  localtime_r(&seconds, &local);
  char text[32];
  const size_t length = strftime(text, sizeof(text), "%H:%M:%S", &local);
  snprintf(text + length, sizeof(text) - length, ".%03d ", static_cast<int>(ms % 1000));
  return text;
}

}  // namespace

void OutputDebugInfo(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  const int length = vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);

  std::string line = TimeOfDay();
  if (length > 0) {
    const size_t start = line.size();
    const size_t room = static_cast<size_t>(length) + 1;
    line.resize(start + room);
    vsnprintf(line.data() + start, room, format, again);
    line.pop_back();
  }
  va_end(again);

  if (line.back() != '\n') line += '\n';
  // One call, so that the lines of several threads stay whole.
  fwrite(line.data(), 1, line.size(), stderr);
  if (const auto listener = g_listener.load(); listener != nullptr && !t_inListener) {
    line.pop_back();
    t_inListener = true;
    listener(line.c_str());
    t_inListener = false;
  }
}

namespace desktop {

void SetLogListener(void (*listener)(const char* line)) { g_listener = listener; }

bool IsInLogListener() { return t_inListener; }

}  // namespace desktop
