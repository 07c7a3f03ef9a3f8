#pragma once

// The exit codes of audio_bench.
namespace host::exit_code {

inline constexpr int kPass = 0;
inline constexpr int kFail = 1;
inline constexpr int kUsage = 2;  // Also when nothing can be run, or the results not be delivered.
inline constexpr int kInput = 3;  // Missing or unreadable.
inline constexpr int kCrash = 4;  // Or a time-out.
inline constexpr int kSkip = 77;
inline constexpr int kSignal = 128;  // Plus the signal that interrupted the run.

}  // namespace host::exit_code
