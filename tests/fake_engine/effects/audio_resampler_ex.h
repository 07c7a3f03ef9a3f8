#pragma once

#include <cstdint>
#include <functional>

// What the fake's converters do to one block.
struct AudioResamplerExScript {
  // At first every sample of the target is the first one of the source.
  std::function<bool(const short* source, uint32_t sourceSamples, short* target,
                     uint32_t targetSamples)>
      convert = [](const short* source, uint32_t, short* target, uint32_t targetSamples) {
        for (uint32_t i = 0; i < targetSamples; ++i) target[i] = source[0];
        return true;
      };

  std::function<bool()> isFormatChange = [] { return false; };
};
