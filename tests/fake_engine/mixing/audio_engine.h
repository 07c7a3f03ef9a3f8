#pragma once

// What the fake engine object and its players answer, and what they were given.
struct AudioEngineScript {
  void (*log)(const char*) = nullptr;  // The log callback of the latest engine.
  bool saver = true;                   // Whether a saver starts.
  int openPlayer = 0;                  // What a player's Open answers.
};
