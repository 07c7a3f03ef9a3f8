#pragma once

#include <algorithm>
#include <mutex>
#include <vector>

#include "desktop/live/loudspeaker.h"

// Keeps all that the loudspeaker plays while this object lives, silence included.
class Played : public desktop::PlayListener {
 public:
  Played() {
    m_samples.reserve(4'000'000);
    desktop::Loudspeaker::Shared().Add(this);
  }
  ~Played() override { desktop::Loudspeaker::Shared().Remove(this); }
  Played(const Played&) = delete;
  Played& operator=(const Played&) = delete;

  void OnPlayed(const desktop::PlayedBlock& block) override {
    const std::scoped_lock lock(m_mutex);
    m_samples.insert(m_samples.end(), block.played,
                     block.played + block.frames * desktop::Loudspeaker::kFormat.channels);
  }
  bool HearsSilence() const override { return true; }

  std::vector<short> Samples() const {
    const std::scoped_lock lock(m_mutex);
    return m_samples;
  }

  // The latest sample; 0 before the first.
  short Last() const {
    const std::scoped_lock lock(m_mutex);
    return m_samples.empty() ? short{0} : m_samples.back();
  }

  // From the first sample that is not silent to the last.
  std::vector<short> Sound() const {
    const std::vector<short> samples = Samples();
    const auto sounds = [](short sample) { return sample != 0; };
    const auto first = std::find_if(samples.begin(), samples.end(), sounds);
    const auto last = std::find_if(samples.rbegin(), samples.rend(), sounds).base();
    return first < last ? std::vector<short>(first, last) : std::vector<short>();
  }

 private:
  mutable std::mutex m_mutex;
  std::vector<short> m_samples;
};
