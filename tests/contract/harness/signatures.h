#pragma once

// Every signature of the bench, in alphabetical order; written apart from the declarations.
inline constexpr const char* kSignatures[] = {
    "int AccelerateTest()",
    "void ConvertToFloatForWebrtc(const short* src, float* dst, int count)",
    "void ConvertToShortForWebrtc(const float* src, short* dst, int count)",
    "void DebugLogFunction(const char* pLogStr)",
    "int GetCodecFrameLength(unsigned char* header, int len)",
    "float MeasureAverageSNR(FILE* cf, FILE* pf)",
    "float MeasureSpeechSNR(int no, FILE* cf, FILE* pf)",
    "void PrintSdkLog(const char* pLogStr)",
    "bool ReadChunk(FILE* file, short* interleaved, float* interleavedFloat, "
    "zuwebrtc::ChannelBuffer<float>* buffer)",
    "void ReadPCMFromFileToMix(FILE* stream, std::string& block, std::vector<std::string*>& "
    "blocks)",
    "void RunTestCase()",
    "int StretchTest()",
    "void TestAACStreamToAAC()",
    "void TestAECNsNoizeus()",
    "void TestAECProcess(const char* pFarendFileName, const char* pNearendFileName, const "
    "char* pOutFileName, int echoDelay)",
    "void TestAGCProcess(const char* pSrcFileName, const char* pDstFileName)",
    "void TestAecDenoise()",
    "void TestAecDenoiseInternal(const char* in, const char* out)",
    "void TestAecDenoiseNOIZEUS()",
    "void TestAudioAccelerate()",
    "void TestAudioChannel(int codecType)",
    "void TestAudioEffectModule()",
    "void TestAudioEncode()",
    "void TestAudioMixer()",
    "void TestAudioMusicDetector()",
    "void TestAudioRecorder()",
    "void TestAudioResamplerEx(const char* inFile, const char* outFile, int outFS, int "
    "outChannels)",
    "void TestAudioSaver()",
    "void TestBeatTrack()",
    "void TestDecodeFile(char* pSrcFileName, char* pDstFileName, "
    "AudioLocalCodec::AudioCodecType type)",
    "void TestDenoiseProcess()",
    "void TestDenoiseProcessNoizeus()",
    "void TestDrc()",
    "void TestEchoDelayEst(const char* pFarendFileName, const char* pNearendFileName)",
    "void TestEchoDelayEstAndAEC(const char* pFarendFileName, const char* pNearendFileName, "
    "const char* pOutFileName)",
    "void TestEchoDetection()",
    "void TestEncodeFile(char* pSrcFileName, char* pDstFileName)",
    "void TestEqReverb()",
    "void TestFilePlayer()",
    "void TestHPFProcess(const char* pSrcFileName, const char* pDstFileName)",
    "void TestHRTF()",
    "void TestHardwareAec()",
    "void TestIIREq()",
    "void TestKaraokeFileMixer()",
    "void TestKaraokeRecorder()",
    "void TestMdrc()",
    "void TestMeasureVAD(const char* ref, const char* in, double* BWSaving, double* "
    "optBWSaving, double* PESQ, double* optPESQ, double* faultyAlarm, double* falseAlarm)",
    "void TestMockVADMos(const char* refFile, int codecId)",
    "void TestNoizeus()",
    "void TestNoizeusEx(int32_t ns, int32_t ms)",
    "void TestPushPcm()",
    "void TestRateChanger()",
    "void TestRecord()",
    "void TestRecordMixer()",
    "void TestReverb(const char* pSrcFileName, const char* pDstFileName, int preset, int "
    "sampleRate, int channles)",
    "void TestReverbPreset()",
    "void TestSilkMos()",
    "void TestSilkPackerOut()",
    "void TestSoftAec()",
    "void TestSoundTouch()",
    "void TestSoundTouchBpm()",
    "void TestSpeechMsg()",
    "void TestSpeexAgc()",
    "void TestSpeexConverter()",
    "void TestTemp()",
    "void TestVAD(const char* version)",
    "void TestVADCodecMosByVADResult(const char* pSrcFileName, const char* pDstFileName, "
    "const char* pVadResultFile, int codecId)",
    "void TestVADProcess(const char* pSrcFileName, const char* pDstFileName, const char* "
    "pResultFileName)",
    "void TestVADProcessRefined(const char* in, const char* out, int* speechSegment, int "
    "shift)",
    "void TestVadResult()",
    "void TestVoiceBeautify()",
    "void TestVoiceChangerEx()",
    "void TestWebrtcAgc()",
    "void TestZUAECNSProcess(FILE* in, FILE* out)",
    "void TestZUAECProcess(const char* pFarendFileName, const char* pNearendFileName, const "
    "char* pOutFileName, int echoDelay)",
    "void TestZUAec(const char* inNearFile, const char* inFarFile, const char* outNearFile, "
    "bool softwareAEC)",
    "void TestZUAudioProcessing(const char* pFarendFileName, const char* pNearendFileName, "
    "const char* pOutFileName)",
    "void TestZUAudioProcessor()",
    "void TestZUCodecNew(const char* wavInFileName, const char* wavOutFileName, int codecId)",
    "void TestZUDecode(const char* encodedFileName, const char* decodedWavFileName, int "
    "codecId, bool extraHeader)",
    "void TestZUEAACCodec()",
    "void TestZUEldCodec()",
    "void TestZUEncode(const char* wavInFileName, const char* encodedFileName, int codecId, "
    "bool addExtraHeader)",
    "void TestZUStreamToAAC()",
    "void calAACMos(char* wavInFileName, char* wavOutFileName, int codecId, int bitRate, int "
    "sRate)",
    "CAudioCodec* decoderFromRawCodecId(int codecId)",
    "CAudioCodec* encoderFromRawCodecId(int codecId)",
    "void newTestZUDecode(const char* encodedFileName, const char* decodedWavFileName, int "
    "codecId, int sRate, bool extraHeader)",
    "void newTestZUEncode(const char* wavInFileName, const char* encodedFileName, int "
    "codecId, int brate, int sRate, bool addExtraHeader)"};
