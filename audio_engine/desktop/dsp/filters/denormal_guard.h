#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace desktop {

// Counts numbers too small for full precision as zero while it lives, and restores the thread's
// mode at its end. A filter that rings out into silence is full of such numbers, and each costs a
// processor many times an ordinary one. Where the processor has no such mode it does nothing.
class DenormalGuard {
 public:
#if defined(__SSE2__)
  DenormalGuard() : m_saved(_mm_getcsr()) {
    constexpr unsigned kFlushResultsAndOperands = 0x8040;
    _mm_setcsr(m_saved | kFlushResultsAndOperands);
  }
  ~DenormalGuard() { _mm_setcsr(m_saved); }
#elif defined(__aarch64__)
  DenormalGuard() {
    constexpr uint64_t kFlush = uint64_t{1} << 24;
    asm volatile("mrs %0, fpcr" : "=r"(m_saved));
    asm volatile("msr fpcr, %0" ::"r"(m_saved | kFlush));
  }
  ~DenormalGuard() { asm volatile("msr fpcr, %0" ::"r"(m_saved)); }
#else
  DenormalGuard() {}
  ~DenormalGuard() {}
#endif
  DenormalGuard(const DenormalGuard&) = delete;
  DenormalGuard& operator=(const DenormalGuard&) = delete;

 private:
#if defined(__SSE2__)
  unsigned m_saved;
#else
  uint64_t m_saved = 0;
#endif
};

}  // namespace desktop
