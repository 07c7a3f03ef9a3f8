#include "guards/samples.h"

#include <algorithm>

namespace host {

bool Samples::ForEachBlock(const std::function<bool(std::span<const float> block)>& use) const {
  constexpr size_t kBlock = 8192;
  for (size_t first = 0; first < m_size; first += kBlock) {
    if (!use(View(first, std::min(kBlock, m_size - first)))) return false;
  }
  return true;
}

}  // namespace host
