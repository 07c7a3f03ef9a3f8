#pragma once

#include <cstdint>
#include <cstdio>

#include "harness/declared.h"

// Speech enhancement, noise and voice activity. The catalogue says what each routine exercises.

ROUTINE(void, TestNoizeus);
ROUTINE(void, TestAGCProcess, const char* pSrcFileName, const char* pDstFileName);
ROUTINE(void, TestVADProcess, const char* pSrcFileName, const char* pDstFileName,
        const char* pResultFileName);
HELPER(float, MeasureAverageSNR, FILE* cf, FILE* pf);
HELPER(float, MeasureSpeechSNR, int no, FILE* cf, FILE* pf);
ROUTINE(void, TestNoizeusEx, int32_t ns, int32_t ms);
ROUTINE(void, TestZUAudioProcessing, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName);
ROUTINE(void, TestHPFProcess, const char* pSrcFileName, const char* pDstFileName);
ROUTINE(void, TestVADProcessRefined, const char* in, const char* out, int* speechSegment,
        int shift);
ROUTINE(void, TestVadResult);
HELPER(void, TestMeasureVAD, const char* ref, const char* in, double* BWSaving, double* optBWSaving,
       double* PESQ, double* optPESQ, double* faultyAlarm, double* falseAlarm);
ROUTINE(void, TestVAD, const char* version);
ROUTINE(void, TestSpeexAgc);
ROUTINE(void, TestWebrtcAgc);
ROUTINE(void, TestDenoiseProcessNoizeus);
ROUTINE(void, TestDenoiseProcess);
