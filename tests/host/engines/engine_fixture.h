#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

// Runs of audio_bench on engines in libraries, each test in a folder of its own.
class EngineTest : public testing::Test {
 protected:
  static std::string Library(const std::string& name) {
    return (ENGINE_FOLDER "/lib") + name + "_engine.so";
  }

  static Finished Run(std::vector<std::string> words) {
    words.insert(words.begin(), AUDIO_BENCH);
    return RunProcess(words);
  }

  // Compresses a tone, with these words after it.
  static Finished Compress(const std::vector<std::string>& words) {
    WriteFile("in.wav",
              WavBytes({.channels = 2, .rate = 48000}, Tone(440, 20000, 48000, kFrames, 2)));
    std::vector<std::string> all = {"run", "TestDrc", "--in", "in.wav", "--out", "out.wav"};
    all.insert(all.end(), words.begin(), words.end());
    return Run(all);
  }

  // What the halving compressor makes of the tone, as a file.
  static std::string Halved() {
    std::vector<short> samples = Tone(440, 20000, 48000, kFrames, 2);
    for (short& sample : samples) sample = static_cast<short>(sample / 2);
    return SampleBytes(samples);
  }

  static constexpr int kFrames = 48000;

 private:
  TemporaryDirectory m_directory;
};
