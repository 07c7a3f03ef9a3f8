#pragma once

#include <span>
#include <string_view>

namespace host {

// Whether a figure of this measure is not to be believed: one of its controls (control.h) did not
// hold with this build, or it has none. Its controls run at the first question; the answer is kept
// for the build, told apart by the build ids of the program and of libaudio_measures, in
// $XDG_CACHE_HOME/audio_bench/selftest or, without that, in ~/.cache. What cannot be kept is found
// out again by the next process. One thread at a time.
bool Untrusted(std::string_view measure);

// Has the answers for all of these at hand: faster than one question after the other, because
// measures share controls.
void AskTrust(std::span<const std::string_view> measures);

// Keeps what a run of the controls has shown of a measure.
void KeepTrust(std::string_view measure, bool holds);

}  // namespace host
