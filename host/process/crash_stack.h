#pragma once

#include <string>

#include "process/crash_calls.h"

namespace host {

// The calls as text, a line each, the innermost first: the name of the function, of whatever
// visibility, its place in the source where the program has that, and the module and the offset in
// it, which addr2line takes. Of a function that calls itself many times the line says how often.
// Empty where no calls were noted. The process that noted them was forked by this one, which has
// its modules at the same addresses.
std::string CrashStack(const CrashCalls& noted);

}  // namespace host
