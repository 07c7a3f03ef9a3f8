#pragma once

#include <span>
#include <string_view>

namespace host {

// The kinds of sound on which every fault is to be found.
inline constexpr std::string_view kControlSounds[] = {"speech", "music"};

// Pieces of each kind, which are so many independent things for a comparison.
inline constexpr int kControlPieces = 8;

// The routine on which a fault shows, by the word in the ids of its cases.
inline constexpr std::string_view kThrough = "through";    // Passes a recording on.
inline constexpr std::string_view kDenoised = "denoised";  // Suppresses noise.
inline constexpr std::string_view kCalled = "called";      // Cancels an echo.
inline constexpr std::string_view kCoded = "coded";        // Encodes and decodes.

// An engine that is run against the clean one.
struct ControlFault {
  std::string_view name;
  std::string_view what;
  std::string_view routine;  // Empty for all of them.
  // Whether it is the desktop engine again, without any fault.
  bool clean = false;
};

std::span<const ControlFault> ControlFaults();

}  // namespace host
