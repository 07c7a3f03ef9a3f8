// Echo cancellation.

#include "harness/catalogue/catalogue_rows.h"

std::vector<CatalogueRow> EchoRows() {
  return {
      {.routine = "TestEchoDelayEst",
       .parameters = "const char* pFarendFileName, const char* pNearendFileName",
       .exercises = "echo-delay estimator (CEchoDelayEst) over far/near raw PCM; logs "
                    "\"TestEchoDelayEst: %d, %d\""},
      {.routine = "TestEchoDelayEstAndAEC",
       .parameters =
           "const char* pFarendFileName, const char* pNearendFileName, const char* pOutFileName",
       .exercises = "delay estimator feeding the WebRTC-style echo canceller (WebRtcAec_*), timed"},
      {.routine = "TestZUAECNSProcess",
       .parameters = "FILE* in, FILE* out",
       .exercises = "the engine's mobile echo canceller (AecMobile_*) with band splitting through "
                    "zuwebrtc::AudioBuffer"},
      {.routine = "TestTemp",
       .exercises = "runs TestZUAECNSProcess on \"wrpcmin.pcm\" into \"NSout.pcm\""},
      {.routine = "TestAECNsNoizeus",
       .exercises = "runs TestZUAECNSProcess over the NOIZEUS corpus into "
                    "\"NOIZEUS/out/sp%02d_%s_sn%d_aec.pcm\""},
      {.routine = "TestZUAECProcess",
       .parameters = "const char* pFarendFileName, const char* pNearendFileName, const char* "
                     "pOutFileName, int echoDelay",
       .exercises = "mobile echo canceller on far/near files with a fixed echo delay"},
      {.routine = "TestAECProcess",
       .parameters = "const char* pFarendFileName, const char* pNearendFileName, const char* "
                     "pOutFileName, int echoDelay",
       .exercises = "WebRTC-style echo canceller (WebRtcAec_*) with a fixed echo delay"},
      {.routine = "TestZUAec",
       .parameters = "const char* inNearFile, const char* inFarFile, const char* outNearFile, bool "
                     "softwareAEC",
       .exercises = "AecModule (software SoftwareAec or CreateHardwareAec) over WAVE files, with "
                    "resampling"},
      {.routine = "TestAecDenoiseInternal",
       .parameters = "const char* in, const char* out",
       .exercises = "the echo path's noise suppressor (Ns_*) over one WAVE file"},
      {.routine = "TestAecDenoiseNOIZEUS",
       .exercises = "TestAecDenoiseInternal over the NOIZEUS corpus (WAVE)"},
      {.routine = "TestAecDenoise",
       .exercises = "TestAecDenoiseInternal over a fixed list of named recordings"},
      {.routine = "TestHardwareAec",
       .exercises =
           "CreateHardwareAec with AGC and denoise enabled, \"noise_in.wav\" to \"out.wav\""},
      {.routine = "TestSoftAec", .exercises = "SoftwareAec over files in \"music_delay/\""},
      {.routine = "TestEchoDetection",
       .exercises = "residual echo detection (echo_detection_*) over far/near WAVE files"},
      {.routine = "TestRecord",
       .exercises = "CAecFileWriter recording of far/out data and echo-detection start"},
  };
}
