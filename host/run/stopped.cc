#include "run/stopped.h"

#include <cstring>

#include "base/units.h"

namespace host {

Problem Stopped(const Limits& limits, double seconds, const std::string& during) {
  if (const int signal = limits.interruption(); signal != 0) {
    return {Cause::kInterrupted,
            std::string("interrupted (") + strsignal(signal) + ") while " + during, signal};
  }
  return {Cause::kTimeout, "timed out after " + Seconds(seconds) + " while " + during};
}

void EndAtLimits(Limits& limits, double seconds, const std::string& during) {
  if (limits.Check() != Limits::Stop::kNone) throw Ended{Stopped(limits, seconds, during)};
}

}  // namespace host
