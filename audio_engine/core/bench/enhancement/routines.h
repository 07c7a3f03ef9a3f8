#pragma once

#include "harness/declared.h"

// Speech enhancement, noise and voice activity. The catalogue says what each routine exercises.

PLANNED(void, TestNoizeus);
ROUTINE(void, TestAGCProcess, const char* pSrcFileName, const char* pDstFileName);
PLANNED(void, TestVADProcess, const char* pSrcFileName, const char* pDstFileName,
        const char* pResultFileName);
PLANNED(float, MeasureAverageSNR, FILE* cf, FILE* pf);
PLANNED(float, MeasureSpeechSNR, int no, FILE* cf, FILE* pf);
PLANNED(void, TestNoizeusEx, int32_t ns, int32_t ms);
ROUTINE(void, TestZUAudioProcessing, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName);
PLANNED(void, TestHPFProcess, const char* pSrcFileName, const char* pDstFileName);
PLANNED(void, TestVADProcessRefined, const char* in, const char* out, int* speechSegment,
        int shift);
PLANNED(void, TestVadResult);
PLANNED(void, TestMeasureVAD, const char* ref, const char* in, double* BWSaving,
        double* optBWSaving, double* PESQ, double* optPESQ, double* faultyAlarm,
        double* falseAlarm);
PLANNED(void, TestVAD, const char* version);
ROUTINE(void, TestSpeexAgc);
ROUTINE(void, TestWebrtcAgc);
PLANNED(void, TestDenoiseProcessNoizeus);
PLANNED(void, TestDenoiseProcess);
