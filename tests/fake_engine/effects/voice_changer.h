#pragma once

#include <functional>

// What the fake voice changers do.
struct VoiceChangerScript {
  // To each block; may change the count that it is given the address of. Answers how many samples
  // there are then. At first all, unchanged.
  std::function<int(short* samples, short* count)> process = [](short*, short* count) {
    return *count;
  };
};
