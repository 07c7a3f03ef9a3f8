#include "audio_measures/compute.h"

#include <algorithm>
#include <iterator>

#include "audio_measures/groups.h"

namespace audio_measures {

bool Collector::Wants(std::string_view name) const {
  return std::ranges::find(m_wanted, name) != m_wanted.end();
}

bool Collector::WantsAnyOf(std::span<const Measure> measures) const {
  return std::ranges::any_of(measures, [&](const Measure& measure) { return Wants(measure.name); });
}

void Collector::Add(std::string_view name, std::optional<int> channel, Figure figure) {
  if (Wants(name)) m_figures.push_back({name, channel, figure});
}

void Collector::AddWithMean(std::string_view name, std::span<const Figure> channels) {
  double sum = 0;
  const char* reason = "";
  for (size_t i = 0; i < channels.size(); ++i) {
    Add(name, static_cast<int>(i), channels[i]);
    if (!channels[i].value) reason = channels[i].reason;
    sum += channels[i].value.value_or(0);
  }
  const bool known = *reason == '\0';
  Add(name, std::nullopt,
      known ? Known(sum / static_cast<double>(channels.size())) : Unknown(reason));
}

namespace {

struct NeededSignal {
  Needs need;
  const Signal Inputs::*signal;
  const char* missing;
};
constexpr NeededSignal kSignals[] = {{kReference, &Inputs::reference, "no reference"},
                                     {kFar, &Inputs::far, "no far end"},
                                     {kNear, &Inputs::near, "no near end"},
                                     {kInput, &Inputs::input, "no input"}};

bool IsFinite(const Signal& signal) { return std::ranges::all_of(signal.channels, AreFinite); }

// What of the inputs can be measured at all, looked at once for all measures.
class Checker {
 public:
  explicit Checker(const Inputs& inputs)
      : m_inputs(inputs), m_outputFinite(IsFinite(inputs.output)) {
    for (size_t i = 0; i < std::size(kSignals); ++i) {
      m_finite[i] = IsFinite(inputs.*kSignals[i].signal);
    }
  }

  // Why the measure has no figure of these inputs, or nullptr.
  const char* Fault(const Measure& measure) const {
    if (measure.version == 0) return "not to be had from samples, but from a run";
    const Signal& output = m_inputs.output;
    if (output.Frames() == 0) return kNoSamples;
    if (const char* fault = Fault(output, measure)) return fault;
    if (const char* fault = FaultOfLists(measure)) return fault;
    for (size_t i = 0; i < std::size(kSignals); ++i) {
      const Signal& signal = m_inputs.*kSignals[i].signal;
      const bool needed = (measure.needs & kSignals[i].need) != 0;
      const bool used = (measure.uses & kSignals[i].need) != 0 && !signal.Empty();
      if (!needed && !used) continue;
      if (signal.Empty()) return kSignals[i].missing;
      const size_t channels = signal.channels.size();
      if (channels != 1 && channels != output.channels.size()) return kOtherChannels;
      if (const char* fault = Fault(signal, measure)) return fault;
      if (signal.rate != output.rate) return kOtherRate;
      if (!m_finite[i] || !m_outputFinite) return kNotFinite;
    }
    return nullptr;
  }

 private:
  // Of what is told beside the signals.
  const char* FaultOfLists(const Measure& measure) const {
    const auto needs = [&](Needs need) { return (measure.needs & need) != 0; };
    if (needs(kBytes) && !m_inputs.codedBytes) return "no coded stream";
    if (needs(kFrames) && !m_inputs.codedFrames) return "no count of coded frames";
    if (needs(kBeats) && (!m_inputs.beats || !m_inputs.trueBeats)) return "no lists of beats";
    return nullptr;
  }

  static const char* Fault(const Signal& signal, const Measure& measure) {
    if (signal.rate < measure.lowestRate || signal.rate > measure.highestRate) return kWrongRate;
    const auto frames = static_cast<double>(signal.Frames());
    return frames < measure.leastSeconds * signal.rate ? kTooShort : nullptr;
  }

  const Inputs& m_inputs;
  bool m_outputFinite;
  bool m_finite[std::size(kSignals)] = {};
};

// The figures of one group, of what of it can be computed.
Collector ComputeGroup(const Inputs& inputs, const Checker& checker, const Group& group,
                       std::span<const std::string_view> names) {
  std::vector<std::string_view> wanted;
  for (const Measure& measure : group.measures) {
    const bool named = std::ranges::find(names, measure.name) != names.end();
    if (named && checker.Fault(measure) == nullptr) wanted.push_back(measure.name);
  }
  const bool any = !wanted.empty();
  Collector collector(std::move(wanted));
  if (any && group.compute != nullptr) group.compute(inputs, collector);
  return collector;
}

}  // namespace

std::vector<NamedFigure> Compute(const Inputs& inputs, std::span<const std::string_view> names) {
  const Checker checker(inputs);
  std::vector<NamedFigure> computed;
  for (const Group& group : AllGroups()) {
    const Collector collector = ComputeGroup(inputs, checker, group, names);
    computed.insert(computed.end(), collector.Figures().begin(), collector.Figures().end());
  }
  std::vector<NamedFigure> figures;
  for (const std::string_view name : names) {
    const size_t before = figures.size();
    std::ranges::copy_if(computed, std::back_inserter(figures),
                         [&](const NamedFigure& figure) { return figure.name == name; });
    if (figures.size() > before) continue;
    const Measure* const measure = FindMeasure(name);
    const char* const fault = measure == nullptr ? "no such measure" : checker.Fault(*measure);
    figures.push_back({name, std::nullopt, Unknown(fault)});
  }
  return figures;
}

}  // namespace audio_measures
