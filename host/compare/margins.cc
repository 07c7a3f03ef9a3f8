#include "compare/margins.h"

#include "audio_measures/measure.h"

namespace host {

double MarginOfMeasure(const std::string& name) {
  const audio_measures::Measure* const measure = audio_measures::FindMeasure(name);
  return measure == nullptr ? 0 : measure->margin;
}

std::optional<double> DeclaredMargin(const ResultSet& a, const ResultSet& b,
                                     const std::string& name) {
  for (const ResultSet* const set : {&b, &a}) {
    for (const auto& [declared, margin] : set->margins) {
      if (declared == name) return margin;
    }
  }
  return std::nullopt;
}

}  // namespace host
