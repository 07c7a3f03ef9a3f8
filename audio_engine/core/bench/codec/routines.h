#pragma once

#include "harness/declared.h"

// Codecs and the preparation of quality scoring. The catalogue says what each routine exercises.

PLANNED(void, TestZUStreamToAAC);
PLANNED(void, TestAudioEncode);
PLANNED(void, TestZUEAACCodec);
PLANNED(void, TestZUEldCodec);
PLANNED(void, TestEncodeFile, char* pSrcFileName, char* pDstFileName);
PLANNED(void, TestDecodeFile, char* pSrcFileName, char* pDstFileName,
        AudioLocalCodec::AudioCodecType type);
PLANNED(void, TestSilkPackerOut);
PLANNED(void, TestAACStreamToAAC);
PLANNED(void, TestVADCodecMosByVADResult, const char* pSrcFileName, const char* pDstFileName,
        const char* pVadResultFile, int codecId);
PLANNED(void, TestZUAudioProcessor);
PLANNED(void, TestZUEncode, const char* wavInFileName, const char* encodedFileName, int codecId,
        bool addExtraHeader);
PLANNED(void, TestZUDecode, const char* encodedFileName, const char* decodedWavFileName,
        int codecId, bool extraHeader);
PLANNED(void, newTestZUEncode, const char* wavInFileName, const char* encodedFileName, int codecId,
        int brate, int sRate, bool addExtraHeader);
PLANNED(void, newTestZUDecode, const char* encodedFileName, const char* decodedWavFileName,
        int codecId, int sRate, bool extraHeader);
PLANNED(void, TestZUCodecNew, const char* wavInFileName, const char* wavOutFileName, int codecId);
PLANNED(void, TestMockVADMos, const char* refFile, int codecId);
PLANNED(void, calAACMos, char* wavInFileName, char* wavOutFileName, int codecId, int bitRate,
        int sRate);
PLANNED(int, GetCodecFrameLength, unsigned char* header, int len);
PLANNED(CAudioCodec*, encoderFromRawCodecId, int codecId);
PLANNED(CAudioCodec*, decoderFromRawCodecId, int codecId);
