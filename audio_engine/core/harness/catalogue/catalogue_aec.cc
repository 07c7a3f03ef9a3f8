// Echo cancellation.

#include "bench/aec/routines.h"
#include "harness/catalogue/catalogue_rows.h"

namespace harness {

std::vector<CatalogueRow> AecRows() {
  return {
      {.declared = declared::TestEchoDelayEst,
       .exercises = "echo-delay estimator (CEchoDelayEst) over far/near raw PCM; logs "
                    "\"TestEchoDelayEst: %d, %d\""},
      {.declared = declared::TestEchoDelayEstAndAEC,
       .exercises = "delay estimator feeding the WebRTC-style echo canceller (WebRtcAec_*), timed"},
      {.declared = declared::TestZUAECNSProcess,
       .exercises = "the engine's mobile echo canceller (AecMobile_*) with band splitting through "
                    "zuwebrtc::AudioBuffer"},
      {.declared = declared::TestTemp,
       .exercises = "runs TestZUAECNSProcess on \"wrpcmin.pcm\" into \"NSout.pcm\""},
      {.declared = declared::TestAECNsNoizeus,
       .exercises = "runs TestZUAECNSProcess over the NOIZEUS corpus into "
                    "\"NOIZEUS/out/sp%02d_%s_sn%d_aec.pcm\""},
      {.declared = declared::TestZUAECProcess,
       .exercises = "mobile echo canceller on far/near files with a fixed echo delay"},
      {.declared = declared::TestAECProcess,
       .exercises = "WebRTC-style echo canceller (WebRtcAec_*) with a fixed echo delay"},
      {.declared = declared::TestZUAec,
       .exercises = "AecModule (software SoftwareAec or CreateHardwareAec) over WAVE files, with "
                    "resampling"},
      {.declared = declared::TestAecDenoiseInternal,
       .exercises = "the echo path's noise suppressor (Ns_*) over one WAVE file"},
      {.declared = declared::TestAecDenoiseNOIZEUS,
       .exercises = "TestAecDenoiseInternal over the NOIZEUS corpus (WAVE)"},
      {.declared = declared::TestAecDenoise,
       .exercises = "TestAecDenoiseInternal over a fixed list of named recordings"},
      {.declared = declared::TestHardwareAec,
       .exercises =
           "CreateHardwareAec with AGC and denoise enabled, \"noise_in.wav\" to \"out.wav\""},
      {.declared = declared::TestSoftAec,
       .exercises = "SoftwareAec over files in \"music_delay/\""},
      {.declared = declared::TestEchoDetection,
       .exercises = "residual echo detection (echo_detection_*) over far/near WAVE files"},
      {.declared = declared::TestRecord,
       .exercises = "CAecFileWriter recording of far/out data and echo-detection start"},
  };
}

}  // namespace harness
