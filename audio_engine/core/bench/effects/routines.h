#pragma once

#include "harness/declared.h"

// Effects and music processing. The catalogue says what each routine exercises.

PLANNED(void, TestIIREq);
PLANNED(void, TestReverb, const char* pSrcFileName, const char* pDstFileName, int preset,
        int sampleRate, int channles);
PLANNED(void, TestReverbPreset);
PLANNED(void, TestAudioAccelerate);
ROUTINE(void, TestHRTF);
PLANNED(void, TestAudioMusicDetector);
PLANNED(void, TestMdrc);
PLANNED(void, TestVoiceBeautify);
PLANNED(void, TestVoiceChangerEx);
ROUTINE(void, TestSpeexConverter);
ROUTINE(void, TestAudioResamplerEx, const char* inFile, const char* outFile, int outFS,
        int outChannels);
PLANNED(void, TestDrc);
PLANNED(void, TestBeatTrack);
PLANNED(int, AccelerateTest);
PLANNED(int, StretchTest);
PLANNED(void, TestEqReverb);
PLANNED(void, TestAudioEffectModule);
PLANNED(void, TestRateChanger);
PLANNED(void, TestSoundTouchBpm);
PLANNED(void, TestSoundTouch);
