#pragma once

#include "harness/declared.h"

// Echo cancellation. The catalogue says what each routine exercises.

PLANNED(void, TestEchoDelayEst, const char* pFarendFileName, const char* pNearendFileName);
PLANNED(void, TestEchoDelayEstAndAEC, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName);
PLANNED(void, TestZUAECNSProcess, FILE* in, FILE* out);
PLANNED(void, TestTemp);
PLANNED(void, TestAECNsNoizeus);
PLANNED(void, TestZUAECProcess, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName, int echoDelay);
PLANNED(void, TestAECProcess, const char* pFarendFileName, const char* pNearendFileName,
        const char* pOutFileName, int echoDelay);
PLANNED(void, TestZUAec, const char* inNearFile, const char* inFarFile, const char* outNearFile,
        bool softwareAEC);
PLANNED(void, TestAecDenoiseInternal, const char* in, const char* out);
PLANNED(void, TestAecDenoiseNOIZEUS);
PLANNED(void, TestAecDenoise);
PLANNED(void, TestHardwareAec);
PLANNED(void, TestSoftAec);
PLANNED(void, TestEchoDetection);
PLANNED(void, TestRecord);
