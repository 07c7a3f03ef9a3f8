#pragma once

#include <string>
#include <vector>

#include "recording/stage.h"

namespace host {

// Recordings made and read by libsndfile, for tests of what stages them.

// A sound in the words of <sndfile.h>; full scale of the samples is 1.
struct Sound {
  int format = 0;
  int rate = 48000;
  int channels = 1;
  std::vector<double> samples = {};
};

void WriteSound(const std::string& path, const Sound& sound);
Sound ReadSound(const std::string& path);

// A sine of this level (dBFS of its peak), alike in all channels.
std::vector<double> Sine(double frequency, double level, int rate, int frames, int channels = 1);

// The 16-bit samples of a file from a byte on.
std::vector<short> Shorts(const std::string& path, size_t from);
std::vector<float> Floats(const std::string& path, size_t from);

// Stages one recording into "work", at "in".
Staging StageOne(const std::string& source, const Form& form, const StageWishes& wishes = {});

// The forms of inputs in which tests take recordings.
Form WaveForm(WaveFormat format = {});
Form RawShorts(WaveFormat format);

// What was done, step by step: "rate, dither".
std::string StepNames(const Staging& staging);

std::string FaultText(const Staging& staging);

}  // namespace host
