#include "support/file_size_limit.h"

#include <signal.h>

FileSizeLimit::FileSizeLimit(rlim_t bytes) : m_handlerBefore(signal(SIGXFSZ, SIG_IGN)) {
  getrlimit(RLIMIT_FSIZE, &m_before);
  rlimit limit = m_before;
  limit.rlim_cur = bytes;
  setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit() {
  setrlimit(RLIMIT_FSIZE, &m_before);
  signal(SIGXFSZ, m_handlerBefore);
}
