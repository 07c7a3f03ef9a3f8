#pragma once

#include <ctime>

// CPU time of this thread, in seconds. Other processes and waiting do not count.
inline double CpuSeconds() {
  timespec time;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The CPU seconds that `work` takes.
template <typename Work>
double TimeOf(Work work) {
  const double start = CpuSeconds();
  work();
  return CpuSeconds() - start;
}
