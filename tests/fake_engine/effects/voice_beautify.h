#pragma once

#include <functional>

// What the fake voice beautifiers do.
struct VoiceBeautifyScript {
  // To each block; answers how many samples there are then. At first all, unchanged.
  std::function<int(short* samples, int count)> process = [](short*, int count) { return count; };
};
