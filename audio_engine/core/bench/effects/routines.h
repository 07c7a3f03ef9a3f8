#pragma once

#include "harness/declared.h"

// Effects and music processing. The catalogue says what each routine exercises.

ROUTINE(void, TestIIREq);
ROUTINE(void, TestReverb, const char* pSrcFileName, const char* pDstFileName, int preset,
        int sampleRate, int channles);
ROUTINE(void, TestReverbPreset);
ROUTINE(void, TestAudioAccelerate);
ROUTINE(void, TestHRTF);
ROUTINE(void, TestAudioMusicDetector);
ROUTINE(void, TestMdrc);
ROUTINE(void, TestVoiceBeautify);
ROUTINE(void, TestVoiceChangerEx);
ROUTINE(void, TestSpeexConverter);
ROUTINE(void, TestAudioResamplerEx, const char* inFile, const char* outFile, int outFS,
        int outChannels);
ROUTINE(void, TestDrc);
ROUTINE(void, TestBeatTrack);
ROUTINE(int, AccelerateTest);
ROUTINE(int, StretchTest);
ROUTINE(void, TestEqReverb);
ROUTINE(void, TestAudioEffectModule);
ROUTINE(void, TestRateChanger);
ROUTINE(void, TestSoundTouchBpm);
ROUTINE(void, TestSoundTouch);
