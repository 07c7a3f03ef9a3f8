#include "contract/routines/expected_lines.h"

const std::string_view kSaidUsually = R"(
RunTestCase
  OutputDebugInfo("TestHrtf..start")
  OutputDebugInfo("TestHrtf..end")
TestEchoDelayEstAndAEC
  OutputDebugInfo("TestEchoDelayEstAndAEC: %d, %d", 1, 0)
  OutputDebugInfo("TestEchoDelayEstAndAEC: %d, %d", 2, 0)
  OutputDebugInfo("%d", 0)
TestTemp
  OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 1, 0, 0)
  OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 2, 0, 0)
  OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 3, 0, 0)
  OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 4, 0, 0)
TestAECNsNoizeus
  960 x OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 1, 0, 0)
  960 x OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 2, 0, 0)
  960 x OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 3, 0, 0)
  960 x OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 4, 0, 0)
TestZUAECProcess
  OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 1, 0, 0)
  OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 2, 0, 0)
TestAECProcess
  OutputDebugInfo("TestAECProcess: %d, %d", 1, 40)
  OutputDebugInfo("TestAECProcess: %d, %d", 2, 40)
TestEchoDetection
  printf("number of frame: %d\n", 1)
  printf("number of frame: %d\n", 2)
  OutputDebugInfo("residual echo detection: %d", 0)
TestZUAudioProcessing
  OutputDebugInfo("Vad result: %d, %d, %d", 0, 0, 0)
TestZUStreamToAAC
  OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
TestZUEldCodec
  printf("encoderSize = %d\n", 320)
  puts("Encode Done.")
  puts("Decode Done.")
TestAACStreamToAAC
  OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
TestZUAudioProcessor
  puts("Encode End......")
TestZUEncode
  OutputDebugInfo("encode elapse time: %d.", 0)
TestZUDecode
  OutputDebugInfo("decode elapse time: %d.", 0)
newTestZUEncode
  OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
newTestZUDecode
  OutputDebugInfo("Tavik call aac decoder Init %d", 1)
TestZUCodecNew
  OutputDebugInfo("encode elapse time: %d.", 0)
  OutputDebugInfo("decode elapse time: %d.", 0)
  OutputDebugInfo("total elapse time:%d %d.", 0, 0)
TestMockVADMos
  2 x OutputDebugInfo("encode elapse time: %d.", 0)
  2 x OutputDebugInfo("decode elapse time: %d.", 0)
  2 x OutputDebugInfo("total elapse time:%d %d.", 0, 0)
calAACMos
  OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
  OutputDebugInfo("decode elapse time: %d.", 0)
  OutputDebugInfo("total elapse time:%d %d.", 0, 0)
TestAudioAccelerate
  OutputDebugInfo("TestAudioAccelerate: %d", 0)
TestHRTF
  OutputDebugInfo("TestHrtf..start")
  OutputDebugInfo("TestHrtf..end")
TestAudioMusicDetector
  printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
TestMdrc
  printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
TestVoiceBeautify
  printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
  printf("notSame = %d, total = %d\n", 0, 2)
TestVoiceChangerEx
  printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
  printf("notSame = %d, total = %d\n", 0, 2)
TestSoundTouchBpm
  printf("bpm=%f\n", 0.000000)
TestAudioRecorder
  goes on for ever
TestSpeechMsg
  printf("Play Done, totalTime = %d.\n", 0)
)";

const std::string_view kSaidWithoutInputs = R"(
RunTestCase
  OutputDebugInfo("TestHrtf..start")
  OutputDebugInfo("TestHrtf..end")
TestEchoDelayEstAndAEC
  OutputDebugInfo("%d", 0)
TestEchoDetection
  OutputDebugInfo("residual echo detection: %d", 0)
TestRecord
  puts("Can't Open Input File!")
TestVADProcess
  puts("Open Source File Error..")
TestZUAudioProcessing
  OutputDebugInfo("Vad result: %d, %d, %d", 0, 0, 0)
