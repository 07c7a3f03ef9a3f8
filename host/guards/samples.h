#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace host {

// Samples that are not all in memory.
class SampleSource {
 public:
  virtual ~SampleSource() = default;

  // Returns `count` samples from `first` on, all of which are there; they stay until the next call.
  virtual std::span<const float> View(size_t first, size_t count) = 0;
};

// The interleaved samples of a sound: in memory of the caller, or got from a source of the caller's
// as they are asked for.
class Samples {
 public:
  Samples() = default;
  // Not explicit: samples in memory are such samples.
  Samples(std::span<const float> held) : m_held(held), m_size(held.size()) {}
  Samples(const std::vector<float>& held) : Samples(std::span(held)) {}
  Samples(SampleSource& source, size_t size) : m_source(&source), m_size(size) {}

  size_t size() const { return m_size; }
  bool empty() const { return m_size == 0; }

  // Returns `count` samples from `first` on, all of which are there. They stay until the next call
  // for samples of the same sound.
  std::span<const float> View(size_t first, size_t count) const {
    return m_source == nullptr ? m_held.subspan(first, count) : m_source->View(first, count);
  }
  float operator[](size_t at) const { return View(at, 1).front(); }

  // Passes all samples on, block by block, until `use` returns false. Returns whether it never did.
  bool ForEachBlock(const std::function<bool(std::span<const float> block)>& use) const;

 private:
  std::span<const float> m_held = {};
  SampleSource* m_source = nullptr;
  size_t m_size = 0;
};

}  // namespace host
