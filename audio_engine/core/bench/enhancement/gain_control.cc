// Gain control over recordings, and the software canceller as a whole capture chain. Listen for
// pumping (the background swells in pauses), for words that start too loud and for distortion.

#include <cstdint>

#include "bench/enhancement/routines.h"
#include "engine_api/aec/software_aec.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/enhancement/agc.h"
#include "engine_api/enhancement/audio_agc.h"
#include "engine_api/enhancement/webrtc_agc.h"
#include "engine_api/platform/log.h"
#include "harness/block_samples.h"
#include "harness/copy_wav_header.h"
#include "harness/fill_frame.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::ReadBlock;
using harness::StdioFile;

// Adaptive digital gain control of a 16 kHz mono WAVE file, with a virtual microphone before it.
void TestAGCProcess(const char* pSrcFileName, const char* pDstFileName) {
  StdioFile srcFile(pSrcFileName, "rb");
  StdioFile dstFile(pDstFileName, "wb");
  harness::CopyWavHeader(srcFile, dstFile);

  void* agc = nullptr;
  WebRtcAgc_Create(&agc);
  WebRtcAgc_Init(agc, 0, 255, kAgcModeAdaptiveDigital, 16000);
  WebRtcAgcConfig config;
  config.targetLevelDbfs = 3;
  config.compressionGaindB = 0;
  config.limiterEnable = 1;
  WebRtcAgc_set_config(agc, config);
  int32_t outMicLevel = 0;
  // Deliberate: the level that comes out is not fed back. Fed back, the gain control would be told
  // of a volume that the recording never had.
  const int inMicLevel = 0;
  uint8_t saturationWarning = 0;

  int16_t buf[160];
  int16_t* pBuf = buf;
  while (ReadBlock(srcFile, buf, sizeof buf)) {
    WebRtcAgc_VirtualMic(agc, &pBuf, 1, 160, 0, &outMicLevel);
    WebRtcAgc_Process(agc, &pBuf, 1, 160, &pBuf, inMicLevel, &outMicLevel, 0, &saturationWarning);
    dstFile.Write(buf, sizeof buf, 1);
  }

  WebRtcAgc_Free(agc);
  srcFile.Close();
  dstFile.Close();
}

// One recording of any format, in place.
void TestSpeexAgc() {
  zuwebrtc::WavReader reader("music.wav");
  const int src_fs = reader.sample_rate();
  const int src_ch = reader.num_channels();
  const int time_ms = 10;
  const unsigned read_samples = harness::BlockSamples(src_fs, src_ch, time_ms);
  ZUAudio::AudioAgc agc(src_fs, src_ch);
  agc.EnableAGC(true);
  zuwebrtc::WavWriter writer("agc_out.wav", src_fs, src_ch);

  short inData[8192];
  while (ReadBlock(reader, inData, read_samples)) {
    agc.Process(inData);
    writer.WriteSamples(inData, read_samples);
  }
}  // Closes the writer, then destroys the gain control, then closes the reader.

// Another recording through the capture side's gain control.
void TestWebrtcAgc() {
  zuwebrtc::WavReader reader("niannujiao_44100_1.wav");
  const int src_fs = reader.sample_rate();
  const int src_ch = reader.num_channels();
  const int time_ms = 10;
  const unsigned read_samples = harness::BlockSamples(src_fs, src_ch, time_ms);
  ZUAudio::WebrtcAgc agc(src_fs, src_ch);
  agc.EnableAGC(true);
  zuwebrtc::WavWriter writer("agc_out.wav", src_fs, src_ch);

  short inData[8192];
  while (ReadBlock(reader, inData, read_samples)) {
    agc.ProcessCapture(inData, false);
    writer.WriteSamples(inData, read_samples);
  }
}  // Closes the writer, then destroys the gain control, then closes the reader.

// The software canceller on 16 kHz mono files, with a count of what it says of each frame's voice.
void TestZUAudioProcessing(const char* pFarendFileName, const char* pNearendFileName,
                           const char* pOutFileName) {
  StdioFile pFarendFile(pFarendFileName, "rb");
  StdioFile pNearendFile(pNearendFileName, "rb");
  unsigned char headerFarend[44];
  const size_t headerBytes = pFarendFile.Read(headerFarend, 1, sizeof headerFarend);
  unsigned char headerNearend[44];
  pNearendFile.Read(headerNearend, 1, sizeof headerNearend);
  StdioFile pOutFile(pOutFileName, "wb");
  // Deliberate: the far end's header, whatever the near end's says. With the near end's, the output
  // would announce the near end's length.
  pOutFile.Write(headerFarend, 1, headerBytes);

  // Deliberate: no format is set: the module works in its own.
  AecModule* aec = new SoftwareAec;
  int vadVoiceResult = 0;
  int vadPassiveResult = 0;
  int vadNoVoiceResult = 0;
  // Deliberate: the same two frames throughout, so that what the module leaves in them, the voice
  // activity for one, is still there in the next block. With fresh ones it would start unknown.
  const short silence[160] = {};
  zuwebrtc::AudioFrame audioFrameFar;
  harness::FillFrame(audioFrameFar, silence, 160, 16000, 1);
  zuwebrtc::AudioFrame audioFrameNear;
  harness::FillFrame(audioFrameNear, silence, 160, 16000, 1);

  while (ReadBlock(pFarendFile, audioFrameFar.data_, 320) &&
         ReadBlock(pNearendFile, audioFrameNear.data_, 320)) {
    aec->ProcessRenderAudio(audioFrameFar, false);
    aec->ProcessCaptureAudio(audioFrameNear, false, false);
    if (audioFrameNear.vad_activity_ == zuwebrtc::kVadActive) ++vadVoiceResult;
    if (audioFrameNear.vad_activity_ == zuwebrtc::kVadPassive) ++vadPassiveResult;
    if (audioFrameNear.vad_activity_ == zuwebrtc::kVadActiveWithoutVoice) ++vadNoVoiceResult;
    const auto outBytes = static_cast<size_t>(audioFrameNear.samples_per_channel_) * 2;
    pOutFile.Write(audioFrameNear.data_, outBytes, 1);
  }

  OutputDebugInfo("Vad result: %d, %d, %d", vadVoiceResult, vadPassiveResult, vadNoVoiceResult);
  pFarendFile.Close();
  pNearendFile.Close();
  pOutFile.Close();
  delete aec;
}
