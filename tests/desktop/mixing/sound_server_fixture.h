#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "desktop/devices/audio_device.h"
#include "support/captured_stderr.h"
#include "support/real_time.h"
#include "support/sound_server.h"
#include "support/temporary_directory.h"

// A sound server of its own for each test, whose microphone hears the loudspeaker.
class SoundServerTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!m_server.IsRunning()) GTEST_SKIP() << "pulseaudio is not installed";
    desktop::UseNullDevices(0);
    setenv("PULSE_SINK", "mic", 1);
  }
  void TearDown() override {
    m_time.Judge();
    unsetenv("PULSE_SINK");
    desktop::UseNullDevices(1);
  }

  int LinesWith(const char* text) const {
    int count = 0;
    for (const std::string& line : m_log.Lines()) count += line.find(text) != std::string::npos;
    return count;
  }

  InRealTime m_time;
  SoundServer m_server;
  const TemporaryDirectory m_directory;
  const CapturedStderr m_log;
};
