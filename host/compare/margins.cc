#include "compare/margins.h"

#include "audio_measures/measure.h"

namespace host {

double MarginOfMeasure(const std::string& name) {
  const audio_measures::Measure* const measure = audio_measures::FindMeasure(name);
  return measure == nullptr ? 0 : measure->margin;
}

}  // namespace host
