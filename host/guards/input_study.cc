#include "guards/input_study.h"

#include <utility>

namespace host {

const std::vector<ChannelSurvey>& InputStudy::Survey(int channels) {
  auto found = m_surveys.find(channels);
  if (found == m_surveys.end()) {
    found = m_surveys.emplace(channels, SurveyOf(m_input, channels)).first;
  }
  return found->second;
}

const audio_measures::PhaseFit::Spectra* InputStudy::Find(const Stretch& stretch) const {
  const auto found = m_spectra.find(stretch);
  return found == m_spectra.end() ? nullptr : &found->second;
}

void InputStudy::Keep(const Stretch& stretch, audio_measures::PhaseFit::Spectra spectra) {
  m_spectra.insert_or_assign(stretch, std::move(spectra));
}

}  // namespace host
