#include "engine_api/enhancement/signal_processing.h"

#include <algorithm>

#include "fake_engine/fake_engine.h"

void WebRtcSpl_MemSetW16(int16_t* samples, int16_t value, size_t length) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string buffer = engine.Buffer(samples);
  engine.Record("WebRtcSpl_MemSetW16(%s, %d, %zu)", buffer.c_str(), value, length);
  std::fill_n(samples, length, value);
}
