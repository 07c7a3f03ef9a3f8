#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "desktop/live/loudspeaker.h"
#include "desktop/platform/step_clock.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/signals.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

// Files to be played on a device of no sound, on a clock of the test's.
class FilePlayerFixture : public testing::Test {
 protected:
  void SetUp() override { desktop::UseNullDevices(5); }

  // Noise that is nowhere silent, in the loudspeaker's format.
  std::vector<short> Noise(int frames) {
    std::vector<short> noise = ToShorts(WhiteNoise(2 * frames, 0.5, 7));
    std::replace(noise.begin(), noise.end(), short{0}, short{1});
    return noise;
  }

  void Write(const char* name, const std::vector<short>& samples, int rate = 48000,
             int channels = 2) {
    WriteFile(name, WavBytes({.channels = static_cast<uint16_t>(channels),
                              .rate = static_cast<uint32_t>(rate)},
                             samples));
  }

  std::optional<desktop::StepClock> m_clock{std::in_place};
  const TemporaryDirectory m_directory;
  const CapturedStderr m_log;
};
