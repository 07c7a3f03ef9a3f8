#pragma once

#include <string>
#include <vector>

namespace desktop {

// The audio files that this process was asked to play or mix and could not, for a host that judges
// what the routine did with them. Any thread.
struct RefusedFile {
  std::string name;    // As it was given.
  std::string reason;  // "it holds no audio"
};

// Remembers one, and tells the log: "x.wav: cannot read the audio file: it holds no audio". Only
// the first 64 are remembered.
void RefuseFile(const char* name, const char* what, const char* reason);

std::vector<RefusedFile> RefusedFiles();

}  // namespace desktop
