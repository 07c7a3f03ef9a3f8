// Speech enhancement, noise and voice activity.

#include "harness/catalogue/catalogue_rows.h"

std::vector<CatalogueRow> EnhancementRows() {
  return {
      {.routine = "TestNoizeus", .exercises = "wrapper: TestNoizeusEx over ns 0..4, ms 0 and 1"},
      {.routine = "TestAGCProcess",
       .parameters = "const char* pSrcFileName, const char* pDstFileName",
       .exercises = "WebRTC-style AGC (WebRtcAgc_*) with virtual microphone"},
      {.routine = "TestVADProcess",
       .parameters =
           "const char* pSrcFileName, const char* pDstFileName, const char* pResultFileName",
       .exercises = "voice activity detection (CVoiceDetectionEx, WebRtcVad_*), writing gated "
                    "audio and per-frame results"},
      {.routine = "MeasureAverageSNR",
       .result = "float",
       .parameters = "FILE* cf, FILE* pf",
       .helper = true,
       .exercises = "average SNR of processed against clean raw PCM"},
      {.routine = "MeasureSpeechSNR",
       .result = "float",
       .parameters = "int no, FILE* cf, FILE* pf",
       .helper = true,
       .exercises = "SNR over the speech segments of sentence no"},
      {.routine = "TestNoizeusEx",
       .parameters = "int32_t ns, int32_t ms",
       .exercises =
           "NOIZEUS evaluation of one suppression setting, one measure; result text files"},
      {.routine = "TestZUAudioProcessing",
       .parameters =
           "const char* pFarendFileName, const char* pNearendFileName, const char* pOutFileName",
       .exercises = "SoftwareAec processing chain with VAD result logging"},
      {.routine = "TestHPFProcess",
       .parameters = "const char* pSrcFileName, const char* pDstFileName",
       .exercises = "high-pass filter over a WAVE file"},
      {.routine = "TestVADProcessRefined",
       .parameters = "const char* in, const char* out, int* speechSegment, int shift",
       .exercises = "VAD with segment list and shift"},
      {.routine = "TestVadResult",
       .exercises =
           "VAD over \"swb_ref_16kHz.wav\" writing \"vad_out.wav\" and \"vad_result.wav\""},
      {.routine = "TestMeasureVAD",
       .parameters = "const char* ref, const char* in, double* BWSaving, double* optBWSaving, "
                     "double* PESQ, double* optPESQ, double* faultyAlarm, double* falseAlarm",
       .exercises = "VAD quality measures (bandwidth saving, PESQ, false and faulty alarm)"},
      {.routine = "TestVAD",
       .parameters = "const char* version",
       .exercises = "batch VAD evaluation writing a tab-separated results table"},
      {.routine = "TestSpeexAgc",
       .exercises = "ZUAudio::AudioAgc over \"music.wav\" into \"agc_out.wav\""},
      {.routine = "TestWebrtcAgc",
       .exercises = "ZUAudio::WebrtcAgc over \"niannujiao_44100_1.wav\" into \"agc_out.wav\""},
      {.routine = "TestDenoiseProcessNoizeus",
       .exercises = "CAudioDenoise (normal and light) over the NOIZEUS corpus"},
      {.routine = "TestDenoiseProcess",
       .exercises = "CAudioDenoise over \"ns_in.wav\" into \"ns_out.wav\""},
  };
}
