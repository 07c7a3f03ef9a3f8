#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace host {

// What can be wrong with an output whatever it is meant to sound like. docs/guards.md has the rule
// of each.
enum class Guard {
  kSilent,
  kUnchanged,
  kInverted,
  kNotFinite,
  kClipped,
  kDropout,
  kClick,
  kDc,
  kLength,
  kLevel,
  kTruePeak,
  kSwapped,
  kDigitalSilence,
  kAppended,
  kArgumentUnused,
  kInputUnread,
  kEngineSaid,
};
inline constexpr size_t kGuards = 17;

// The name as reports have it: "true_peak".
const char* GuardName(Guard guard);

// The guard of a name, if there is one.
std::optional<Guard> FindGuard(std::string_view name);

// What a guard that is hit does to the verdict.
enum class GuardAction { kOff, kWarn, kFail };

// What is asked of one output. As it stands it fits a routine that keeps the length of its input,
// treats its sound and does not mean to silence it.
class GuardRules {
 public:
  GuardRules();

  GuardAction& operator[](Guard guard) { return m_actions[static_cast<size_t>(guard)]; }
  GuardAction operator[](Guard guard) const { return m_actions[static_cast<size_t>(guard)]; }

  // False where the output does not follow its input in time or pitch, as after a change of tempo:
  // guards that hold both against each other, sample by sample, are then left out.
  bool comparable = true;
  double lengthFactor = 1;        // How long the output is meant to be, as a multiple of the input.
  double lengthTolerance = 0.25;  // Seconds beside that, either way.
  double leastLevel = -12;        // dB, active level of the output against that of the input.
  double mostLevel = 12;
  double mostDelay = 1;           // Seconds by which the output may be later than the input,
  double mostAdvance = 0.25;      // and earlier.
  double unreadTolerance = 0.25;  // Seconds of an input that may be left over,
  double unreadBytes = 1024;      // or bytes, of what has no known duration.

 private:
  std::array<GuardAction, kGuards> m_actions;
};

}  // namespace host
