#pragma once

#include <functional>

// What the fake's echo detectors say.
struct EchoDetectionScript {
  bool create = true;  // False: there is no detector.
  int result = 0;

  // Looks at the blocks of both ends.
  std::function<void(const short* farend, const short* nearend, int count)> process =
      [](const short*, const short*, int) {};
};
