#include "run/stopped.h"

#include <cstring>
#include <exception>

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

Stop Refuse(const UsageError& error) {
  Stop stop = {{Cause::kUsage, error.message}};
  stop.refusal = error;
  return stop;
}

void StopWhereFailing(std::optional<Stop>& stop, const std::function<void()>& part) {
  if (stop) return;
  try {
    part();
  } catch (const Ended& ended) {
    stop = Stop{ended.problem};
  } catch (const UsageError& error) {
    stop = Refuse(error);
  } catch (const std::exception& error) {
    stop = Refuse({error.what()});
  }
}

}  // namespace host
