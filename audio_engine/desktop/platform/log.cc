#include "engine_api/platform/log.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <exception>
#include <mutex>
#include <string>

#include "desktop/platform/log.h"

namespace {

std::atomic<void (*)(const char*)> g_listener = nullptr;
thread_local bool t_inListener = false;

// Any length; empty for a text that cannot be formatted.
__attribute__((format(printf, 1, 0))) std::string Formatted(const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = vsnprintf(nullptr, 0, format, arguments);
  std::string text;
  if (length > 0) {
    text.resize(static_cast<size_t>(length) + 1);
    vsnprintf(text.data(), text.size(), format, again);
    text.pop_back();
  }
  va_end(again);
  return text;
}

constexpr size_t kMaxRefusals = 16;

struct AllRefusals {
  std::mutex mutex;
  std::vector<std::string> lines;
};

// Lives until the process ends: a thread of the engine may outlive main.
AllRefusals& Remembered() {
  static auto* const refusals = new AllRefusals;
  return *refusals;
}

void Remember(const std::string& line) {
  AllRefusals& refusals = Remembered();
  const std::scoped_lock lock(refusals.mutex);
  std::vector<std::string>& lines = refusals.lines;
  if (lines.size() == kMaxRefusals || std::find(lines.begin(), lines.end(), line) != lines.end())
    return;
  lines.push_back(line);
}

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
  std::string line = TimeOfDay() + Formatted(format, arguments);
  va_end(arguments);

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

void LogRefusal(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string line = Formatted(format, arguments);
  va_end(arguments);
  OutputDebugInfo("%s", line.c_str());
  try {
    Remember(line);
  } catch (const std::exception&) {
    // Memory is short; the log has the line.
  }
}

std::vector<std::string> Refusals() {
  AllRefusals& refusals = Remembered();
  const std::scoped_lock lock(refusals.mutex);
  return refusals.lines;
}

void SetLogListener(void (*listener)(const char* line)) { g_listener = listener; }

bool IsInLogListener() { return t_inListener; }

}  // namespace desktop
