#pragma once

#include <cfenv>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

// Tells whether this thread works with numbers too small for full precision, which cost some
// processors many times an ordinary one. While it lives the processor is in its default mode, in
// which such numbers count: a packaged library that is linked switches them off for the whole
// process when it is loaded. Where the processor does not note them it tells of none.
class TinyNumbers {
 public:
  TinyNumbers() {
    std::fegetenv(&m_before);
    std::fesetenv(FE_DFL_ENV);
  }
  ~TinyNumbers() { std::fesetenv(&m_before); }
  TinyNumbers(const TinyNumbers&) = delete;
  TinyNumbers& operator=(const TinyNumbers&) = delete;

  // Forgets those that were met so far.
  void Forget() {
#if defined(__SSE2__)
    _mm_setcsr(_mm_getcsr() & ~unsigned{_MM_EXCEPT_DENORM});
#endif
  }
  bool WereMet() const {
#if defined(__SSE2__)
    return (_mm_getcsr() & _MM_EXCEPT_DENORM) != 0;
#else
    return false;
#endif
  }

 private:
  std::fenv_t m_before;
};
