#pragma once

#include <string>

#include "process/child.h"
#include "process/signals.h"

namespace host {

// Does the work in this very process, for a debugger, a profiler or a sanitizer: nothing limits it
// and nobody hears it, its streams are those of this process, and a crash of it is one of this
// process. Signals act as in a program of its own from then on. Throws std::system_error when the
// workspace cannot be entered.
ChildOutcome RunHere(const ChildWork& work, const std::string& workspace,
                     const HostSignals& signals);

}  // namespace host
