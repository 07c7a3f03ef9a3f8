#pragma once

#include "harness/declared.h"

// Mixing, recording, playback and whole engines. The catalogue says what each routine exercises.

ROUTINE(void, TestAudioMixer);
ROUTINE(void, TestRecordMixer);
ROUTINE(void, TestKaraokeFileMixer);
ROUTINE(void, TestKaraokeRecorder);
ROUTINE(void, TestFilePlayer);
ROUTINE(void, TestAudioRecorder);
ROUTINE(void, TestAudioSaver);
ROUTINE(void, TestSpeechMsg);
ROUTINE(void, TestAudioChannel, int codecType);
ROUTINE(void, TestPushPcm);
