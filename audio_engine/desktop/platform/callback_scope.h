#pragma once

namespace desktop {

// Marks the calling thread as being in a callback of `owner`, the object whose notify is called,
// for as long as this lives. Scopes of one thread may be nested.
class CallbackScope {
 public:
  explicit CallbackScope(const void* owner);
  ~CallbackScope();
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;

  static bool IsIn(const void* owner);

 private:
  const void* const m_owner;
  const CallbackScope* const m_outer;
};

// Whether the calling thread is in a callback of `owner`, or in the function that takes the lines
// of the log. An operation that waits for callbacks would wait for itself then, and does nothing
// instead; the log has one line that names it.
bool RefusesInCallback(const void* owner, const char* operation);

}  // namespace desktop
