#include "contract/routines/expected_lines.h"

const std::string_view kWhenOperationsFail = R"(
RunTestCase
  2 x - FIRFilter::Create(1, 1765)
  2 x + FIRFilter::Create(0, 1765)
TestAGCProcess
  - WebRtcAgc_Process(#1, @1, 1, 160, @1, 0, 0 -> 0, 0, 1)
  + WebRtcAgc_Process(#1, @1, 1, 160, @1, 0, 0 -> 0, 0, 0)
TestVadResult
  2 x - WavWriter#1.WriteSamples(160)
  2 x - WavWriter#2.WriteSamples(160)
TestVAD
  - fprintf(F:/Stream/vad/output/report_v1.txt, "%s\t\t%04f\t\t%04f\t\t%04f\t\t%04f\t\t%04f\t\t%04f\n", a.wav, 0.000000, 93.437500, 0.000000, 0.000000, -186.444386, 0.000000)
  + fprintf(F:/Stream/vad/output/report_v1.txt, "%s\t\t%04f\t\t%04f\t\t%04f\t\t%04f\t\t%04f\t\t%04f\n", a.wav, 100.000000, 93.437500, 0.000000, 0.000000, 0.000000, -209.513424)
TestZUStreamToAAC
  - fopen(48k.aac, wb)
  - fwrite(48k.aac, 9, 1)
  - OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
  - fclose(48k.aac)
  + OutputDebugInfo("TransZUStreamToAAC error")
TestAudioEncode
  2 x - fwrite(out.enc, 2, 1)
  2 x - fwrite(out.enc, 1, 320)
  - IAudioEncoder#1.Encode(320, out of 320)
  + IAudioEncoder#1.Encode(320, out of 0)
  2 x - fread(out.enc, 2, 1)
  2 x - fread(out.enc, 320, 1)
  - IAudioDecoder#1.Decode(320, out of 0)
  2 x - fwrite(dec.pcm, 1, 320)
  - IAudioDecoder#1.Decode(320, out of 320)
TestZUEAACCodec
  - fwrite(F:\44100_2_out.aac, 1, 10)
  - fread(F:\44100_2_out.aac, 7, 1)
  - fread(F:\44100_2_out.aac, 3, 1)
  - CAudioCodec#2.Process(10, room 8192)
  - fwrite(F:\44100_2_out.pcm, 1, 320)
TestZUEldCodec
  2 x - fwrite(eld_out.aac, 1, 10)
TestEncodeFile
  2 x - fwrite(out.rec, 1, 320)
  2 x + fwrite(out.rec, 1, 0)
TestDecodeFile
  - fwrite(out.pcm, 1, 4)
  2 x + fwrite(out.pcm, 1, 0)
  - fwrite(out.pcm, 1, 2)
TestSilkPackerOut
  2 x - fwrite(packer.pcm, 1, 9)
  2 x + fwrite(packer.pcm, 1, 0)
TestAACStreamToAAC
  - fopen(48k.aac, wb)
  - fwrite(48k.aac, 9, 1)
  - OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
  - fclose(48k.aac)
  + OutputDebugInfo("TransZUStreamToAAC error")
TestVADCodecMosByVADResult
  2 x - CAudioCodec#1.Process(320, room 1024)
  2 x - WavWriter#1.WriteSamples(160)
TestZUAudioProcessor
  - fwrite(player.aac, 1, 9)
  + fwrite(player.aac, 1, 0)
TestZUEncode
  - fwrite(out.enc, 1, 42)
  + fwrite(out.enc, 1, 0)
TestZUDecode
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
newTestZUEncode
  - OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
  + OutputDebugInfo("Tavik Create silk encoder success %d.", 0)
  - fwrite(out.enc, 1, 30)
  + fwrite(out.enc, 1, 0)
newTestZUDecode
  - OutputDebugInfo("Tavik call aac decoder Init %d", 1)
  + OutputDebugInfo("Tavik call aac decoder Init %d", 0)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
TestZUCodecNew
  - fwrite(out.wav.enc, 1, 30)
  + fwrite(out.wav.enc, 1, 0)
  - fread(out.wav.enc, 1, 30)
  + fread(out.wav.enc, 1, 0)
  3 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
  3 x - WavReader#2.ReadSamples(160)
  3 x - IAudioResamplerEx#1.Convert(@1, 160, @2, 160)
  3 x - WavWriter#1.WriteSamples(160)
TestMockVADMos
  - fwrite(ref.wav.codec.wav.enc, 1, 30)
  + fwrite(ref.wav.codec.wav.enc, 1, 0)
  - fread(ref.wav.codec.wav.enc, 1, 30)
  + fread(ref.wav.codec.wav.enc, 1, 0)
  3 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
  3 x - IAudioResamplerEx#2.Convert(@3, 160, @4, 160)
  3 x - WavWriter#2.WriteSamples(160)
  3 x - WavReader#3.ReadSamples(160)
  - fwrite(ref.wav.vadCodec.wav.enc, 1, 20)
  + fwrite(ref.wav.vadCodec.wav.enc, 1, 0)
  - fread(ref.wav.vadCodec.wav.enc, 1, 20)
  + fread(ref.wav.vadCodec.wav.enc, 1, 0)
  2 x - CAudioCodec#4.Process(10, room 3200)
  - CWavFileWriter#2.Write(640)
  + CWavFileWriter#2.Write(0)
  2 x - WavReader#5.ReadSamples(160)
  2 x - IAudioResamplerEx#3.Convert(@3, 160, @4, 160)
  2 x - WavWriter#3.WriteSamples(160)
calAACMos
  - OutputDebugInfo("Tavik Create silk encoder success %d.", 1)
  + OutputDebugInfo("Tavik Create silk encoder success %d.", 0)
  - fwrite(16000_1_64000.enc.wav, 1, 20)
  + fwrite(16000_1_64000.enc.wav, 1, 0)
  - fread(16000_1_64000.enc.wav, 1, 20)
  + fread(16000_1_64000.enc.wav, 1, 0)
  2 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(640)
  + CWavFileWriter#1.Write(0)
TestAudioAccelerate
  2 x - fwrite(F:\44100_2_new1_out.wav, 1, 4096)
  2 x + fwrite(F:\44100_2_new1_out.wav, 1, 0)
TestHRTF
  2 x - FIRFilter::Create(1, 1765)
  2 x + FIRFilter::Create(0, 1765)
TestVoiceBeautify
  + printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 1, -1, 160)
  + printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 2, -1, 160)
  - printf("notSame = %d, total = %d\n", 0, 2)
  + printf("notSame = %d, total = %d\n", 2, 2)
