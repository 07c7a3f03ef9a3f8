#pragma once

#include <cstdio>

#include "harness/declared.h"

// Echo cancellation. The catalogue says what each routine exercises.

ROUTINE(void, TestEchoDelayEst, const char* pFarendFileName, const char* pNearendFileName);
ROUTINE(void, TestEchoDelayEstAndAEC, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName);
HELPER(void, TestZUAECNSProcess, FILE* in, FILE* out);
ROUTINE(void, TestTemp);
ROUTINE(void, TestAECNsNoizeus);
ROUTINE(void, TestZUAECProcess, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName, int echoDelay);
ROUTINE(void, TestAECProcess, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName, int echoDelay);
ROUTINE(void, TestZUAec, const char* inNearFile, const char* inFarFile, const char* outNearFile,
        bool softwareAEC);
ROUTINE(void, TestAecDenoiseInternal, const char* in, const char* out);
ROUTINE(void, TestAecDenoiseNOIZEUS);
ROUTINE(void, TestAecDenoise);
ROUTINE(void, TestHardwareAec);
ROUTINE(void, TestSoftAec);
ROUTINE(void, TestEchoDetection);
ROUTINE(void, TestRecord);
