#pragma once

// What comes of a run without some of its inputs: the words of the command line, the input that is
// missing alone, or "all" of them; exit code and cause. A list of files is missing as a whole.
inline constexpr const char* kAbsenceTable = R"(
RunTestCase | all | 3 missing_input
TestEchoDelayEst far near | far | 3 missing_input
TestEchoDelayEst far near | near | 3 missing_input
TestEchoDelayEst far near | all | 3 missing_input
TestEchoDelayEstAndAEC far near out | far | 3 missing_input
TestEchoDelayEstAndAEC far near out | near | 3 missing_input
TestEchoDelayEstAndAEC far near out | all | 3 missing_input
TestTemp | all | 3 missing_input
TestAECNsNoizeus | all | 3 missing_input
TestZUAECProcess far near out 40 | far | 3 missing_input
TestZUAECProcess far near out 40 | near | 3 missing_input
TestZUAECProcess far near out 40 | all | 3 missing_input
TestAECProcess far near out 40 | far | 3 missing_input
TestAECProcess far near out 40 | near | 3 missing_input
TestAECProcess far near out 40 | all | 3 missing_input
TestZUAec near far out true | near | 3 missing_input
TestZUAec near far out true | far | 3 missing_input
TestZUAec near far out true | all | 3 missing_input
TestAecDenoiseInternal in out | all | 3 missing_input
TestAecDenoiseNOIZEUS | all | 3 missing_input
TestAecDenoise | all | 3 missing_input
TestHardwareAec | all | 3 missing_input
TestSoftAec | music_delay/findcap.wav | 3 missing_input
TestSoftAec | music_delay/findreceive.wav | 3 missing_input
TestSoftAec | all | 3 missing_input
TestEchoDetection | C:\aecfiles\farend.wav | 3 missing_input
TestEchoDetection | C:\aecfiles\nearend.wav | 3 missing_input
TestEchoDetection | all | 3 missing_input
TestRecord | F:\sample\test.pcm | 3 missing_input
TestRecord | F:\sample\test2.pcm | 0 none
TestRecord | all | 3 missing_input
TestNoizeus | all | 3 missing_input
TestAGCProcess in out | all | 3 missing_input
TestVADProcess in out res | all | 3 missing_input
TestNoizeusEx 0 0 | all | 3 missing_input
TestZUAudioProcessing far near out | far | 3 missing_input
TestZUAudioProcessing far near out | near | 3 missing_input
TestZUAudioProcessing far near out | all | 3 missing_input
TestHPFProcess in out | all | 3 missing_input
TestVADProcessRefined in out none 0 | all | 3 missing_input
TestVadResult | all | 3 missing_input
TestVAD v | all | 3 missing_input
TestSpeexAgc | all | 3 missing_input
TestWebrtcAgc | all | 3 missing_input
TestDenoiseProcessNoizeus | all | 3 missing_input
TestDenoiseProcess | all | 3 missing_input
TestZUStreamToAAC | all | 3 missing_input
TestAudioEncode | all | 3 missing_input
TestZUEAACCodec | all | 3 missing_input
TestZUEldCodec | all | 3 missing_input
TestEncodeFile in out | all | 3 missing_input
TestDecodeFile in out 1 | all | 3 missing_input
TestSilkPackerOut | all | 3 missing_input
TestAACStreamToAAC | all | 3 missing_input
TestVADCodecMosByVADResult in out res 50 | all | 3 missing_input
TestZUAudioProcessor | all | 3 missing_input
TestZUEncode in out 50 true | all | 3 missing_input
TestZUDecode in out 50 true | all | 3 missing_input
newTestZUEncode in out 50 24000 48000 true | all | 3 missing_input
newTestZUDecode in out 50 48000 true | all | 3 missing_input
TestZUCodecNew in out 50 | all | 3 missing_input
TestMockVADMos in 50 | in | 3 missing_input
TestMockVADMos in 50 | in.preproc.wav | 3 missing_input
TestMockVADMos in 50 | all | 3 missing_input
calAACMos in out 50 24000 48000 | all | 3 missing_input
TestIIREq | all | 3 missing_input
TestReverb in out 1 16000 1 | all | 3 missing_input
TestReverbPreset | all | 3 missing_input
TestAudioAccelerate | all | 3 missing_input
TestHRTF | all | 3 missing_input
TestAudioMusicDetector | all | 3 missing_input
TestMdrc | all | 3 missing_input
TestVoiceBeautify | all | 3 missing_input
TestVoiceChangerEx | all | 3 missing_input
TestSpeexConverter | all | 3 missing_input
TestAudioResamplerEx in out 8000 1 | all | 3 missing_input
TestDrc | all | 3 missing_input
TestBeatTrack | all | 3 missing_input
AccelerateTest | all | 3 missing_input
StretchTest | all | 3 missing_input
TestEqReverb | all | 3 missing_input
TestAudioEffectModule | all | 3 missing_input
TestRateChanger | all | 3 missing_input
TestSoundTouchBpm | all | 3 missing_input
TestSoundTouch | all | 3 missing_input
TestAudioMixer | all | 3 missing_input
TestRecordMixer | record_acc.wav | 3 missing_input
TestRecordMixer | record_voice.wav | 3 missing_input
TestRecordMixer | all | 3 missing_input
TestKaraokeFileMixer | voice_record.wav | 3 missing_input
TestKaraokeFileMixer | music.wav | 3 missing_input
TestKaraokeFileMixer | all | 3 missing_input
TestKaraokeRecorder | /sdcard/dangni_mix.wav | 0 none
TestKaraokeRecorder | /sdcard/dangni_acc.wav | 0 none
TestKaraokeRecorder | /sdcard/dangni_line_info.txt | 0 none
TestKaraokeRecorder | /sdcard/dangni_score_time_range.txt | 0 none
TestKaraokeRecorder | all | 0 none
TestFilePlayer | all | 3 missing_input
TestAudioSaver | gangqin.wav | 3 missing_input
TestAudioSaver | gangqin2.wav | 3 missing_input
TestAudioSaver | all | 3 missing_input
TestPushPcm | all | 3 missing_input
)";
