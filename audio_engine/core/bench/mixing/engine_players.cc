// The whole engine on a device: a file player, a recorder, a saver beside two players, and a speech
// message. Listen for gaps, and for what reaches the files: the microphone alone, or with the
// players in it. Most of what these routines start stays alive; each is the last one of its
// process.

#include <cstdio>

#include "bench/mixing/routines.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/audio_file_player.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "engine_api/platform/clock.h"
#include "harness/capture_file_player.h"
#include "harness/leave_alive.h"
#include "harness/log_sinks.h"
#include "harness/speech_msg_player_notify.h"

using harness::LeaveAlive;

// Starts to play "music.wav" and returns at once.
// Deliberate: engine, capture and player are left running. Stopped here, nothing would be heard.
void TestFilePlayer() {
  char fileName[] = "music.wav";
  IAudioEngine* const audioEngine = CreateAudioEngine(nullptr, 0, nullptr, PrintSdkLog);
  LeaveAlive(audioEngine);
  LeaveAlive(audioEngine->CreateAudioCapture());
  // Deliberate: never handed to the capture and never freed. Handed over and started, it would
  // write "capture.pcm".
  auto* const capture_file_player = new CaptureFilePlayer;
  LeaveAlive(capture_file_player);

  IAudioFilePlayer* const audioPlayer = IAudioFilePlayer::Create();
  audioPlayer->Open(fileName);
  audioPlayer->Play();
  audioPlayer->SetFeedBackToMicMode(AudioSourceTypeMic);
  LeaveAlive(audioPlayer);
}

// Records the microphone into "audiorecorder.aac".
// Deliberate: never returns. It records until the process is ended.
void TestAudioRecorder() {
  char fileName[] = "audiorecorder.aac";
  IAudioEngine* const audioEngine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
  LeaveAlive(audioEngine);
  audioEngine->Start(AudioEngineFeatureVOIP);
  audioEngine->StartAudioSaver(fileName, AudioSaverOnlyCapture, AudioSaverFileAppend);

  for (;;) SleepMs(10);
}

// Records 10 s of the microphone path with players fed into it: 5 s with one, 5 s with two.
// Deliberate: players, capture and engine are left alive. Ended here, the players would stop with
// the saver instead of going on.
void TestAudioSaver() {
  char fileName[] = "gangqin.wav";
  char fileName2[] = "gangqin2.wav";
  char saverName[] = "saver.aac";
  IAudioEngine* const audioEngine = CreateAudioEngine(nullptr, 0, nullptr, PrintSdkLog);
  audioEngine->Start(AudioEngineFeatureLiveBroadcast);

  IAudioFilePlayer* const audioPlayer = IAudioFilePlayer::Create();
  audioPlayer->Open(fileName);
  audioPlayer->Play();
  audioPlayer->SetFeedBackToMicMode(AudioSourceTypeMix);
  IAudioCapture* const capture = audioEngine->CreateAudioCapture();
  capture->Open(44100, 2, 16);
  capture->Start(nullptr);
  audioEngine->StartAudioSaver(saverName, AudioSaverOnlyCapture, AudioSaverFileOverride);
  SleepMs(5000);

  IAudioFilePlayer* const audioPlayer2 = IAudioFilePlayer::Create();
  audioPlayer2->Open(fileName2);
  audioPlayer2->Play();
  audioPlayer2->SetFeedBackToMicMode(AudioSourceTypeMix);
  SleepMs(5000);

  audioEngine->StopAudioSaver();
  LeaveAlive(audioEngine);
  LeaveAlive(audioPlayer);
  LeaveAlive(capture);
  LeaveAlive(audioPlayer2);
}

// Plays a speech message for 60 s, whatever its length, and says how long it is.
void TestSpeechMsg() {
  const int testTime = 60000;
  // Deliberate: never freed. Freed before the player has stopped, the player would call into it.
  auto* const notify = new SpeechMsgPlayerNotify;
  LeaveAlive(notify);
  ISpeechMsgPlayer* const player = ISpeechMsgPlayer::CreateAudioPlayer("");
  player->Init();
  const int totalTime = static_cast<int>(player->GetRecordFileTime());

  player->Start(notify);
  SleepMs(testTime);
  player->Stop();
  player->Destroy();

  printf("Play Done, totalTime = %d.\n", totalTime);
}
