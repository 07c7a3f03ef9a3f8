#include "support/no_thread.h"

#include <pthread.h>

#include <cstddef>

void AllowNoThread() {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, size_t{1} << 47);
  pthread_setattr_default_np(&attributes);
}
