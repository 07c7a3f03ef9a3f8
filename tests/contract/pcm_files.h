#pragma once

#include <numeric>
#include <string>
#include <vector>

#include "fake_engine/fake_engine.h"

// The files of these tests.

// start, start + 1, ...
inline std::vector<short> Ramp(int samples, int start = 1) {
  std::vector<short> ramp(static_cast<size_t>(samples));
  std::iota(ramp.begin(), ramp.end(), static_cast<short>(start));
  return ramp;
}

// 44 bytes that are no header of anything, and then the samples.
inline std::string HeaderAndSamples(char header, const std::vector<short>& samples) {
  return std::string(44, header) +
         std::string(reinterpret_cast<const char*>(samples.data()), 2 * samples.size());
}

// The samples of a file from byte `start` on.
inline std::vector<short> SamplesFrom(const FakeEngine& engine, const std::string& name,
                                      size_t start) {
  const std::string bytes = engine.Bytes(name);
  std::vector<short> samples(bytes.size() > start ? (bytes.size() - start) / 2 : 0);
  if (!samples.empty()) {
    bytes.copy(reinterpret_cast<char*>(samples.data()), 2 * samples.size(), start);
  }
  return samples;
}

inline std::vector<short> Negated(std::vector<short> samples) {
  for (short& sample : samples) sample = static_cast<short>(-sample);
  return samples;
}
