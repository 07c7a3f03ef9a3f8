#include "desktop/mixing/parts/capture_cleaning.h"

namespace desktop {

std::atomic<bool>& CleansCapture() {
  static std::atomic<bool> cleans = false;
  return cleans;
}

}  // namespace desktop
