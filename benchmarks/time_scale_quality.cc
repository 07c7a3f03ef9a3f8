// How a change of speed sounds.
//
// time_scale_quality make IN.wav FOLDER   writes what the engine and libsoundtouch make of IN at
//                                         twice, half, 1.25 times and 0.8 times the speed
// time_scale_quality judge IN.wav OUT.wav...   prints for each output its length against the input,
//                                         its roughness and the sharpness of its onsets, both
//                                         against those of the input
//
// Roughness is how much the level of each band of half an octave swings about its mean of 40 ms,
// and sharpness is the mean of the steepest rises in 10 ms, three for each second of the input:
// joins that do not fit make a sound rougher, and what is faded or doubled makes its onsets blunt.

#include <SoundTouch.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "desktop/dsp/real_fft.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/audio_accelerate.h"
#include "engine_api/effects/rate_changer.h"
#include "engine_api/effects/sound_process.h"

namespace {

struct Sound {
  std::vector<short> samples;
  int rate = 0;
  int channels = 0;
  size_t Frames() const { return samples.size() / static_cast<size_t>(channels); }
};

Sound Read(const char* name) {
  zuwebrtc::WavReader reader(name);
  Sound sound{std::vector<short>(reader.num_samples()), reader.sample_rate(),
              reader.num_channels()};
  reader.ReadSamples(static_cast<unsigned>(sound.samples.size()), sound.samples.data());
  return sound;
}

void Write(const std::string& name, const Sound& like, const std::vector<short>& samples) {
  zuwebrtc::WavWriter writer(name, like.rate, like.channels);
  writer.WriteSamples(samples.data(), static_cast<unsigned>(samples.size()));
}

std::vector<short> ByRateChanger(Sound sound, double speed) {
  RateChanger changer(true);
  changer.SetEnabled(true);
  changer.SetRatio(speed);
  changer.SetFsAndCh(sound.rate, sound.channels);
  std::string bytes;
  std::vector<short> out;
  const size_t frames = static_cast<size_t>(sound.rate) / 100;
  const size_t block = frames * static_cast<size_t>(sound.channels);
  for (size_t at = 0; at + block <= sound.samples.size(); at += block) {
    changer.Process(&sound.samples[at], static_cast<int>(frames), sound.channels, bytes);
    const size_t end = out.size();
    out.resize(end + bytes.size() / sizeof(short));
    if (!bytes.empty()) memcpy(&out[end], bytes.data(), bytes.size());
  }
  return out;
}

std::vector<short> ByAccelerator(Sound sound, double speed) {
  IAudioAccelerate* const accelerator = CreateAudioAccelerate();
  accelerator->SetEnabled(true);
  accelerator->SetAccelerateRate(100 * (speed - 1));
  std::vector<short> out;
  const size_t frames = static_cast<size_t>(sound.rate) / 100;
  const size_t block = frames * static_cast<size_t>(sound.channels);
  for (size_t at = 0; at + block <= sound.samples.size(); at += block) {
    const int made = accelerator->Process(reinterpret_cast<char*>(&sound.samples[at]),
                                          static_cast<int>(frames), sound.rate, sound.channels, 16);
    out.insert(out.end(), &sound.samples[at], &sound.samples[at] + made * sound.channels);
  }
  accelerator->Destroy();
  return out;
}

std::vector<short> ByBlocks(const Sound& sound, bool shorter) {
  const auto rate = static_cast<unsigned>(sound.rate);
  const auto channels = static_cast<unsigned>(sound.channels);
  const unsigned block = 3 * (rate / 100) * channels;
  std::vector<short> out;
  std::vector<short> part(2 * block);
  for (size_t at = 0; at + block <= sound.samples.size(); at += block) {
    unsigned made = static_cast<unsigned>(part.size());
    const short* in = &sound.samples[at];
    if (shorter) {
      AccelerateSoundProcess(rate, channels, in, block, part.data(), &made, true);
    } else {
      StretchSoundProcess(rate, channels, in, block, part.data(), &made);
    }
    out.insert(out.end(), part.begin(), part.begin() + made);
  }
  return out;
}

std::vector<short> BySoundTouch(const Sound& sound, double speed) {
  soundtouch::SoundTouch changer;
  const auto channels = static_cast<unsigned>(sound.channels);
  changer.setSampleRate(static_cast<unsigned>(sound.rate));
  changer.setChannels(channels);
  changer.setTempo(speed);
  std::vector<float> floats(sound.samples.begin(), sound.samples.end());
  for (float& sample : floats) sample /= 32768;
  changer.putSamples(floats.data(), static_cast<unsigned>(sound.Frames()));
  changer.flush();
  std::vector<short> out;
  std::vector<float> part(1024 * channels);
  while (const unsigned frames = changer.receiveSamples(part.data(), 1024)) {
    for (size_t i = 0; i < frames * channels; ++i) {
      out.push_back(
          static_cast<short>(std::lrint(std::clamp(32768 * part[i], -32768.0F, 32767.0F))));
    }
  }
  return out;
}

void Make(const char* name, const std::string& folder) {
  const Sound in = Read(name);
  for (const auto& [speed, text] :
       {std::pair{2.0, "2"}, {0.5, "0.5"}, {1.25, "1.25"}, {0.8, "0.8"}}) {
    const std::string end = std::string("_") + text + ".wav";
    Write((folder + "/rate_changer").append(end), in, ByRateChanger(in, speed));
    Write((folder + "/soundtouch").append(end), in, BySoundTouch(in, speed));
  }
  Write(folder + "/accelerate_1.25.wav", in, ByAccelerator(in, 1.25));
  Write(folder + "/accelerate_sound.wav", in, ByBlocks(in, true));
  Write(folder + "/stretch_sound.wav", in, ByBlocks(in, false));
}

// The levels of the bands, a thousand times a second.
std::vector<std::vector<double>> Levels(const Sound& sound) {
  const auto size = static_cast<size_t>(sound.rate) * 12 / 1000 / 2 * 2;
  desktop::RealFft fft(size);
  std::vector<float> block(size);
  std::vector<std::complex<float>> bins(fft.Bins());
  std::vector<double> edges;
  for (double edge = 200; edge < 0.4 * sound.rate && edge < 8000; edge *= std::sqrt(2)) {
    edges.push_back(edge * static_cast<double>(size) / sound.rate);
  }
  std::vector<std::vector<double>> levels(edges.size() - 1);
  const auto channels = static_cast<size_t>(sound.channels);
  for (size_t step = 0;; ++step) {
    const size_t start = step * static_cast<size_t>(sound.rate) / 1000;
    if (start + size > sound.Frames()) return levels;
    for (auto& band : levels) band.push_back(0);
    for (size_t c = 0; c < channels; ++c) {
      for (size_t i = 0; i < size; ++i) {
        const double window =
            0.5 - 0.5 * std::cos(2 * M_PI * static_cast<double>(i) / static_cast<double>(size));
        block[i] = static_cast<float>(window * sound.samples[(start + i) * channels + c]);
      }
      fft.Forward(block.data(), bins.data());
      for (size_t band = 0; band < levels.size(); ++band) {
        for (auto k = static_cast<size_t>(edges[band]) + 1;
             static_cast<double>(k) <= edges[band + 1]; ++k) {
          levels[band].back() += static_cast<double>(std::norm(bins[k]));
        }
      }
    }
    for (auto& band : levels) band.back() = std::sqrt(band.back());
  }
}

double Roughness(const std::vector<std::vector<double>>& levels) {
  double swing = 0, whole = 0;
  for (const auto& band : levels) {
    double sum = 0, rough = 0, power = 0;
    for (size_t i = 0; i < band.size(); ++i) {
      sum += band[i];
      if (i < 40) continue;
      sum -= band[i - 40];
      const double mean = sum / 40;
      rough += (band[i - 20] - mean) * (band[i - 20] - mean);
      power += mean * mean;
    }
    // Each band counts alike, as far as it holds anything.
    if (power <= 0) continue;
    swing += std::sqrt(rough / power);
    whole += 1;
  }
  return swing / whole;
}

double Sharpness(const std::vector<std::vector<double>>& levels, double seconds) {
  std::vector<double> rises;
  double mean = 0;
  for (const auto& band : levels) {
    for (const double level : band)
      mean += level / static_cast<double>(band.size() * levels.size());
  }
  for (size_t i = 10; i < levels[0].size(); ++i) {
    double rise = 0;
    for (const auto& band : levels) {
      const double floor = 0.1 * mean;
      rise += std::max(std::log((band[i] + floor) / (band[i - 10] + floor)), 0.0);
    }
    rises.push_back(rise / static_cast<double>(levels.size()));
  }
  const auto wanted = static_cast<size_t>(3 * seconds);
  double sum = 0;
  size_t count = 0;
  for (; count < wanted; ++count) {
    const auto most = std::max_element(rises.begin(), rises.end());
    if (*most <= 0) break;
    sum += *most;
    const auto at = most - rises.begin();
    const auto size = static_cast<std::ptrdiff_t>(rises.size());
    std::fill(rises.begin() + std::max<std::ptrdiff_t>(at - 40, 0),
              rises.begin() + std::min<std::ptrdiff_t>(at + 40, size), 0.0);
  }
  return count > 0 ? sum / static_cast<double>(count) : 0;
}

void Judge(const char* inName, char** outNames, int count) {
  const Sound in = Read(inName);
  const auto levels = Levels(in);
  const double seconds = static_cast<double>(in.Frames()) / in.rate;
  const double roughness = Roughness(levels), sharpness = Sharpness(levels, seconds);
  for (int i = 0; i < count; ++i) {
    const Sound out = Read(outNames[i]);
    const auto made = Levels(out);
    const char* slash = std::strrchr(outNames[i], '/');
    std::printf("%-24s length %.3f, roughness %.3f, sharpness %.3f\n",
                slash == nullptr ? outNames[i] : slash + 1,
                static_cast<double>(out.Frames()) / static_cast<double>(in.Frames()),
                Roughness(made) / roughness, Sharpness(made, seconds) / sharpness);
  }
}

}  // namespace

int main(int count, char** words) {
  if (count == 4 && std::string(words[1]) == "make") {
    Make(words[2], words[3]);
  } else if (count >= 4 && std::string(words[1]) == "judge") {
    Judge(words[2], words + 3, count - 3);
  } else {
    std::fprintf(stderr, "time_scale_quality make IN.wav FOLDER | judge IN.wav OUT.wav...\n");
    return 2;
  }
  return 0;
}
