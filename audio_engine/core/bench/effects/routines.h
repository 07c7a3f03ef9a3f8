#pragma once

#include "harness/declared.h"

// Effects and music processing. The catalogue says what each routine exercises.

ROUTINE(void, TestIIREq);
ROUTINE(void, TestReverb, const char* pSrcFileName, const char* pDstFileName, int preset,
        int sampleRate, int channles);
ROUTINE(void, TestReverbPreset);
PLANNED(void, TestAudioAccelerate);
ROUTINE(void, TestHRTF);
ROUTINE(void, TestAudioMusicDetector);
ROUTINE(void, TestMdrc);
PLANNED(void, TestVoiceBeautify);
PLANNED(void, TestVoiceChangerEx);
ROUTINE(void, TestSpeexConverter);
ROUTINE(void, TestAudioResamplerEx, const char* inFile, const char* outFile, int outFS,
        int outChannels);
ROUTINE(void, TestDrc);
PLANNED(void, TestBeatTrack);
PLANNED(int, AccelerateTest);
PLANNED(int, StretchTest);
ROUTINE(void, TestEqReverb);
ROUTINE(void, TestAudioEffectModule);
PLANNED(void, TestRateChanger);
PLANNED(void, TestSoundTouchBpm);
PLANNED(void, TestSoundTouch);
