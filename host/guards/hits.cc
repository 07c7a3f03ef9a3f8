#include "guards/hits.h"

#include <algorithm>
#include <utility>

namespace host {

void GuardHits::Add(Guard guard, const Place& place, std::string text, bool grave) {
  if (!IsOn(guard)) return;
  GuardHit hit{.guard = guard, .channel = place.channel, .text = std::move(text)};
  if (place.at) hit.at = *place.at + m_facts.keptBefore;
  hit.fails = grave && m_rules[guard] == GuardAction::kFail;
  m_hits.push_back(std::move(hit));
}

std::vector<GuardHit> GuardHits::Take() {
  std::ranges::stable_sort(m_hits, {}, &GuardHit::guard);
  return std::move(m_hits);
}

}  // namespace host
