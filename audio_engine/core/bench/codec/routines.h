#pragma once

#include "engine_api/codec/audio_codec.h"
#include "engine_api/codec/local_codec.h"
#include "harness/declared.h"

// Codecs and the preparation of quality scoring. The catalogue says what each routine exercises.

ROUTINE(void, TestZUStreamToAAC);
ROUTINE(void, TestAudioEncode);
ROUTINE(void, TestZUEAACCodec);
ROUTINE(void, TestZUEldCodec);
ROUTINE(void, TestEncodeFile, char* pSrcFileName, char* pDstFileName);
ROUTINE(void, TestDecodeFile, char* pSrcFileName, char* pDstFileName,
        AudioLocalCodec::AudioCodecType type);
ROUTINE(void, TestSilkPackerOut);
ROUTINE(void, TestAACStreamToAAC);
ROUTINE(void, TestVADCodecMosByVADResult, const char* pSrcFileName, const char* pDstFileName,
        const char* pVadResultFile, int codecId);
ROUTINE(void, TestZUAudioProcessor);
ROUTINE(void, TestZUEncode, const char* wavInFileName, const char* encodedFileName, int codecId,
        bool addExtraHeader);
ROUTINE(void, TestZUDecode, const char* encodedFileName, const char* decodedWavFileName,
        int codecId, bool extraHeader);
ROUTINE(void, newTestZUEncode, const char* wavInFileName, const char* encodedFileName, int codecId,
        int brate, int sRate, bool addExtraHeader);
ROUTINE(void, newTestZUDecode, const char* encodedFileName, const char* decodedWavFileName,
        int codecId, int sRate, bool extraHeader);
ROUTINE(void, TestZUCodecNew, const char* wavInFileName, const char* wavOutFileName, int codecId);
ROUTINE(void, TestMockVADMos, const char* refFile, int codecId);
ROUTINE(void, calAACMos, char* wavInFileName, char* wavOutFileName, int codecId, int bitRate,
        int sRate);
ROUTINE(void, TestSilkMos);
HELPER(int, GetCodecFrameLength, unsigned char* header, int len);
HELPER(CAudioCodec*, encoderFromRawCodecId, int codecId);
HELPER(CAudioCodec*, decoderFromRawCodecId, int codecId);
