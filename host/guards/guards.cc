#include "guards/guards.h"

#include "guards/fact_guards.h"
#include "guards/hits.h"
#include "guards/whole_guards.h"

namespace host {

std::vector<GuardHit> CheckGuards(const GuardInput& input) {
  GuardHits hits(input);
  CheckFacts(input, hits);
  if (input.output != nullptr) {
    CheckLength(input, hits);
    CheckFinite(input, hits);
  }
  return hits.Take();
}

}  // namespace host
