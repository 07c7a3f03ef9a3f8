#include "contract/routines/expected_lines.h"

const std::string_view kFirstBlocks = R"(
TestZUAec
  22050 x 2: ReadSamples(441) ReadSamples(441) IAudioResamplerEx::Create(220, 22050, 2, 160, 16000, 1, the place) Convert(@1, 441, @1, 160) Convert(@2, 441, @2, 160) ProcessRenderAudio(160, 16000 Hz, 1 ch, false) ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true) WriteSamples(160)
  22050 x 1: ReadSamples(220) ReadSamples(220) IAudioResamplerEx::Create(220, 22050, 1, 160, 16000, 1, the place) Convert(@1, 220, @1, 160) Convert(@2, 220, @2, 160) ProcessRenderAudio(160, 16000 Hz, 1 ch, false) ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true) WriteSamples(160)
  11025 x 2: ReadSamples(220) ReadSamples(220) IAudioResamplerEx::Create(110, 11025, 2, 160, 16000, 1, the place) Convert(@1, 220, @1, 160) Convert(@2, 220, @2, 160) ProcessRenderAudio(160, 16000 Hz, 1 ch, false) ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true) WriteSamples(160)
  14700 x 1: ReadSamples(147) ReadSamples(147) IAudioResamplerEx::Create(147, 14700, 1, 160, 16000, 1, the place) Convert(@1, 147, @1, 160) Convert(@2, 147, @2, 160) ProcessRenderAudio(160, 16000 Hz, 1 ch, false) ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true) WriteSamples(160)
  6569600 x 1: ReadSamples(160) ReadSamples(160) IAudioResamplerEx::Create(65696, 6569600, 1, 160, 16000, 1, the place) Convert(@1, 160, @1, 160) Convert(@2, 160, @2, 160) ProcessRenderAudio(160, 16000 Hz, 1 ch, false) ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true) WriteSamples(160)
