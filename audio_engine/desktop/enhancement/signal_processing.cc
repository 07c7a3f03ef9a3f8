#include "engine_api/enhancement/signal_processing.h"

#include <algorithm>

void WebRtcSpl_MemSetW16(int16_t* samples, int16_t value, size_t length) {
  std::fill_n(samples, length, value);
}
