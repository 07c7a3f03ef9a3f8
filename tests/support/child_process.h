#pragma once

#include <functional>

// Runs `body` in a child process of its own and returns how that ended, as waitpid gives it. A body
// that returns makes the child exit with 0, without running destructors or flushing streams.
int RunInChild(const std::function<void()>& body);
