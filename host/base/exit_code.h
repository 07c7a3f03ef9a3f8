#pragma once

// The exit codes of audio_bench. kUsage also says that nothing can be run or that the results
// cannot be delivered, kInput that an input is missing or unreadable, kCrash also that the time was
// up. The number of the signal that interrupted a run is added to kSignal.
namespace host::exit_code {

inline constexpr int kPass = 0;
inline constexpr int kFail = 1;
inline constexpr int kUsage = 2;
inline constexpr int kInput = 3;
inline constexpr int kCrash = 4;
inline constexpr int kSkip = 77;
inline constexpr int kSignal = 128;

}  // namespace host::exit_code
