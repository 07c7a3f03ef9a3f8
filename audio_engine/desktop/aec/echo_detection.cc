#include "engine_api/aec/echo_detection.h"

#include <algorithm>
#include <memory>
#include <new>

#include "desktop/aec/parts/delay_tracker.h"
#include "desktop/aec/parts/mono_input.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"

namespace {

struct Detector {
  Detector(int rate, int maxDelayMs)
      : far(rate, 1),
        near(rate, 1),
        tracker(desktop::MonoInput::TrackedRate(rate), maxDelayMs),
        ignored(rate / 50) {}

  desktop::MonoInput far;
  desktop::MonoInput near;
  desktop::DelayTracker tracker;

  // How many samples of either end are still to be passed over.
  int ignored;
};

}  // namespace

void* echo_detection_create(const void*, int rate, int maxDelayMs) {
  if (!desktop::MonoInput::Accepts(rate, 1)) {
    desktop::LogRefusal("no echo can be detected at %d Hz", rate);
    return nullptr;
  }
  try {
    return std::make_unique<Detector>(rate, maxDelayMs).release();
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("no memory to detect echo");
    return nullptr;
  }
}

int echo_detection_process(void* detector, const short* farend, const short* nearend, int count) {
  if (detector == nullptr || farend == nullptr || nearend == nullptr || count < 0) return -1;
  auto& ends = *static_cast<Detector*>(detector);
  // Both ends may start with the same click, as of a header taken for samples. It would outshine
  // the high frequencies of speech for seconds.
  const int skipped = std::min(ends.ignored, count);
  ends.ignored -= skipped;
  farend += skipped;
  nearend += skipped;
  count -= skipped;
  ends.far.Feed(farend, desktop::Size(count),
                [&ends](const short* mono, size_t frames) { ends.tracker.AddFar(mono, frames); });
  ends.near.Feed(nearend, desktop::Size(count),
                 [&ends](const short* mono, size_t frames) { ends.tracker.AddNear(mono, frames); });
  return 0;
}

int get_echo_detection_result(void* detector) {
  if (detector == nullptr) return 0;
  const desktop::DelayTracker& tracker = static_cast<Detector*>(detector)->tracker;
  return tracker.MedianScore() >= desktop::DelayTracker::kEchoScore ? 1 : 0;
}

void echo_detection_free(void* detector) { delete static_cast<Detector*>(detector); }