TestVoiceChangerEx
  + printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 1, -1, 160)
  + printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 2, -1, 160)
  - printf("notSame = %d, total = %d\n", 0, 2)
  + printf("notSame = %d, total = %d\n", 2, 2)
TestSpeexConverter
  2 x - WavWriter#1.WriteSamples(240)
  2 x + puts("Error.....")
TestBeatTrack
  2 x + printf("TestBeatTrack: res = %d.\n", -1)
AccelerateTest
  10 x - WavWriter#1.WriteSamples(480)
  10 x + printf("error in AccelerateSoundProcess, %d\n", -1)
  10 x + WavWriter#1.WriteSamples(8192)
StretchTest
  10 x - WavWriter#1.WriteSamples(480)
  10 x + printf("error in AccelerateSoundProcess, %d\n", -1)
  10 x + WavWriter#1.WriteSamples(8192)
TestEqReverb
  2 x - WavWriter#1.WriteSamples(160)
TestRateChanger
  2 x - WavWriter#1.WriteSamples(160)
  2 x + WavWriter#1.WriteSamples(0)
TestAudioMixer
  2 x - fwrite(c:\outmix.pcm, 1, 1)
  2 x + fwrite(c:\outmix.pcm, 0, 1)
TestKaraokeFileMixer
  - IKaraokeFileMixer#1.Stop()
  - IKaraokeFileMixer#1.Destroy()
  20 x + SleepMs(10)
  + goes on for ever
)";

const std::string_view kWhenTheDiskIsFull = R"(
TestZUStreamToAAC
  - OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
TestAudioEncode
  2 x - fread(out.enc, 320, 1)
  - IAudioDecoder#1.Decode(320, out of 0)
  2 x - fwrite(dec.pcm, 1, 320)
  2 x - fread(out.enc, 2, 1)
  - IAudioDecoder#1.Decode(320, out of 320)
