#include "fake_engine/fake_engine.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

FakeEngine* g_current = nullptr;

// One impulse at full scale for each ear, at the position asked for.
unsigned OneTap(int*, int*, short* left, short* right) {
  left[0] = 32767;
  right[0] = 32767;
  return 1;
}

void CopyThrough(int, const float* in, size_t length, float* out) { std::copy_n(in, length, out); }

}  // namespace

FakeEngine::FakeEngine() : hrtf(OneTap), fir(CopyThrough), m_before(g_current) { g_current = this; }

FakeEngine::~FakeEngine() { g_current = m_before; }

FakeEngine& FakeEngine::Current() {
  if (g_current != nullptr) return *g_current;
  static FakeEngine* const standIn = [] {
    auto* engine = new FakeEngine;
    g_current = nullptr;
    return engine;
  }();
  return *standIn;
}

bool FakeEngine::HasCurrent() { return g_current != nullptr; }

void FakeEngine::Record(const char* format, ...) {
  char line[1024];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  const std::lock_guard lock(m_mutex);
  calls.emplace_back(line);
}

std::vector<std::string> FakeEngine::CallsWith(const std::string& part) const {
  std::vector<std::string> found;
  for (const std::string& call : calls) {
    if (call.find(part) != std::string::npos) found.push_back(call);
  }
  return found;
}

void FakeEngine::PutFile(const std::string& name, const std::string& bytes) {
  files[name] = std::make_shared<std::string>(bytes);
}

void FakeEngine::PutSamples(const std::string& name, const std::vector<short>& samples) {
  PutFile(name, std::string(reinterpret_cast<const char*>(samples.data()),
                            samples.size() * sizeof(short)));
}

bool FakeEngine::HasFile(const std::string& name) const { return files.count(name) > 0; }

std::string FakeEngine::Bytes(const std::string& name) const {
  const auto found = files.find(name);
  return found != files.end() ? *found->second : std::string();
}

void FakeEngine::Born(const std::string& what) {
  const std::lock_guard lock(m_mutex);
  ++live[what];
}

void FakeEngine::Died(const std::string& what) {
  const std::lock_guard lock(m_mutex);
  RequireOrDie(live[what] > 0, "an object is destroyed once");
  if (--live[what] == 0) live.erase(what);
}

void RequireOrDie(bool condition, const char* rule) {
  if (condition) return;
  fprintf(stderr, "fake engine: broken rule: %s\n", rule);
  abort();
}
