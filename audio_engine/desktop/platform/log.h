#pragma once

namespace desktop {

// From now on every line of the engine's log also goes to `listener`, without its newline; null for
// nobody. It is called from any thread, perhaps from several at once. Any thread.
void SetLogListener(void (*listener)(const char* line));

// Whether the calling thread is in the listener. Lines that it writes itself do not go to it again.
bool IsInLogListener();

}  // namespace desktop
