#include "audio_measures/measure.h"

#include <array>
#include <vector>

#include "audio_measures/groups.h"

namespace audio_measures {

std::span<const Group> AllGroups() {
  static const std::array groups = {LevelGroup(), ReferenceGroup(), EnhancementGroup(), EchoGroup(),
                                    CodecGroup(), TimeGroup(),      RunGroup()};
  return groups;
}

std::span<const Measure> AllMeasures() {
  static const std::vector<Measure> all = [] {
    std::vector<Measure> measures;
    for (const Group& group : AllGroups()) {
      measures.insert(measures.end(), group.measures.begin(), group.measures.end());
    }
    return measures;
  }();
  return all;
}

const Measure* FindMeasure(std::string_view name) {
  for (const Measure& measure : AllMeasures()) {
    if (measure.name == name) return &measure;
  }
  return nullptr;
}

}  // namespace audio_measures