TestZUStreamToAAC
  OutputDebugInfo("can not open aac+ file ")
TestAudioEncode
  puts("Can't Open Input File!")
TestZUEldCodec
  printf("encoderSize = %d\n", 320)
  puts("Encode Done.")
  puts("Decode Done.")
TestAACStreamToAAC
  OutputDebugInfo("can not open aac+ file ")
TestZUAudioProcessor
  puts("Encode End......")
TestZUEncode
  OutputDebugInfo("encode elapse time: %d.", 0)
TestZUDecode
  OutputDebugInfo("decode elapse time: %d.", 0)
newTestZUEncode
  OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
newTestZUDecode
  OutputDebugInfo("Tavik call aac decoder Init %d", 1)
TestZUCodecNew
  OutputDebugInfo("encode elapse time: %d.", 0)
  OutputDebugInfo("decode elapse time: %d.", 0)
  OutputDebugInfo("total elapse time:%d %d.", 0, 0)
TestMockVADMos
  2 x OutputDebugInfo("encode elapse time: %d.", 0)
  2 x OutputDebugInfo("decode elapse time: %d.", 0)
  2 x OutputDebugInfo("total elapse time:%d %d.", 0, 0)
  puts("Open Source File Error..")
calAACMos
  OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
  OutputDebugInfo("decode elapse time: %d.", 0)
  OutputDebugInfo("total elapse time:%d %d.", 0, 0)
TestAudioAccelerate
  puts("fail to open file!")
TestHRTF
  OutputDebugInfo("TestHrtf..start")
  OutputDebugInfo("TestHrtf..end")
TestAudioMusicDetector
  printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
TestMdrc
  printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
TestVoiceBeautify
  printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
  printf("notSame = %d, total = %d\n", 0, 0)
TestVoiceChangerEx
  printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
  printf("notSame = %d, total = %d\n", 0, 0)
TestSoundTouchBpm
  throws Too small samplerate
TestAudioRecorder
  goes on for ever
TestSpeechMsg
  printf("Play Done, totalTime = %d.\n", 0)
)";

const std::string_view kFilesUsually = R"(
TestSoftAec
  - music_delay/echo_metrics.txt
TestRecord
  - delay.txt
  - far.wav
  - log.txt
  - near.wav
  - out.wav
TestVAD
  + F:/Stream/vad/output/a.wav
  + F:/Stream/vad/output/a_opt.wav
  + F:/Stream/vad/output/a_vad.wav
TestKaraokeFileMixer
  - output.aac
TestKaraokeRecorder
  - /sdcard/voice_record.wav
TestFilePlayer
  - sdk_log.txt
TestAudioRecorder
  - audiorecorder.aac
TestAudioSaver
  - saver.aac
  - sdk_log.txt
TestAudioChannel
  - pack.enc
  - sdk_log.txt
)";

const std::string_view kFilesWithoutInputs = R"(
TestSoftAec
  - music_delay/echo_metrics.txt
TestRecord
  - delay.txt
  - far.wav
  - log.txt
  - near.wav
  - out.wav
TestVADProcess
  - out.wav
  - result.wav
TestZUStreamToAAC
  - 48k.aac
TestAudioEncode
  - dec.pcm
TestAACStreamToAAC
  - 48k.aac
TestVADCodecMosByVADResult
  - out.wav
  - result.wav
TestMockVADMos
  - ref.wav.vad.wav
  - ref.wav.vadresult.wav
TestAudioAccelerate
  - F:\44100_2_new1_out.wav
TestKaraokeFileMixer
  - output.aac
TestKaraokeRecorder
  - /sdcard/voice_record.wav
TestFilePlayer
  - sdk_log.txt
TestAudioRecorder
  - audiorecorder.aac
TestAudioSaver
  - saver.aac
  - sdk_log.txt
TestAudioChannel
  - pack.enc
  - sdk_log.txt
)";
