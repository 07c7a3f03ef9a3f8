#include <thread>

#include "engine/engine_work.h"

namespace host {

void FinishEngineWork(std::chrono::milliseconds limit, bool runsOn) {
  if (runsOn) std::this_thread::sleep_for(limit);
}

}  // namespace host
