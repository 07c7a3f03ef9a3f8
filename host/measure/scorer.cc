#include "measure/scorer.h"

#include <algorithm>

namespace host {

const Scorer* FindScorer(std::span<const Scorer> scorers, std::string_view name) {
  const auto found = std::ranges::find(scorers, name, &Scorer::name);
  return found == scorers.end() ? nullptr : &*found;
}

std::map<std::string, std::string> ScorerWords(const Scorer& scorer, int rate) {
  return {{"output", "output.wav"}, {"reference", "reference.wav"}, {"far", "far.wav"},
          {"near", "near.wav"},     {"input", "input.wav"},         {"rate", std::to_string(rate)},
          {"folder", scorer.folder}};
}

}  // namespace host
