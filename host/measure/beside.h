#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measure/measure_file.h"
#include "measure/sound.h"

namespace host {

// The recordings beside an output, at its rate.
class Beside {
 public:
  // Reads what the measures that are named look at; adds to `brought`. Throws UnreadableSound.
  Beside(const MeasuredAgainst& against, std::span<const std::string_view> names, int rate,
         std::vector<BroughtToRate>& brought);

  // Both stay alive.
  audio_measures::Inputs With(const MeasuredSound& output) const;

 private:
  MeasuredSound m_reference;
  MeasuredSound m_far;
  MeasuredSound m_near;
  MeasuredSound m_input;
};

}  // namespace host
