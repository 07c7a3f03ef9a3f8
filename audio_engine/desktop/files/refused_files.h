#pragma once

#include <string>
#include <vector>

namespace desktop {

// An audio file that this process was asked to play or mix and could not.
struct RefusedFile {
  // The name as it was given.
  std::string name;
  // Why, for example "it holds no audio".
  std::string reason;
};

// Remembers one, and tells the log: "x.wav: cannot read the audio file: it holds no audio". Only
// the first 64 are remembered. Any thread.
void RefuseFile(const char* name, const char* what, const char* reason);

// Returns those that are remembered, for a host that judges what a routine did with them. Any
// thread.
std::vector<RefusedFile> RefusedFiles();

}  // namespace desktop