TestZUEAACCodec
  - fread(F:\44100_2_out.aac, 3, 1)
  - CAudioCodec#2.Process(10, room 8192)
  - fwrite(F:\44100_2_out.pcm, 1, 320)
  - fread(F:\44100_2_out.aac, 7, 1)
TestAACStreamToAAC
  - OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
TestZUCodecNew
  - fread(out.wav.enc, 1, 30)
  + fread(out.wav.enc, 1, 0)
  3 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
  3 x - WavReader#2.ReadSamples(160)
  3 x - IAudioResamplerEx#1.Convert(@1, 160, @2, 160)
  3 x - WavWriter#1.WriteSamples(160)
TestMockVADMos
  - fread(ref.wav.codec.wav.enc, 1, 30)
  + fread(ref.wav.codec.wav.enc, 1, 0)
  3 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
  3 x - IAudioResamplerEx#2.Convert(@3, 160, @4, 160)
  3 x - WavWriter#2.WriteSamples(160)
  3 x - WavReader#3.ReadSamples(160)
  - WavReader#4.ReadSamples(320)
  + WavReader#4.ReadSamples(0)
  2 x - CAudioCodec#3.Process(320, room 320)
  - fwrite(ref.wav.vadCodec.wav.enc, 1, 20)
  + fwrite(ref.wav.vadCodec.wav.enc, 1, 0)
  - fread(ref.wav.vadCodec.wav.enc, 1, 20)
  + fread(ref.wav.vadCodec.wav.enc, 1, 0)
  2 x - CAudioCodec#4.Process(10, room 3200)
  - CWavFileWriter#2.Write(640)
  + CWavFileWriter#2.Write(0)
  2 x - WavReader#5.ReadSamples(160)
  2 x - IAudioResamplerEx#3.Convert(@3, 160, @4, 160)
  2 x - WavWriter#3.WriteSamples(160)
calAACMos
  - fread(16000_1_64000.enc.wav, 1, 20)
  + fread(16000_1_64000.enc.wav, 1, 0)
  2 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(640)
  + CWavFileWriter#1.Write(0)
)";

const std::string_view kWhenOutputsAreUnwritable = R"(
TestZUStreamToAAC
  - OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
TestAudioEncode
  - IAudioDecoder#1.Decode(320, out of 0)
  - IAudioDecoder#1.Decode(320, out of 320)
TestZUEAACCodec
  - CAudioCodec#2.Process(10, room 8192)
TestAACStreamToAAC
  - OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 9)
TestZUCodecNew
  3 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
  3 x - WavReader#2.ReadSamples(160)
  3 x - IAudioResamplerEx#1.Convert(@1, 160, @2, 160)
  3 x - WavWriter#1.WriteSamples(160)
TestMockVADMos
  3 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(960)
  + CWavFileWriter#1.Write(0)
  3 x - IAudioResamplerEx#2.Convert(@3, 160, @4, 160)
  3 x - WavWriter#2.WriteSamples(160)
  3 x - WavReader#3.ReadSamples(160)
  - WavReader#4.ReadSamples(320)
  + WavReader#4.ReadSamples(0)
  2 x - CAudioCodec#3.Process(320, room 320)
  2 x - CAudioCodec#4.Process(10, room 3200)
  - CWavFileWriter#2.Write(640)
  + CWavFileWriter#2.Write(0)
  2 x - WavReader#5.ReadSamples(160)
  2 x - IAudioResamplerEx#3.Convert(@3, 160, @4, 160)
  2 x - WavWriter#3.WriteSamples(160)
calAACMos
  2 x - CAudioCodec#2.Process(10, room 3200)
  - CWavFileWriter#1.Write(640)
  + CWavFileWriter#1.Write(0)
TestAudioAccelerate
  - fread(F:\44100_2_new1.wav, 1, 44)
  - CreateAudioAccelerate()
  - IAudioAccelerate#1.SetEnabled(false)
  - IAudioAccelerate#1.SetAccelerateRate(25)
  2 x - GetExactTickCount()
  3 x - fread(F:\44100_2_new1.wav, 4096, 1)
  2 x - IAudioAccelerate#1.Process(@1, 1024, 44100, 2, 16)
  - OutputDebugInfo("TestAudioAccelerate: %d", 0)
  - ~IAudioAccelerate#1
  - fclose(F:\44100_2_new1.wav)
  + puts("fail to open file!")
)";
