#include "measure/beside.h"

#include "audio_measures/measure.h"

namespace host {

namespace {

MeasuredSound Read(const MeasuredSource& source, int rate, std::vector<BroughtToRate>& brought) {
  if (source.path.empty()) return {};
  try {
    OpenSound sound(source.path, source.raw);
    if (sound.Format().rate != rate) brought.push_back({source.path, sound.Format().rate, rate});
    return sound.ReadAll(rate);
  } catch (const UnreadableSound& error) {
    throw UnreadableSound{source.path + ": " + error.fault};
  }
}

}  // namespace

Beside::Beside(const MeasuredAgainst& against, std::span<const std::string_view> names, int rate,
               std::vector<BroughtToRate>& brought) {
  unsigned wanted = audio_measures::kNothing;
  for (const std::string_view name : names) {
    const audio_measures::Measure& measure = *audio_measures::FindMeasure(name);
    wanted |= measure.needs | measure.uses;
  }
  const auto read = [&](unsigned need, const MeasuredSource& source) {
    return (wanted & need) != 0 ? Read(source, rate, brought) : MeasuredSound();
  };
  m_reference = read(audio_measures::kReference, against.reference);
  m_far = read(audio_measures::kFar, against.far);
  m_near = read(audio_measures::kNear, against.near);
  m_input = read(audio_measures::kInput, against.input);
}

audio_measures::Inputs Beside::With(const MeasuredSound& output) const {
  return {.output = output.View(),
          .reference = m_reference.View(),
          .far = m_far.View(),
          .near = m_near.View(),
          .input = m_input.View(),
          .fullScale = output.fullScale};
}

}  // namespace host