TestAecDenoiseInternal
  22050 x 2: ReadSamples(441) Ns_Process2(#1, @1, @2, 2) WriteSamples(441)
  22050 x 1: ReadSamples(220) Ns_Process2(#1, @1, @2, 1) WriteSamples(220)
  11025 x 2: ReadSamples(220) Ns_Process2(#1, @1, @2, 2) WriteSamples(220)
  14700 x 1: ReadSamples(147) Ns_Process2(#1, @1, @2, 1) WriteSamples(147)
  6569600 x 1: ReadSamples(160) Ns_Process2(#1, @1, @2, 1) WriteSamples(160)
TestAecDenoise
  22050 x 2: ReadSamples(441) Ns_Process2(#1, @1, @2, 2) WriteSamples(441)
  22050 x 1: ReadSamples(220) Ns_Process2(#1, @1, @2, 1) WriteSamples(220)
  11025 x 2: ReadSamples(220) Ns_Process2(#1, @1, @2, 2) WriteSamples(220)
  14700 x 1: ReadSamples(147) Ns_Process2(#1, @1, @2, 1) WriteSamples(147)
  6569600 x 1: ReadSamples(160) Ns_Process2(#1, @1, @2, 1) WriteSamples(160)
TestHardwareAec
  22050 x 2: ReadSamples(441) ProcessCaptureAudio(220, 22050 Hz, 2 ch, false, true) WriteSamples(440)
  22050 x 1: ReadSamples(220) ProcessCaptureAudio(220, 22050 Hz, 1 ch, false, true) WriteSamples(220)
  11025 x 2: ReadSamples(220) ProcessCaptureAudio(110, 11025 Hz, 2 ch, false, true) WriteSamples(220)
  14700 x 1: ReadSamples(147) ProcessCaptureAudio(147, 14700 Hz, 1 ch, false, true) WriteSamples(147)
TestSoftAec
  22050 x 2: ReadSamples(441) ReadSamples(441) ProcessRenderAudio(220, 22050 Hz, 2 ch, true) ProcessCaptureAudio(220, 22050 Hz, 2 ch, true, false) WriteSamples(160)
  22050 x 1: ReadSamples(220) ReadSamples(220) ProcessRenderAudio(220, 22050 Hz, 1 ch, true) ProcessCaptureAudio(220, 22050 Hz, 1 ch, true, false) WriteSamples(160)
  11025 x 2: ReadSamples(220) ReadSamples(220) ProcessRenderAudio(110, 11025 Hz, 2 ch, true) ProcessCaptureAudio(110, 11025 Hz, 2 ch, true, false) WriteSamples(160)
  14700 x 1: ReadSamples(147) ReadSamples(147) ProcessRenderAudio(147, 14700 Hz, 1 ch, true) ProcessCaptureAudio(147, 14700 Hz, 1 ch, true, false) WriteSamples(160)
  6569600 x 1: ReadSamples(160) ReadSamples(160) ProcessRenderAudio(160, 6569600 Hz, 1 ch, true) ProcessCaptureAudio(160, 6569600 Hz, 1 ch, true, false) WriteSamples(160)
TestHPFProcess
  22050 x 2: ReadSamples(441) WriteSamples(441)
  22050 x 1: ReadSamples(220) WriteSamples(220)
  11025 x 2: ReadSamples(220) WriteSamples(220)
  14700 x 1: ReadSamples(147) WriteSamples(147)
TestVADProcessRefined
  22050 x 1: ReadSamples(220) Detect(220) WriteSamples(660)
  14700 x 1: ReadSamples(147) Detect(147) WriteSamples(441)
  6569600 x 1: ReadSamples(65696)
TestVadResult
  22050 x 2: ReadSamples(440) Detect(440) WriteSamples(440) WriteSamples(440)
  22050 x 1: ReadSamples(220) Detect(220) WriteSamples(220) WriteSamples(220)
  11025 x 2: ReadSamples(220) Detect(220) WriteSamples(220) WriteSamples(220)
  14700 x 1: ReadSamples(147) Detect(147) WriteSamples(147) WriteSamples(147)
TestVAD
  22050 x 1: ReadSamples(220) Detect(220) WriteSamples(660)
  14700 x 1: ReadSamples(147) Detect(147) WriteSamples(441)
  6569600 x 1: ReadSamples(65696)
TestSpeexAgc
  22050 x 2: ReadSamples(441) Process WriteSamples(441)
  22050 x 1: ReadSamples(220) Process WriteSamples(220)
  11025 x 2: ReadSamples(220) Process WriteSamples(220)
  14700 x 1: ReadSamples(147) Process WriteSamples(147)
TestWebrtcAgc
  22050 x 2: ReadSamples(441) ProcessCapture(false) WriteSamples(441)
  22050 x 1: ReadSamples(220) ProcessCapture(false) WriteSamples(220)
  11025 x 2: ReadSamples(220) ProcessCapture(false) WriteSamples(220)
  14700 x 1: ReadSamples(147) ProcessCapture(false) WriteSamples(147)
TestDenoiseProcess
  22050 x 2: ReadSamples(441) Process WriteSamples(441)
  22050 x 1: ReadSamples(220) Process WriteSamples(220)
  11025 x 2: ReadSamples(220) Process WriteSamples(220)
  14700 x 1: ReadSamples(147) Process WriteSamples(147)
TestMockVADMos
  22050 x 2: ReadSamples(441) Convert(@1, 441, @2, 160) WriteSamples(160)
  22050 x 1: ReadSamples(220) Convert(@1, 220, @2, 160) WriteSamples(160)
  11025 x 2: ReadSamples(220) Convert(@1, 220, @2, 160) WriteSamples(160)
  14700 x 1: ReadSamples(147) Convert(@1, 147, @2, 160) WriteSamples(160)
  6569600 x 1: ReadSamples(160) Convert(@1, 160, @2, 160) WriteSamples(160)
calAACMos
  22050 x 2: ReadSamples(441) Convert(@1, 441, @2, 160) WriteSamples(160)
  22050 x 1: ReadSamples(220) Convert(@1, 220, @2, 160) WriteSamples(160)
  11025 x 2: ReadSamples(220) Convert(@1, 220, @2, 160) WriteSamples(160)
  14700 x 1: ReadSamples(147) Convert(@1, 147, @2, 160) WriteSamples(160)
  6569600 x 1: ReadSamples(160) Convert(@1, 160, @2, 160) WriteSamples(160)
TestAudioMusicDetector
  22050 x 2: ReadSamples(441) Process(22050 Hz, 2, 220) IsMusic() WriteSamples(882)
  22050 x 1: ReadSamples(220) Process(22050 Hz, 1, 220) IsMusic() WriteSamples(440)
  11025 x 2: ReadSamples(220) Process(11025 Hz, 2, 110) IsMusic() WriteSamples(440)
  14700 x 1: ReadSamples(147) Process(14700 Hz, 1, 147) IsMusic() WriteSamples(294)
TestMdrc
  22050 x 2: ReadSamples(441) Process(22050 Hz, 2, 220) WriteSamples(441)
  22050 x 1: ReadSamples(220) Process(22050 Hz, 1, 220) WriteSamples(220)
  11025 x 2: ReadSamples(220) Process(11025 Hz, 2, 110) WriteSamples(220)
  14700 x 1: ReadSamples(147) Process(14700 Hz, 1, 147) WriteSamples(147)
TestVoiceBeautify
  22050 x 2: ReadSamples(441) VoiceBeautifyProcess(@1, 441, 22050, 2) WriteSamples(441)
  22050 x 1: ReadSamples(220) VoiceBeautifyProcess(@1, 220, 22050, 1) WriteSamples(220)
  11025 x 2: ReadSamples(220) VoiceBeautifyProcess(@1, 220, 11025, 2) WriteSamples(220)
  14700 x 1: ReadSamples(147) VoiceBeautifyProcess(@1, 147, 14700, 1) WriteSamples(147)
  6569600 x 1: ReadSamples(160) VoiceBeautifyProcess(@1, 160, 6569600, 1) WriteSamples(160)
TestVoiceChangerEx
  22050 x 2: ReadSamples(441) Process(@1, 441) WriteSamples(441)
  22050 x 1: ReadSamples(220) Process(@1, 220) WriteSamples(220)
  11025 x 2: ReadSamples(220) Process(@1, 220) WriteSamples(220)
  14700 x 1: ReadSamples(147) Process(@1, 147) WriteSamples(147)
  6569600 x 1: ReadSamples(160) Process(@1, 160) WriteSamples(160)
TestSpeexConverter
  22050 x 2: ReadSamples(440) Convert(@1, 440, @2, 8192) WriteSamples(240)
  22050 x 1: ReadSamples(220) Convert(@1, 220, @2, 8192) WriteSamples(240)
  11025 x 2: ReadSamples(220) Convert(@1, 220, @2, 8192) WriteSamples(240)
  14700 x 1: ReadSamples(147) Convert(@1, 147, @2, 8192) WriteSamples(240)
TestAudioResamplerEx
  22050 x 2: ReadSamples(441) Convert(@1, 441, @2, 80) WriteSamples(80)
  22050 x 1: ReadSamples(220) Convert(@1, 220, @2, 80) WriteSamples(80)
  11025 x 2: ReadSamples(220) Convert(@1, 220, @2, 80) WriteSamples(80)
  14700 x 1: ReadSamples(147) Convert(@1, 147, @2, 80) WriteSamples(80)
  6569600 x 1: ReadSamples(160) Convert(@1, 160, @2, 80) WriteSamples(80)
TestDrc
  22050 x 2: ReadSamples(441) Process(2, 220) WriteSamples(441)
  22050 x 1: ReadSamples(220) Process(1, 220) WriteSamples(220)
  11025 x 2: ReadSamples(220) Process(2, 110) WriteSamples(220)
  14700 x 1: ReadSamples(147) Process(1, 147) WriteSamples(147)
TestBeatTrack
  22050 x 2: ReadSamples(441) Detectbeat(@1, 441)
  22050 x 1: ReadSamples(220) Detectbeat(@1, 220)
  11025 x 2: ReadSamples(220) Detectbeat(@1, 220)
  14700 x 1: ReadSamples(147) Detectbeat(@1, 147)
AccelerateTest
  22050 x 2: ReadSamples(1323) AccelerateSoundProcess(22050, 2, @1, 1323, @2, 8192, true) WriteSamples(1323)
  22050 x 1: ReadSamples(660) AccelerateSoundProcess(22050, 1, @1, 660, @2, 8192, true) WriteSamples(660)
  11025 x 2: ReadSamples(660) AccelerateSoundProcess(11025, 2, @1, 660, @2, 8192, true) WriteSamples(660)
  14700 x 1: ReadSamples(441) AccelerateSoundProcess(14700, 1, @1, 441, @2, 8192, true) WriteSamples(441)
StretchTest
  22050 x 2: ReadSamples(1323) StretchSoundProcess(22050, 2, @1, 1323, @2, 8192) WriteSamples(1323)
  22050 x 1: ReadSamples(660) StretchSoundProcess(22050, 1, @1, 660, @2, 8192) WriteSamples(660)
  11025 x 2: ReadSamples(660) StretchSoundProcess(11025, 2, @1, 660, @2, 8192) WriteSamples(660)
  14700 x 1: ReadSamples(441) StretchSoundProcess(14700, 1, @1, 441, @2, 8192) WriteSamples(441)
TestEqReverb
  22050 x 2: ReadSamples(441) Process(22050 Hz, 2, 220) WriteSamples(441)
  22050 x 1: ReadSamples(220) Process(22050 Hz, 1, 220) WriteSamples(220)
  11025 x 2: ReadSamples(220) Process(11025 Hz, 2, 110) WriteSamples(220)
  14700 x 1: ReadSamples(147) Process(14700 Hz, 1, 147) WriteSamples(147)
TestAudioEffectModule
  22050 x 2: ReadSamples(441) Process(22050 Hz, 2, 220) WriteSamples(441)
  22050 x 1: ReadSamples(220) Process(22050 Hz, 1, 220) WriteSamples(220)
  11025 x 2: ReadSamples(220) Process(11025 Hz, 2, 110) WriteSamples(220)
  14700 x 1: ReadSamples(147) Process(14700 Hz, 1, 147) WriteSamples(147)
TestRateChanger
  22050 x 2: ReadSamples(441) Process(@1, 220, 2, 0 bytes) WriteSamples(440)
  22050 x 1: ReadSamples(220) Process(@1, 220, 1, 0 bytes) WriteSamples(220)
  11025 x 2: ReadSamples(220) Process(@1, 110, 2, 0 bytes) WriteSamples(220)
  14700 x 1: ReadSamples(147) Process(@1, 147, 1, 0 bytes) WriteSamples(147)
TestSoundTouchBpm
  22050 x 2: ReadSamples(441 floats) inputSamples(@1, 220)
  22050 x 1: ReadSamples(220 floats) inputSamples(@1, 220)
  11025 x 2: ReadSamples(220 floats) inputSamples(@1, 110)
  14700 x 1: ReadSamples(147 floats) inputSamples(@1, 147)
TestSoundTouch
  22050 x 2: ReadSamples(441 floats) putSamples(@1, 441) receiveSamples(@1, 8192)
  22050 x 1: ReadSamples(220 floats) putSamples(@1, 220) receiveSamples(@1, 8192)
  11025 x 2: ReadSamples(220 floats) putSamples(@1, 220) receiveSamples(@1, 8192)
  14700 x 1: ReadSamples(147 floats) putSamples(@1, 147) receiveSamples(@1, 8192)
TestRecordMixer
  22050 x 2: ReadSamples(441) ReadSamples(441) PushAudioFrame(220 x 2, 0) GetMixedAudioFrame(220 x 2) WriteSamples(441)
  22050 x 1: ReadSamples(220) ReadSamples(220) PushAudioFrame(220 x 1, 0) GetMixedAudioFrame(220 x 1) WriteSamples(220)
  11025 x 2: ReadSamples(220) ReadSamples(220) PushAudioFrame(110 x 2, 0) GetMixedAudioFrame(110 x 2) WriteSamples(220)
  14700 x 1: ReadSamples(147) ReadSamples(147) PushAudioFrame(147 x 1, 0) GetMixedAudioFrame(147 x 1) WriteSamples(147)
)";
