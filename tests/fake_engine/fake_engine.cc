#include "fake_engine/fake_engine.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

FakeEngine* g_current = nullptr;

}  // namespace

std::string Formatted(const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string text(static_cast<size_t>(length), '\0');
  va_copy(again, arguments);
  vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

FakeEngine::FakeEngine() : m_before(g_current) { g_current = this; }

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

void FakeEngine::Append(std::string line) {
  const std::lock_guard lock(m_mutex);
  calls.push_back(std::move(line));
}

void FakeEngine::Record(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Append(Formatted(format, arguments));
  va_end(arguments);
}

std::string FakeEngine::Identify(const void* object, const std::string& what) {
  const std::lock_guard lock(m_mutex);
  m_identities[object] = {what, ++m_counts[what]};
  ++live[what];
  return NameOf(object);
}

void FakeEngine::Born(const void* object, const std::string& what, const char* arguments, ...) {
  const std::string name = Identify(object, what);
  va_list list;
  va_start(list, arguments);
  Append(name + "(" + Formatted(arguments, list) + ")");
  va_end(list);
}

void FakeEngine::Call(const void* object, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Append(NameOf(object) + "." + Formatted(format, arguments));
  va_end(arguments);
}

void FakeEngine::Died(const void* object) {
  Append("~" + NameOf(object));
  Forget(object);
}

void FakeEngine::Forget(const void* object) {
  const std::lock_guard lock(m_mutex);
  const auto found = m_identities.find(object);
  RequireOrDie(found != m_identities.end(), "an object ends once, under the engine that made it");
  if (--live[found->second.what] == 0) live.erase(found->second.what);
  m_identities.erase(found);
}

std::string FakeEngine::NameOf(const void* object) const {
  const std::lock_guard lock(m_mutex);
  if (object == nullptr) return "null";
  const auto found = m_identities.find(object);
  if (found == m_identities.end()) return "unknown";
  return found->second.what + "#" + std::to_string(found->second.number);
}

std::string FakeEngine::HandleOf(const void* object) const {
  const std::string name = NameOf(object);
  const size_t mark = name.find('#');
  return mark == std::string::npos ? name : name.substr(mark);
}

std::string FakeEngine::Buffer(const void* data) {
  const std::lock_guard lock(m_mutex);
  if (data == nullptr) return "null";
  const auto [found, isNew] = m_buffers.emplace(data, static_cast<int>(m_buffers.size()) + 1);
  return "@" + std::to_string(found->second);
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

void RequireOrDie(bool condition, const char* rule) {
  if (condition) return;
  fprintf(stderr, "fake engine: broken rule: %s\n", rule);
  abort();
}
