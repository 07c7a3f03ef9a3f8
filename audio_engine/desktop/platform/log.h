#pragma once

#include <string>
#include <vector>

namespace desktop {

// Writes a line to the engine's log that says what the engine refused, or left out or alone of what
// it was asked for. The first 16 that differ are remembered. Any thread.
void LogRefusal(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Returns the lines that are remembered, for a host that judges a run by them. Any thread.
std::vector<std::string> Refusals();

// From now on every line of the engine's log also goes to `listener`, without its newline; null for
// nobody. It is called from any thread, perhaps from several at once. Any thread.
void SetLogListener(void (*listener)(const char* line));

// Whether the calling thread is in the listener. Lines that it writes itself do not go to it again.
bool IsInLogListener();

}  // namespace desktop
