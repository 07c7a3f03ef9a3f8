#pragma once

#include <string>
#include <vector>

#include "measure/course.h"
#include "measure/sound.h"

namespace host {

// What a picture of a recording shows.
struct Plot {
  std::string title = {};
  const MeasuredSound& sound;
  std::vector<Course> courses = {};
};

// A picture as SVG: the wave of each channel, the spectrum in the course of time, and a panel for
// each course.
std::string PlotSvg(const Plot& plot);

}  // namespace host
