#include "guards/guards.h"

#include "guards/fact_guards.h"
#include "guards/hits.h"
#include "guards/signal_guards.h"

namespace host {

std::vector<GuardHit> CheckGuards(const GuardInput& input) {
  GuardHits hits(input);
  CheckFacts(input, hits);
  if (input.output != nullptr) CheckSignals(input, hits);
  return hits.Take();
}

}  // namespace host
