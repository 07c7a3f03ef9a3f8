// Speech enhancement, noise and voice activity.

#include "bench/enhancement/routines.h"
#include "harness/catalogue/catalogue_rows.h"

namespace harness {

namespace {

FileUse Wave(const std::string& name) { return {.name = name, .container = Container::kWave}; }

// A file that begins with the header of another.
FileUse WaveWithForeignHeader(const std::string& name) {
  FileUse use = Wave(name);
  use.foreignHeader = true;
  return use;
}

}  // namespace

std::vector<CatalogueRow> EnhancementRows() {
  return {
      {.declared = declared::TestNoizeus,
       .exercises = "wrapper: TestNoizeusEx over ns 0..4, ms 0 and 1"},
      {.declared = declared::TestAGCProcess,
       .exercises = "WebRTC-style AGC (WebRtcAgc_*) with virtual microphone",
       .inputs = {Wave("{pSrcFileName}")},
       .outputs = {WaveWithForeignHeader("{pDstFileName}")}},
      {.declared = declared::TestVADProcess,
       .exercises = "voice activity detection (CVoiceDetectionEx, WebRtcVad_*), writing gated "
                    "audio and per-frame results"},
      {.declared = declared::MeasureAverageSNR,
       .helper = true,
       .exercises = "average SNR of processed against clean raw PCM"},
      {.declared = declared::MeasureSpeechSNR,
       .helper = true,
       .exercises = "SNR over the speech segments of sentence no"},
      {.declared = declared::TestNoizeusEx,
       .exercises =
           "NOIZEUS evaluation of one suppression setting, one measure; result text files"},
      {.declared = declared::TestZUAudioProcessing,
       .exercises = "SoftwareAec processing chain with VAD result logging",
       .inputs = {Wave("{pFarendFileName}"), Wave("{pNearendFileName}")},
       .outputs = {WaveWithForeignHeader("{pOutFileName}")}},
      {.declared = declared::TestHPFProcess, .exercises = "high-pass filter over a WAVE file"},
      {.declared = declared::TestVADProcessRefined, .exercises = "VAD with segment list and shift"},
      {.declared = declared::TestVadResult,
       .exercises =
           "VAD over \"swb_ref_16kHz.wav\" writing \"vad_out.wav\" and \"vad_result.wav\""},
      {.declared = declared::TestMeasureVAD,
       .exercises = "VAD quality measures (bandwidth saving, PESQ, false and faulty alarm)"},
      {.declared = declared::TestVAD,
       .exercises = "batch VAD evaluation writing a tab-separated results table"},
      {.declared = declared::TestSpeexAgc,
       .exercises = "ZUAudio::AudioAgc over \"music.wav\" into \"agc_out.wav\"",
       .inputs = {Wave("music.wav")},
       .outputs = {Wave("agc_out.wav")}},
      {.declared = declared::TestWebrtcAgc,
       .exercises = "ZUAudio::WebrtcAgc over \"niannujiao_44100_1.wav\" into \"agc_out.wav\"",
       .inputs = {Wave("niannujiao_44100_1.wav")},
       .outputs = {Wave("agc_out.wav")}},
      {.declared = declared::TestDenoiseProcessNoizeus,
       .exercises = "CAudioDenoise (normal and light) over the NOIZEUS corpus"},
      {.declared = declared::TestDenoiseProcess,
       .exercises = "CAudioDenoise over \"ns_in.wav\" into \"ns_out.wav\""},
  };
}

}  // namespace harness
