#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace desktop {

enum class Direction { kOutput, kInput };

struct DeviceFormat {
  uint32_t rate = 48000;  // Hz, 8000 to 48000.
  uint32_t channels = 2;  // 1 or 2, interleaved.

  constexpr bool IsValid() const {
    return rate >= 8000 && rate <= 48000 && (channels == 1 || channels == 2);
  }

  // Returns the frames of a block of 10 ms, rounded down.
  constexpr size_t BlockFrames() const { return rate / 100; }
};

// Called on the device's own thread with one block: an output fills it, an input reads it. It
// neither allocates nor waits nor touches files; a BlockRing hands blocks to and from a thread that
// may.
using DeviceBlock = std::function<void(short* samples, size_t frames)>;

}  // namespace desktop
