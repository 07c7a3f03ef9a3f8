// One side of a call, and pushed PCM. What the channel plays in its second phase is what it packed
// in the first: listen for gaps, for the delay at the start, and for the codec.

#include "engine_api/mixing/audio_channel.h"

#include <cstdio>

#include "bench/mixing/routines.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/platform/clock.h"
#include "harness/audio_frame_packer_test_notify.h"
#include "harness/audio_frame_player_test_notify.h"
#include "harness/leave_alive.h"
#include "harness/log_sinks.h"

using harness::LeaveAlive;

// Packs 10 s of the microphone into "pack.enc" and plays that file for 10 s.
// Deliberate: the capture is not closed and neither channel nor engine is destroyed. Destroyed, a
// frame that still waits would not be heard.
void TestAudioChannel(int codecType) {
  char packFile[] = "pack.enc";
  const bool isVadOn = false;
  IAudioEngine* const audioEngine = CreateAudioEngine(nullptr, 0, nullptr, PrintSdkLog);
  audioEngine->Start(AudioEngineFeatureVOIP);
  IAudioChannel* const channel = IAudioChannel::Create();

  auto* const notify = new AudioFramePackerTestNotify(packFile);
  channel->EnablePackerVad(isVadOn);
  channel->StartPacker(notify, codecType, 48000, 48000, 1, 2);
  channel->OpenCapture();
  SleepMs(10000);
  channel->StopPacker();
  delete notify;  // Closes the file.

  auto* const playerNotify =
      new AudioFramePlayerTestNotify(fopen(packFile, "rb"), packFile, codecType, isVadOn);
  channel->StartPlay(playerNotify, 0, 44100, 2);
  SleepMs(10000);
  channel->StopPlay(0);
  delete playerNotify;  // Closes the file.

  LeaveAlive(audioEngine);
  LeaveAlive(channel);
}
