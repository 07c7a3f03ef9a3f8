#include "compare/pair_results.h"

#include <unordered_map>

#include "compare/case_pairing.h"

namespace host {

namespace {

using Places = std::unordered_map<std::string_view, const ComparedCase*>;

Places PlacesOf(const ResultSet& set) {
  Places places;
  for (const ComparedCase& one : set.cases) places.emplace(one.id, &one);
  return places;
}

// A cluster for each case; a case that names none is one by itself.
std::vector<size_t> ClustersOf(const std::vector<const ComparedCase*>& cases) {
  std::unordered_map<std::string_view, size_t> numbers;
  std::vector<size_t> clusters;
  size_t next = 0;
  for (const ComparedCase* const one : cases) {
    if (one->cluster.empty()) {
      clusters.push_back(next++);
      continue;
    }
    const auto [entry, isNew] = numbers.try_emplace(one->cluster, next);
    if (isNew) ++next;
    clusters.push_back(entry->second);
  }
  if (numbers.empty()) clusters.clear();
  return clusters;
}

}  // namespace

PairedResults PairResults(const ResultSet& a, const ResultSet& b) {
  PairedResults results;
  CasePairing pairing(a, b, results);
  const Places inA = PlacesOf(a);
  const Places inB = PlacesOf(b);
  for (const ComparedCase& one : a.cases) {
    if (const auto other = inB.find(one.id); other != inB.end()) {
      pairing.Add(one, *other->second);
    } else {
      results.gone.push_back({one.id});
    }
  }
  for (const ComparedCase& one : b.cases) {
    if (!inA.contains(one.id)) results.added.push_back({one.id});
  }
  results.clusters = ClustersOf(results.cases);
  return results;
}

}  // namespace host
