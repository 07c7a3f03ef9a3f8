#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "audio_measures/measure.h"

namespace audio_measures {

// Takes the figures of the measures that are wanted, as a group computes them.
class Collector {
 public:
  explicit Collector(std::vector<std::string_view> wanted) : m_wanted(std::move(wanted)) {}

  std::span<const std::string_view> Wanted() const { return m_wanted; }
  bool Wants(std::string_view name) const;
  // Whether any of them is wanted, for what several measures share.
  bool WantsAnyOf(std::span<const Measure> measures) const;

  // What is not wanted is dropped.
  void Add(std::string_view name, std::optional<int> channel, Figure figure);
  // One figure per channel, and their mean: unknown where one of them is.
  void AddWithMean(std::string_view name, std::span<const Figure> channels);

  std::span<const NamedFigure> Figures() const { return m_figures; }

 private:
  std::vector<std::string_view> m_wanted;
  std::vector<NamedFigure> m_figures;
};

// What stands beside a channel of the output: the same channel, or the only one.
inline std::span<const float> ChannelFor(const Signal& signal, size_t channel) {
  return signal.channels.size() == 1 ? signal.channels.front() : signal.channels[channel];
}

// Measures that stand together in the list and share what they are computed from. `compute` meets
// inputs that have what every measure that is wanted needs, at a rate and of a length that it
// takes.
struct Group {
  std::span<const Measure> measures;
  void (*compute)(const Inputs& inputs, Collector& collector) = nullptr;  // None for a run's.
};

Group LevelGroup();
Group ReferenceGroup();
Group EnhancementGroup();
Group EchoGroup();
Group CodecGroup();
Group TimeGroup();
Group RunGroup();

std::span<const Group> AllGroups();

}  // namespace audio_measures
