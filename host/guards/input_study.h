#pragma once

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

#include "audio_measures/phase_fit.h"
#include "guards/signal.h"
#include "guards/survey.h"

namespace host {

// What guards work out of an input alone, kept for all outputs that were made of it.
class InputStudy {
 public:
  // The input must stay.
  explicit InputStudy(const Signal& input) : m_input(input) {}

  const Signal& Input() const { return m_input; }

  // As SurveyOf.
  const std::vector<ChannelSurvey>& Survey(int channels);

  // The spectra of the stretch of PhaseFit::kBlock frames at a place of a channel, which may be
  // Track::kMean, at a rate.
  struct Stretch {
    int rate = 0;
    int channel = 0;
    int64_t place = 0;
    bool operator<(const Stretch& other) const {
      return std::tie(rate, channel, place) < std::tie(other.rate, other.channel, other.place);
    }
  };
  // Null where they are not kept yet.
  const audio_measures::PhaseFit::Spectra* Find(const Stretch& stretch) const;
  void Keep(const Stretch& stretch, audio_measures::PhaseFit::Spectra spectra);

 private:
  const Signal& m_input;
  std::map<int, std::vector<ChannelSurvey>> m_surveys = {};  // By their number of channels.
  std::map<Stretch, audio_measures::PhaseFit::Spectra> m_spectra = {};
};

}  // namespace host
