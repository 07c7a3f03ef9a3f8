#include "desktop/platform/background.h"
#include "engine/engine_work.h"

namespace host {

void FinishEngineWork(std::chrono::milliseconds limit, bool /*runsOn*/) {
  desktop::FinishBackgroundWork(limit);
}

}  // namespace host
