#include "desktop/platform/callback_scope.h"

#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

thread_local const CallbackScope* t_innermost = nullptr;

}  // namespace

CallbackScope::CallbackScope(const void* owner) : m_owner(owner), m_outer(t_innermost) {
  t_innermost = this;
}

CallbackScope::~CallbackScope() { t_innermost = m_outer; }

bool CallbackScope::IsIn(const void* owner) {
  for (const CallbackScope* scope = t_innermost; scope != nullptr; scope = scope->m_outer) {
    if (scope->m_owner == owner) return true;
  }
  return false;
}

bool RefusesInCallback(const void* owner, const char* operation) {
  if (!IsInLogListener() && !CallbackScope::IsIn(owner)) return false;
  LogRefusal("%s: refused in a callback that it would wait for", operation);
  return true;
}

}  // namespace desktop
