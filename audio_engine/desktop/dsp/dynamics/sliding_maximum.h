#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "desktop/common/counts.h"

namespace desktop {

// The largest of the last `window` values, in constant time per value on average (the ascending
// minima of Lemire, Streaming maximum-minimum filter, 2006). Values are not negative.
class SlidingMaximum {
 public:
  // Starts anew; allocates. `window` of at least 1.
  void Reset(int window) {
    m_window = Unsigned(std::max(1, window));
    m_entries.assign(size_t{m_window} + 1, Entry{});
    Clear();
  }

  // Starts anew with the same window.
  void Clear() { m_first = m_end = m_now = 0; }

  float Push(float value) {
    // Counts wrap round; the difference does not.
    if (m_first != m_end && m_now - m_entries[m_first].when >= m_window) {
      m_first = After(m_first);
    }
    while (m_end != m_first && m_entries[Before(m_end)].value <= value) m_end = Before(m_end);
    m_entries[m_end] = {value, m_now++};
    m_end = After(m_end);
    return m_entries[m_first].value;
  }

 private:
  struct Entry {
    float value = 0;
    unsigned when = 0;
  };

  size_t After(size_t at) const { return at + 1 == m_entries.size() ? 0 : at + 1; }
  size_t Before(size_t at) const { return at == 0 ? m_entries.size() - 1 : at - 1; }

  // A ring of falling values, the largest first.
  std::vector<Entry> m_entries;
  size_t m_first = 0;
  size_t m_end = 0;
  unsigned m_now = 0;
  unsigned m_window = 1;
};

}  // namespace desktop
