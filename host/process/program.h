#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace host {

// Another program that is asked for something, not trusted with anything.
struct ProgramCall {
  std::vector<std::string> words = {};  // The program, looked up in PATH, and its arguments.
  std::string folder = {};              // It runs there.
  double seconds = 0;                   // After which it is ended.
  size_t mostBytes = 0;                 // Of what it prints; more is dropped.
};

struct ProgramEnd {
  std::string printed = {};  // Standard output and standard error, as they came.
  // Why it did not come to a good end, after its name: "ended with exit code 1". Empty if it did.
  std::string fault = {};
};

// Runs a program, with nothing on its standard input, to its end. What it has started is ended when
// its time is up, or when `goOn`, which is asked again and again, returns false.
ProgramEnd CallProgram(const ProgramCall& call, const std::function<bool()>& goOn);

}  // namespace host
